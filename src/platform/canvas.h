#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tilika::platform {

// Colour components from 0 to 1, alpha included.
struct Color {
    double r = 0;
    double g = 0;
    double b = 0;
    double a = 1;

    bool operator==(const Color&) const = default;
};

struct Point {
    double x = 0;
    double y = 0;

    bool operator==(const Point&) const = default;
};

struct Size {
    double width = 0;
    double height = 0;

    bool operator==(const Size&) const = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    double right() const { return x + width; }
    double bottom() const { return y + height; }
    bool contains(Point p) const { return p.x >= x && p.x < right() && p.y >= y && p.y < bottom(); }
    bool intersects(const Rect& other) const {
        return x < other.right() && other.x < right() && y < other.bottom() && other.y < bottom();
    }
    bool operator==(const Rect&) const = default;
};

enum class FontWeight { Regular, Bold };

// Sizes are in the canvas's units, the same units as every position.
struct Font {
    double size = 12;
    FontWeight weight = FontWeight::Regular;
    bool italic = false;

    bool operator==(const Font&) const = default;
};

enum class TextAlign { Left, Center, Right };

// An outline of lines and curves. Angles are in degrees: 0 is three o'clock
// and positive angles turn counter-clockwise as seen on the screen.
class Path {
public:
    enum class Verb { MoveTo, LineTo, CubicTo, ArcTo, Close };
    struct Element {
        Verb verb;
        // MoveTo/LineTo: one point. CubicTo: two control points and the end.
        // ArcTo: the bounding box as two points (top left, bottom right) and
        // (start angle, sweep) in the third.
        Point points[3];
    };

    Path& moveTo(Point p);
    Path& lineTo(Point p);
    Path& cubicTo(Point c1, Point c2, Point end);
    // Continues the path along the ellipse that fills the box.
    Path& arcTo(const Rect& box, double startAngle, double sweepAngle);
    Path& close();

    const std::vector<Element>& elements() const { return elements_; }
    bool empty() const { return elements_.empty(); }

private:
    std::vector<Element> elements_;
};

// The drawing surface of every card, chart, cell, page and printed page.
// Pictures are named as the rest of the program names them ("ne-tooth.png");
// the surface finds them among the program's pictures.
class Canvas {
public:
    virtual ~Canvas() = default;

    // The size a text takes when wrapped at word boundaries into the width;
    // a width of 0 or less means one line per paragraph, unwrapped.
    virtual Size measureText(std::string_view text, const Font& font, double width) const = 0;
    // Draws the text wrapped into the box's width, from its top; what falls
    // below the box is still drawn unless clipped.
    virtual void drawText(std::string_view text, const Rect& box, const Font& font,
                          const Color& color, TextAlign align = TextAlign::Left) = 0;

    virtual void drawLine(Point from, Point to, const Color& color, double width) = 0;
    virtual void fillRect(const Rect& rect, const Color& color) = 0;
    virtual void strokeRect(const Rect& rect, const Color& color, double width) = 0;
    virtual void fillRoundedRect(const Rect& rect, double radius, const Color& color) = 0;
    virtual void strokeRoundedRect(const Rect& rect, double radius, const Color& color,
                                   double width) = 0;
    // An arc of the ellipse that fills the box; angles as in Path.
    virtual void drawArc(const Rect& box, double startAngle, double sweepAngle, const Color& color,
                         double width) = 0;
    virtual void strokePath(const Path& path, const Color& color, double width) = 0;
    virtual void fillPath(const Path& path, const Color& color) = 0;

    // The picture stretched into the rectangle; nothing when there is no
    // picture of that name.
    virtual void drawImage(std::string_view picture, const Rect& rect, double opacity = 1) = 0;
    // A picture file of the user's (a day's photo), fitted into the
    // rectangle keeping its proportions; nothing when it can't be read.
    virtual void drawImageFile(std::string_view path, const Rect& rect, double opacity = 1) = 0;

    // Clipping and the whole state of the surface are kept on a stack.
    virtual void save() = 0;
    virtual void restore() = 0;
    virtual void clip(const Rect& rect) = 0;

    // Ends the page and starts the next; a surface of one page ignores it.
    virtual void newPage() = 0;
};

}  // namespace tilika::platform
