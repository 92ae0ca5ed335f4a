#pragma once

#include <QColor>
#include <QFont>

#include <map>
#include <string>
#include <tuple>

#include "platform/canvas.h"

class QPaintDevice;
class QPagedPaintDevice;
class QPainter;

namespace tilika::platform {

class QtPictures;

// Colours between the canvas and Qt.
QColor toQColor(const Color& color);
Color fromQColor(const QColor& color);

// The canvas over QPainter, on a widget, an image or a PDF writer. One unit
// of the canvas is one unit of the painter, font sizes included, so a layout
// measured here is drawn the same on any device.
class QtCanvas final : public Canvas {
public:
    // Draws with the painter; with pages, newPage starts the next page.
    QtCanvas(QPainter& painter, const QtPictures& pictures, QPagedPaintDevice* pages = nullptr);
    // Only measures, as the device would draw; drawing does nothing. The
    // device must outlive the canvas. With `remember` a text is laid out
    // once however often it is measured, which is what laying out a list
    // of days wants; such a canvas is for one thread and one piece of work.
    // An image is a device any thread may measure on.
    explicit QtCanvas(const QPaintDevice& device, bool remember = false);

    Size measureText(std::string_view text, const Font& font, double width) const override;
    void drawText(std::string_view text, const Rect& box, const Font& font, const Color& color,
                  TextAlign align = TextAlign::Left) override;
    void drawLine(Point from, Point to, const Color& color, double width) override;
    void fillRect(const Rect& rect, const Color& color) override;
    void strokeRect(const Rect& rect, const Color& color, double width) override;
    void fillRoundedRect(const Rect& rect, double radius, const Color& color) override;
    void strokeRoundedRect(const Rect& rect, double radius, const Color& color,
                           double width) override;
    void drawArc(const Rect& box, double startAngle, double sweepAngle, const Color& color,
                 double width) override;
    void strokePath(const Path& path, const Color& color, double width) override;
    void fillPath(const Path& path, const Color& color) override;
    void drawImage(std::string_view picture, const Rect& rect, double opacity = 1) override;
    void drawImageFile(std::string_view path, const Rect& rect, double opacity = 1) override;
    void save() override;
    void restore() override;
    void clip(const Rect& rect) override;
    void newPage() override;

    // The Qt font of a canvas font at a device's resolution.
    static QFont toQFont(const Font& font, int logicalDpi);

private:
    int dpi() const;

    QPainter* painter_ = nullptr;
    const QtPictures* pictures_ = nullptr;
    QPagedPaintDevice* pages_ = nullptr;
    const QPaintDevice* device_ = nullptr;
    bool remember_ = false;
    using MeasureKey = std::tuple<std::string, double, int, bool, double, int>;
    mutable std::map<MeasureKey, Size> measured_;
};

}  // namespace tilika::platform
