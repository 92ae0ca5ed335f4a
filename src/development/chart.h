#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "platform/canvas.h"

namespace tilika::development {

struct GraphPoint {
    double x = 0;
    double y = 0;
    std::string label;    // a point with a label gets a dot and the label
    std::string subtext;  // a second line under the label
    std::string hint;
};

struct AxisTick {
    double pos = 0;  // an x, in the points' own unit
    std::string label;
};

struct LegendEntry {
    std::string caption;
    int pos = 0;  // the curve it names, 1 to 3
    bool checked = true;
    // A colour of its own, for an entry that names extra curves.
    std::optional<platform::Color> color;
};

struct ImageHint {
    double x = 0;
    double y = 0;
    std::string picture;
};

// Line styles of a curve.
namespace linestyle {
inline constexpr int dotsOnly = 1;
inline constexpr int line = 2;
inline constexpr int shadeAbove = 3;  // the lower edge of a band
inline constexpr int shadeBelow = 4;  // the upper edge of a band
inline constexpr int thin = 5;        // the child's own values
inline constexpr int thick = 6;
inline constexpr int shadeBelowStrong = 7;
inline constexpr int dashed = 8;
}  // namespace linestyle

// A curve over the three numbered ones, such as a reference line, with its
// name at its right end.
struct ExtraCurve {
    std::vector<GraphPoint> points;
    int type = linestyle::dashed;
    std::optional<platform::Color> color;
    std::string label;
};

// Everything a graph is drawn from. Curves are numbered 1 to 3, as the
// screens that build them count.
struct GraphDic {
    double xAxisMin = 0;
    double xAxisMax = 0;
    double yAxisMin = 0;
    double yAxisMax = 0;
    bool setka = false;  // the grid
    int bottomLine = 0;  // 0 no labels under the x axis; 1 or 2 their style
    std::vector<AxisTick> xAxisValue;
    std::array<std::vector<GraphPoint>, 3> graph;
    std::array<int, 3> graphType{linestyle::shadeAbove, linestyle::shadeAbove,
                                 linestyle::shadeAbove};
    // The first takes mainColor; legend entries past the third take nextColor.
    std::array<std::optional<platform::Color>, 3> graphColor;
    // Drawn under the three numbered curves.
    std::vector<ExtraCurve> extraCurves;
    std::vector<GraphPoint> points;
    std::vector<ImageHint> imageHints;
    std::vector<LegendEntry> legenda;
    double zoom = 1;
    std::optional<platform::Color> backgroundColor;
    std::optional<platform::Color> mainColor;
    std::optional<platform::Color> backColor;
    std::optional<platform::Color> textColor;
    bool isBorders = false;
    std::string caption;
    std::string bottomCaption;
    std::string mainImage;
    // A picture behind the whole graph; the key has always been spelled so.
    std::string mainImageBackgroud;
};

GraphDic initGraphDic();
void addToLegenda(GraphDic& dic, std::string caption, int pos, bool checked);
void addPoint(std::vector<GraphPoint>& points, double x, double y, std::string label = {});

// One of seven fixed colours for curves 1 to 7; other numbers take the first.
platform::Color nextColor(int number);

// The plot area inside the rectangle, after room for captions and labels.
platform::Rect plotRect(const GraphDic& dic, const platform::Rect& rect);
// Where a point stands in the plot area; nothing for a graph without range.
std::optional<platform::Point> getPoint(const GraphDic& dic, const GraphPoint& point,
                                        const platform::Rect& plot);
std::optional<platform::Point> getPoint(const GraphDic& dic, double x, double y,
                                        const platform::Rect& plot);
// The values of the horizontal grid lines: round steps over the y range.
std::vector<double> yTicks(double min, double max);

// Draws the graph in the rectangle. In grey every colour becomes its own
// lightness, for printing without colour.
void drawNewGraph(platform::Canvas& canvas, const GraphDic& dic, const platform::Rect& rect,
                  bool grey = false);

// A ring of shares of the points' x values, from the top and clockwise.
void drawNewChart(platform::Canvas& canvas, const std::vector<GraphPoint>& data,
                  const platform::Rect& rect, double zoom = 1);

// A percentage as an angle of the progress ring: 0 stands at the top (270)
// and the ring runs clockwise, 100 coming back there at 630.
double correctPer(double percent);
// The segment of a ring between two such angles.
void drawChartProgress(platform::Canvas& canvas, const platform::Color& color,
                       platform::Point center, double startAngle, double endAngle, double size);
// A whole progress ring with its percentage in the middle.
void drawProgressRing(platform::Canvas& canvas, const platform::Rect& rect, double percent,
                      const platform::Color& color, const platform::Color& backColor);

}  // namespace tilika::development
