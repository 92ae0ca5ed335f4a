#pragma once

#include <QWidget>

#include <string>
#include <vector>

#include "development/vaccination_card.h"
#include "frame/overlay_view.h"

class QGestureEvent;
class QScrollArea;

namespace tilika::development {

class CardSurface;

// The vaccination card over the whole window: the table and its legend as
// one picture that scrolls both ways and zooms (Ctrl with the wheel, Ctrl+=
// and Ctrl+-, a double click between one and two times, a pinch on a
// touchpad).
class planeTable final : public frame::OverlayView {
    Q_OBJECT

public:
    static constexpr double kMinZoom = 0.5;
    static constexpr double kMaxZoom = 3;

    planeTable(core::AppState& state, const platform::QtPictures& pictures, QWidget* host);

    // Builds the card with the plan's ticks and shows it.
    void prepare(const std::vector<std::string>& marks);

    const VaccinationCard& card() const { return card_; }
    double zoom() const { return zoom_; }
    // Keeps the point of the view under `anchor` (in the view's coordinates)
    // where it is, as a zoom under the mouse or the fingers should.
    void setZoom(double zoom, QPointF anchor = QPointF(-1, -1));
    QScrollArea* scrollArea() const { return scroll_; }
    CardSurface* surface() const { return surface_; }

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool gesture(QGestureEvent* event);

    VaccinationCard card_;
    double zoom_ = 1;
    QScrollArea* scroll_;
    CardSurface* surface_;
};

// The painted card inside the scroll area.
class CardSurface final : public QWidget {
    Q_OBJECT

public:
    CardSurface(const VaccinationCard& card, const platform::QtPictures& pictures, QWidget* parent);
    void setZoom(double zoom);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const VaccinationCard& card_;
    const platform::QtPictures& pictures_;
    double zoom_ = 1;
};

}  // namespace tilika::development
