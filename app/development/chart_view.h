#pragma once

#include <QColor>
#include <QImage>
#include <QWidget>

#include "development/chart.h"

namespace tilika::platform {
class QtPictures;
}

namespace tilika::development {

// Shows a graph of a graph dictionary, or a progress ring.
class chart final : public QWidget {
    Q_OBJECT

public:
    chart(const platform::QtPictures& pictures, QWidget* parent = nullptr);

    // Modes of what is shown.
    static constexpr int kGraph = 7;
    static constexpr int kProgress = 5;

    void prepare(GraphDic dic);
    void prepareChart(int mode, double pos, QColor color, QColor backColor);
    // In grey, for printing without colour.
    void setGrey(bool grey);

    int gtp() const { return gtp_; }
    const GraphDic& gdic() const { return gdic_; }
    // What is shown, drawn at this size into a picture.
    QImage getContextImage(QSize size) const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void drawContext(QPainter& painter, const QRectF& rect) const;

    const platform::QtPictures& pictures_;
    int gtp_ = 0;
    GraphDic gdic_;
    double gpos_ = 0;
    QColor gcolor_;
    QColor gbcolor_;
    bool grey_ = false;
};

}  // namespace tilika::development
