#include "development/chart.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/text.h"

namespace tilika::development {

namespace {

using platform::Canvas;
using platform::Color;
using platform::Font;
using platform::Path;
using platform::Point;
using platform::Rect;
using platform::TextAlign;

constexpr Color kDarkText{0.2, 0.2, 0.2};
constexpr Color kMainColor{0.16, 0.5, 0.73};

// Colours as drawn: in grey, each becomes its lightness.
struct Ink {
    bool grey = false;
    Color operator()(Color color) const {
        if (grey) {
            const double lightness = 0.299 * color.r + 0.587 * color.g + 0.114 * color.b;
            color = Color{lightness, lightness, lightness, color.a};
        }
        return color;
    }
};

double zoomOf(const GraphDic& dic) {
    return dic.zoom > 0 && std::isfinite(dic.zoom) ? dic.zoom : 1;
}

Color withAlpha(Color color, double alpha) {
    color.a = alpha;
    return color;
}

std::string percentText(double value) {
    return core::formatFixed(value, 0) + "%";
}

void dot(Canvas& canvas, Point at, double radius, const Color& color) {
    canvas.fillRoundedRect(Rect{at.x - radius, at.y - radius, 2 * radius, 2 * radius}, radius,
                           color);
}

// A dashed polyline, five on and five off, carried across corners.
void dashedLine(Canvas& canvas, const std::vector<Point>& points, const Color& color, double width,
                double dash) {
    bool on = true;
    double left = dash;
    for (std::size_t i = 1; i < points.size(); ++i) {
        Point from = points[i - 1];
        const Point to = points[i];
        double length = std::hypot(to.x - from.x, to.y - from.y);
        while (length > 1e-9) {
            const double step = std::min(left, length);
            const double t = step / length;
            const Point next{from.x + (to.x - from.x) * t, from.y + (to.y - from.y) * t};
            if (on) {
                canvas.drawLine(from, next, color, width);
            }
            from = next;
            length -= step;
            left -= step;
            if (left <= 1e-9) {
                on = !on;
                left = dash;
            }
        }
    }
}

// The curve itself; its labelled points come after, so that no clip of the
// plot area cuts a label at its edge.
void drawNewLine(Canvas& canvas, const GraphDic& dic, const std::vector<GraphPoint>& data,
                 const Rect& plot, int type, const Color& fore, const Ink& ink) {
    const double z = zoomOf(dic);
    std::vector<Point> points;
    for (const auto& point : data) {
        if (const auto at = getPoint(dic, point, plot)) {
            points.push_back(*at);
        }
    }
    if (points.empty()) {
        return;
    }
    const bool shaded = type == linestyle::shadeAbove || type == linestyle::shadeBelow ||
                        type == linestyle::shadeBelowStrong;
    if (shaded && points.size() > 1) {
        // The band between two norms: the lower one shades what lies above
        // it, the upper one what lies below.
        const double edge = type == linestyle::shadeAbove ? plot.y : plot.bottom();
        Path area;
        area.moveTo({points.front().x, edge});
        for (const auto& point : points) {
            area.lineTo(point);
        }
        area.lineTo({points.back().x, edge}).close();
        const double alpha = type == linestyle::shadeBelowStrong ? 0.5 : 0.1;
        canvas.fillPath(area, ink(withAlpha(dic.backColor.value_or(fore), alpha)));
    }
    if (type != linestyle::dotsOnly && points.size() > 1) {
        if (type == linestyle::dashed) {
            dashedLine(canvas, points, ink(fore), 2 * z, 5 * z);
        } else {
            const double width = type == linestyle::thick  ? 5 * z
                                 : type == linestyle::thin ? 1.5 * z
                                                           : 2 * z;
            Path line;
            line.moveTo(points.front());
            for (std::size_t i = 1; i < points.size(); ++i) {
                line.lineTo(points[i]);
            }
            canvas.strokePath(line, ink(fore), width);
        }
    }
}

void drawLabels(Canvas& canvas, const GraphDic& dic, const std::vector<GraphPoint>& data,
                const Rect& plot, int type, const Color& fore, const Ink& ink) {
    const double z = zoomOf(dic);
    const Color text = ink(dic.textColor.value_or(kDarkText));
    const Font labelFont{9 * z};
    for (const auto& point : data) {
        const auto at = getPoint(dic, point, plot);
        if (!at || (point.label.empty() && type != linestyle::dotsOnly)) {
            continue;
        }
        dot(canvas, *at, 3 * z, ink(fore));
        if (!point.label.empty()) {
            canvas.drawText(point.label, Rect{at->x - 40 * z, at->y - 16 * z, 80 * z, 12 * z},
                            labelFont, text, TextAlign::Center);
        }
        if (!point.subtext.empty()) {
            canvas.drawText(point.subtext, Rect{at->x - 40 * z, at->y + 5 * z, 80 * z, 12 * z},
                            labelFont, text, TextAlign::Center);
        }
    }
}

// The first curve is in the main colour unless given its own.
Color curveColor(const GraphDic& dic, std::size_t index) {
    return dic.graphColor[index].value_or(index == 0 ? dic.mainColor.value_or(kMainColor)
                                                     : nextColor(static_cast<int>(index) + 1));
}

Color extraColor(const ExtraCurve& curve) {
    return curve.color.value_or(kDarkText);
}

// The name of an extra curve just inside the plot's right edge, above its
// last point there, so that the names of close curves stay apart.
void drawEndLabel(Canvas& canvas, const GraphDic& dic, const ExtraCurve& curve, const Rect& plot,
                  const Ink& ink) {
    if (curve.label.empty()) {
        return;
    }
    std::optional<Point> end;
    for (const auto& point : curve.points) {
        if (point.x > dic.xAxisMax) {
            break;
        }
        if (const auto at = getPoint(dic, point, plot)) {
            end = at;
        }
    }
    if (!end || end->y < plot.y || end->y > plot.bottom()) {
        return;
    }
    const double z = zoomOf(dic);
    const Font font{8 * z};
    const double width = canvas.measureText(curve.label, font, 0).width + 2 * z;
    canvas.drawText(curve.label, Rect{end->x - width - 1 * z, end->y - 11 * z, width, 10 * z}, font,
                    ink(extraColor(curve)), TextAlign::Right);
}

}  // namespace

GraphDic initGraphDic() {
    return GraphDic{};
}

void addToLegenda(GraphDic& dic, std::string caption, int pos, bool checked) {
    dic.legenda.push_back({std::move(caption), pos, checked, std::nullopt});
}

void addPoint(std::vector<GraphPoint>& points, double x, double y, std::string label) {
    points.push_back({x, y, std::move(label), {}, {}});
}

Color nextColor(int number) {
    static constexpr std::array<Color, 7> kColors{{
        {0.16, 0.5, 0.73},
        {0.9, 0.49, 0.13},
        {0.15, 0.68, 0.38},
        {0.75, 0.22, 0.17},
        {0.56, 0.27, 0.68},
        {0.95, 0.77, 0.06},
        {0.2, 0.6, 0.86},
    }};
    return number >= 2 && number <= 7 ? kColors[static_cast<std::size_t>(number - 1)] : kColors[0];
}

Rect plotRect(const GraphDic& dic, const Rect& rect) {
    const double z = zoomOf(dic);
    double top = rect.y + 6 * z + (dic.caption.empty() ? 0 : 20 * z);
    double bottom = rect.bottom() - 6 * z;
    bottom -= dic.bottomLine != 0 ? 16 * z : 0;
    bottom -= dic.legenda.empty() ? 0 : 16 * z;
    bottom -= dic.bottomCaption.empty() ? 0 : 16 * z;
    const double left = rect.x + 34 * z;
    const double right = rect.right() - 10 * z;
    return Rect{left, top, std::max(0.0, right - left), std::max(0.0, bottom - top)};
}

std::optional<Point> getPoint(const GraphDic& dic, double x, double y, const Rect& plot) {
    const double xRange = dic.xAxisMax - dic.xAxisMin;
    const double yRange = dic.yAxisMax - dic.yAxisMin;
    if (!(xRange > 0) || !(yRange > 0) || !std::isfinite(x) || !std::isfinite(y)) {
        return std::nullopt;
    }
    return Point{plot.x + (x - dic.xAxisMin) / xRange * plot.width,
                 plot.bottom() - (y - dic.yAxisMin) / yRange * plot.height};
}

std::optional<Point> getPoint(const GraphDic& dic, const GraphPoint& point, const Rect& plot) {
    return getPoint(dic, point.x, point.y, plot);
}

std::vector<double> yTicks(double min, double max) {
    std::vector<double> ticks;
    if (!(max > min) || !std::isfinite(max - min)) {
        return ticks;
    }
    // About five lines, at steps of 1, 2 or 5 times a power of ten.
    const double rough = (max - min) / 5;
    const double magnitude = std::pow(10.0, std::floor(std::log10(rough)));
    const double norm = rough / magnitude;
    const double step = (norm < 1.5 ? 1 : norm < 3 ? 2 : norm < 7 ? 5 : 10) * magnitude;
    for (double value = std::ceil(min / step) * step; value <= max + step * 1e-9; value += step) {
        ticks.push_back(std::abs(value) < step * 1e-9 ? 0 : value);
        if (ticks.size() > 20) {
            break;
        }
    }
    return ticks;
}

void drawNewGraph(Canvas& canvas, const GraphDic& dic, const Rect& rect, bool grey) {
    const Ink ink{grey};
    const double z = zoomOf(dic);
    const Rect plot = plotRect(dic, rect);
    const Color text = ink(dic.textColor.value_or(kDarkText));
    const Font small{9 * z};

    if (dic.backgroundColor) {
        canvas.fillRect(rect, ink(*dic.backgroundColor));
    }
    if (!dic.mainImageBackgroud.empty()) {
        canvas.drawImage(dic.mainImageBackgroud, rect, 1);
    }
    if (!dic.mainImage.empty()) {
        canvas.drawImage(dic.mainImage, plot, 1);
    }
    if (!dic.caption.empty()) {
        canvas.drawText(dic.caption, Rect{rect.x, rect.y + 4 * z, rect.width, 18 * z},
                        Font{13 * z, platform::FontWeight::Bold}, text, TextAlign::Center);
    }

    const bool ranged = dic.xAxisMax > dic.xAxisMin && dic.yAxisMax > dic.yAxisMin;
    const auto rows = ranged ? yTicks(dic.yAxisMin, dic.yAxisMax) : std::vector<double>{};
    const Color grid = withAlpha(text, 0.15);
    for (double value : rows) {
        const double y = getPoint(dic, dic.xAxisMin, value, plot)->y;
        if (dic.setka) {
            canvas.drawLine({plot.x, y}, {plot.right(), y}, grid, 1);
        }
        canvas.drawText(
            core::formatFixed(value, std::abs(value - std::round(value)) < 1e-9 ? 0 : 1),
            Rect{rect.x, y - 6 * z, 30 * z, 12 * z}, small, text, TextAlign::Right);
    }
    for (const auto& tick : dic.xAxisValue) {
        const auto at = getPoint(dic, tick.pos, dic.yAxisMin, plot);
        if (!at || tick.pos < dic.xAxisMin || tick.pos > dic.xAxisMax) {
            continue;
        }
        if (dic.setka) {
            canvas.drawLine({at->x, plot.y}, {at->x, plot.bottom()}, grid, 1);
        }
        if (dic.bottomLine != 0) {
            canvas.drawLine({at->x, plot.bottom()}, {at->x, plot.bottom() + 3 * z},
                            withAlpha(text, 0.6), 1);
            if (dic.bottomLine == 2) {
                canvas.drawText(tick.label,
                                Rect{at->x + 2 * z, plot.bottom() + 3 * z, 60 * z, 12 * z}, small,
                                text, TextAlign::Left);
            } else {
                canvas.drawText(tick.label,
                                Rect{at->x - 30 * z, plot.bottom() + 3 * z, 60 * z, 12 * z}, small,
                                text, TextAlign::Center);
            }
        }
    }

    const Color axis = withAlpha(text, 0.6);
    canvas.drawLine({plot.x, plot.y}, {plot.x, plot.bottom()}, axis, 1 * z);
    canvas.drawLine({plot.x, plot.bottom()}, {plot.right(), plot.bottom()}, axis, 1 * z);
    if (dic.isBorders) {
        canvas.strokeRect(plot, axis, 1 * z);
    }

    if (ranged) {
        canvas.save();
        canvas.clip(plot);
        for (const auto& curve : dic.extraCurves) {
            drawNewLine(canvas, dic, curve.points, plot, curve.type, extraColor(curve), ink);
        }
        for (std::size_t i = 0; i < dic.graph.size(); ++i) {
            drawNewLine(canvas, dic, dic.graph[i], plot, dic.graphType[i], curveColor(dic, i), ink);
        }
        canvas.restore();
        for (std::size_t i = 0; i < dic.graph.size(); ++i) {
            drawLabels(canvas, dic, dic.graph[i], plot, dic.graphType[i], curveColor(dic, i), ink);
        }
        for (const auto& curve : dic.extraCurves) {
            drawEndLabel(canvas, dic, curve, plot, ink);
        }
        drawLabels(canvas, dic, dic.points, plot, linestyle::dotsOnly,
                   dic.mainColor.value_or(kMainColor), ink);
        for (const auto& hint : dic.imageHints) {
            if (const auto at = getPoint(dic, hint.x, hint.y, plot)) {
                canvas.drawImage(hint.picture, Rect{at->x - 8 * z, at->y - 8 * z, 16 * z, 16 * z},
                                 1);
            }
        }
    }

    double bottom = plot.bottom() + (dic.bottomLine != 0 ? 16 * z : 0);
    if (!dic.legenda.empty()) {
        double x = plot.x;
        for (const auto& entry : dic.legenda) {
            // Entries past the curves name the shares of a ring, in its colours.
            const Color color =
                entry.color ? *entry.color
                : entry.pos > 3
                    ? nextColor(entry.pos)
                    : curveColor(dic, static_cast<std::size_t>(std::clamp(entry.pos, 1, 3) - 1));
            const double alpha = entry.checked ? 1 : 0.35;
            canvas.fillRect(Rect{x, bottom + 4 * z, 10 * z, 6 * z}, ink(withAlpha(color, alpha)));
            const double width = canvas.measureText(entry.caption, small, 0).width;
            canvas.drawText(entry.caption, Rect{x + 13 * z, bottom + 1 * z, width + 1, 12 * z},
                            small, withAlpha(text, alpha), TextAlign::Left);
            x += width + 25 * z;
        }
        bottom += 16 * z;
    }
    if (!dic.bottomCaption.empty()) {
        canvas.drawText(dic.bottomCaption, Rect{rect.x, bottom + 1 * z, rect.width, 14 * z}, small,
                        text, TextAlign::Center);
    }
}

void drawNewChart(Canvas& canvas, const std::vector<GraphPoint>& data, const Rect& rect,
                  double zoom) {
    double sum = 0;
    for (const auto& item : data) {
        sum += std::isfinite(item.x) && item.x > 0 ? item.x : 0;
    }
    if (!(sum > 0)) {
        return;
    }
    const double radius = std::min(rect.width, rect.height) / 2;
    const double hole = radius / 3;
    const Point center{rect.x + rect.width / 2, rect.y + rect.height / 2};
    const Rect outer{center.x - radius, center.y - radius, 2 * radius, 2 * radius};
    const Rect inner{center.x - hole, center.y - hole, 2 * hole, 2 * hole};
    double start = 90;  // the top; shares follow clockwise
    for (std::size_t i = 0; i < data.size(); ++i) {
        const double value = std::isfinite(data[i].x) && data[i].x > 0 ? data[i].x : 0;
        const double sweep = -value / sum * 360;
        if (value > 0) {
            Path share;
            share.arcTo(outer, start, sweep).arcTo(inner, start + sweep, -sweep).close();
            canvas.fillPath(share, nextColor(static_cast<int>(i) + 1));
            const double percent = value / sum * 100;
            if (percent >= 3.0) {
                const double middle = (start + sweep / 2) * std::numbers::pi / 180;
                const double r = (radius + hole) / 2;
                const Point at{center.x + r * std::cos(middle), center.y - r * std::sin(middle)};
                canvas.drawText(percentText(percent),
                                Rect{at.x - 30 * zoom, at.y - 7 * zoom, 60 * zoom, 14 * zoom},
                                Font{11 * zoom, platform::FontWeight::Bold}, Color{1, 1, 1},
                                TextAlign::Center);
            }
        }
        start += sweep;
    }
}

double correctPer(double percent) {
    return percent / 100 * 360 + 270;
}

void drawChartProgress(Canvas& canvas, const Color& color, Point center, double startAngle,
                       double endAngle, double size) {
    // The angles run clockwise on the screen; the canvas counts the other way.
    const double width = size * 0.12;
    const double radius = (size - width) / 2;
    canvas.drawArc(Rect{center.x - radius, center.y - radius, 2 * radius, 2 * radius}, -startAngle,
                   -(endAngle - startAngle), color, width);
}

void drawProgressRing(Canvas& canvas, const Rect& rect, double percent, const Color& color,
                      const Color& backColor) {
    const double size = std::min(rect.width, rect.height);
    const Point center{rect.x + rect.width / 2, rect.y + rect.height / 2};
    const double p = std::clamp(std::isfinite(percent) ? percent : 0.0, 0.0, 100.0);
    drawChartProgress(canvas, backColor, center, correctPer(0), correctPer(100), size);
    if (p > 0) {
        drawChartProgress(canvas, color, center, correctPer(0), correctPer(p), size);
    }
    canvas.drawText(percentText(p), Rect{rect.x, center.y - size * 0.1, rect.width, size * 0.2},
                    Font{size * 0.16, platform::FontWeight::Bold}, color, TextAlign::Center);
}

}  // namespace tilika::development
