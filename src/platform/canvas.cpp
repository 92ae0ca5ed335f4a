#include "platform/canvas.h"

namespace tilika::platform {

Path& Path::moveTo(Point p) {
    elements_.push_back({Verb::MoveTo, {p, {}, {}}});
    return *this;
}

Path& Path::lineTo(Point p) {
    elements_.push_back({Verb::LineTo, {p, {}, {}}});
    return *this;
}

Path& Path::cubicTo(Point c1, Point c2, Point end) {
    elements_.push_back({Verb::CubicTo, {c1, c2, end}});
    return *this;
}

Path& Path::arcTo(const Rect& box, double startAngle, double sweepAngle) {
    elements_.push_back(
        {Verb::ArcTo, {{box.x, box.y}, {box.right(), box.bottom()}, {startAngle, sweepAngle}}});
    return *this;
}

Path& Path::close() {
    elements_.push_back({Verb::Close, {}});
    return *this;
}

}  // namespace tilika::platform
