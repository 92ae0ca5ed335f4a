#pragma once

#include <string>
#include <vector>

#include "platform/canvas.h"

namespace tilika::platform {

// One call made on a canvas, with what it was given. Only the members that
// the call takes are set.
struct DrawCommand {
    enum class Kind {
        Text,
        Line,
        FillRect,
        StrokeRect,
        FillRoundedRect,
        StrokeRoundedRect,
        Arc,
        StrokePath,
        FillPath,
        Image,
        ImageFile,
        Save,
        Restore,
        Clip,
        NewPage,
    };
    Kind kind = Kind::Text;
    Rect rect;  // the box of text, shapes, arcs, pictures and clips
    Point from;
    Point to;
    std::string text;  // the text, the picture's name or the picture file's path
    Font font;
    Color color;
    TextAlign align = TextAlign::Left;
    double lineWidth = 0;
    double radius = 0;
    double startAngle = 0;
    double sweepAngle = 0;
    double opacity = 1;
    Path path;
};

// A canvas that draws nothing and remembers every call, so a layout can be
// checked in a test and a drawing composed once can be replayed onto a real
// surface later. Its text metrics are simple and the same everywhere: each
// character is half the font size wide (0.55 in bold) and a line is 1.25
// times the size high.
class RecordingCanvas final : public Canvas {
public:
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

    const std::vector<DrawCommand>& commands() const { return commands_; }
    void clear() { commands_.clear(); }
    // Makes the same calls, in the same order, on another canvas.
    void replay(Canvas& target) const;

    // The lines the text breaks into at the width, by the metrics above.
    static std::vector<std::string> wrap(std::string_view text, const Font& font, double width);

private:
    DrawCommand& add(DrawCommand::Kind kind);

    std::vector<DrawCommand> commands_;
};

}  // namespace tilika::platform
