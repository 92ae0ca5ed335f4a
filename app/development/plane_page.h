#pragma once

#include <QPointer>
#include <QWidget>

#include <optional>
#include <string>

#include "development/timeline.h"
#include "frame/tab.h"

class QGraphicsOpacityEffect;
class QLabel;
class QMessageBox;
class QPropertyAnimation;
class QScrollArea;
class QToolButton;

namespace tilika::core {
struct AppState;
struct Context;
}  // namespace tilika::core
namespace tilika::frame {
class Popups;
class subcheck;
}  // namespace tilika::frame
namespace tilika::platform {
class QtPictures;
class Shell;
}  // namespace tilika::platform

namespace tilika::development {

// The whole fourteen years painted as one strip. A drag moves the view it
// lies in; a press that doesn't move is a touch on whatever lies under it.
class PlaneStrip final : public QWidget {
    Q_OBJECT

public:
    PlaneStrip(const Timeline& timeline, core::AppState& state,
               const platform::QtPictures& pictures, QWidget* parent);

    // The size the timeline's lanes need.
    void relayout();

signals:
    void touched(std::size_t event);
    void dragged(QPoint delta);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    const Timeline& timeline_;
    core::AppState& state_;
    const platform::QtPictures& pictures_;
    std::optional<QPoint> pressAt_;
    QPoint lastAt_;
    bool dragging_ = false;
};

// What the timeline page needs of the program.
struct PlaneServices {
    core::Context& context;
    const platform::QtPictures& pictures;
    frame::Popups& popups;
    platform::Shell& shell;
};

// The timeline page: the child's development or the doctor's plan, month by
// month over fourteen years, scrolled sideways.
class plane final : public frame::Tab {
    Q_OBJECT

public:
    plane(PlaneServices services, QWidget* parent);

    void activateView(const std::string& gid) override;
    void activate() override;

    // The regime menu, and the switch to the regime of a caption.
    void selRegim();
    void changeRegim(const QString& caption);
    // Builds the strip again behind a fade.
    void buildPlane2();
    // Shows what the event holds, if anything.
    void clickTag(std::size_t event);
    // Follows the link of the event last touched.
    void openLink();
    // Scrolls to the running month.
    void scrollToCurrent();

    const Timeline& timeline() const { return timeline_; }
    PlaneStrip* strip() const { return strip_; }
    QScrollArea* scrollArea() const { return scroll_; }
    frame::subcheck* guide() const;
    // The message an event's touch opened, while it is up.
    QMessageBox* tagMessage() const;
    // Ends a fade at once, for a picture of where it goes.
    void finishAnimations();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void applyLook();
    void buildPlane();
    void showScrollCaption();

    PlaneServices services_;
    NoPlaneAppend noAppend_;
    Timeline timeline_;
    std::string gid_;

    QToolButton* back_;
    QLabel* caption_;
    QToolButton* regim_;
    QLabel* month_;
    QScrollArea* scroll_;
    PlaneStrip* strip_;
    QGraphicsOpacityEffect* fade_;
    QPropertyAnimation* fadeOut_;
    QPropertyAnimation* fadeIn_;
    QPointer<frame::subcheck> guide_;
    QPointer<QMessageBox> tagMessage_;
    bool scrollPending_ = false;
};

}  // namespace tilika::development
