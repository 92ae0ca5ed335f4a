#include "development/chart.h"

#include <gtest/gtest.h>

#include <cmath>

#include "platform/recording_canvas.h"

namespace tilika::development {
namespace {

using platform::DrawCommand;
using platform::Rect;

// Months 0 to 12 by kilograms 2 to 12, with two norms and the child's own.
GraphDic growthChart() {
    GraphDic dic = initGraphDic();
    dic.xAxisMin = 0;
    dic.xAxisMax = 12;
    dic.yAxisMin = 2;
    dic.yAxisMax = 12;
    dic.setka = true;
    dic.bottomLine = 1;
    for (int month = 0; month <= 12; month += 3) {
        dic.xAxisValue.push_back({static_cast<double>(month), std::to_string(month)});
        addPoint(dic.graph[0], month, 3 + month * 0.5);
        addPoint(dic.graph[1], month, 4 + month * 0.7);
    }
    dic.graphType = {linestyle::shadeAbove, linestyle::shadeBelow, linestyle::thin};
    addPoint(dic.graph[2], 1, 4.2, "4.2");
    addPoint(dic.graph[2], 2, 5.1, "5.1");
    addToLegenda(dic, "Норма", 1, true);
    addToLegenda(dic, "Малыш", 3, false);
    return dic;
}

std::vector<DrawCommand> ofKind(const platform::RecordingCanvas& canvas, DrawCommand::Kind kind) {
    std::vector<DrawCommand> result;
    for (const auto& command : canvas.commands()) {
        if (command.kind == kind) {
            result.push_back(command);
        }
    }
    return result;
}

TEST(ChartTest, PointsMapIntoThePlotArea) {
    const GraphDic dic = growthChart();
    const Rect rect{0, 0, 320, 240};
    const Rect plot = plotRect(dic, rect);
    EXPECT_EQ(plot.x, 34);
    EXPECT_EQ(plot.right(), 310);
    EXPECT_EQ(plot.bottom(), 240 - 6 - 16 - 16);

    const auto corner = getPoint(dic, 0, 2, plot);
    ASSERT_TRUE(corner);
    EXPECT_EQ(corner->x, plot.x);
    EXPECT_EQ(corner->y, plot.bottom());
    const auto middle = getPoint(dic, 6, 7, plot);
    EXPECT_DOUBLE_EQ(middle->x, plot.x + plot.width / 2);
    EXPECT_DOUBLE_EQ(middle->y, plot.y + plot.height / 2);

    GraphDic flat = dic;
    flat.xAxisMax = flat.xAxisMin;
    EXPECT_FALSE(getPoint(flat, 1, 5, plot));
}

TEST(ChartTest, TicksLabelsCurvesAndLegend) {
    const GraphDic dic = growthChart();
    const Rect rect{0, 0, 320, 240};
    const Rect plot = plotRect(dic, rect);
    platform::RecordingCanvas canvas;
    drawNewGraph(canvas, dic, rect);

    std::vector<std::string> texts;
    for (const auto& text : ofKind(canvas, DrawCommand::Kind::Text)) {
        texts.push_back(text.text);
    }
    // Round steps up the y axis, the month labels under the x axis, the
    // labels of the child's points and the legend.
    EXPECT_EQ(texts, (std::vector<std::string>{"2", "4", "6", "8", "10", "12", "0", "3", "6", "9",
                                               "12", "4.2", "5.1", "Норма", "Малыш"}));
    const auto labels = ofKind(canvas, DrawCommand::Kind::Text);
    // The label of month 6 is centred under its tick.
    EXPECT_DOUBLE_EQ(labels[8].rect.x + labels[8].rect.width / 2, plot.x + plot.width / 2);
    EXPECT_DOUBLE_EQ(labels[8].rect.y, plot.bottom() + 3);
    // The y label of 12 stands at the top of the plot.
    EXPECT_DOUBLE_EQ(labels[5].rect.y + labels[5].rect.height / 2, plot.y);

    // Two shaded norms, three curves stroked, the child's thin.
    const auto areas = ofKind(canvas, DrawCommand::Kind::FillPath);
    ASSERT_EQ(areas.size(), 2u);
    EXPECT_EQ(areas[0].path.elements().front().points[0].y, plot.y);
    EXPECT_EQ(areas[1].path.elements().front().points[0].y, plot.bottom());
    const auto strokes = ofKind(canvas, DrawCommand::Kind::StrokePath);
    ASSERT_EQ(strokes.size(), 3u);
    EXPECT_EQ(strokes[2].lineWidth, 1.5);
    EXPECT_EQ(strokes[2].color, nextColor(3));
    // The curves are drawn inside the plot area only.
    const auto clips = ofKind(canvas, DrawCommand::Kind::Clip);
    ASSERT_EQ(clips.size(), 1u);
    EXPECT_EQ(clips[0].rect, plot);

    // In grey the child's curve keeps its lightness and loses its colour.
    platform::RecordingCanvas greyCanvas;
    drawNewGraph(greyCanvas, dic, rect, true);
    const auto grey = ofKind(greyCanvas, DrawCommand::Kind::StrokePath)[2].color;
    EXPECT_EQ(grey.r, grey.g);
    EXPECT_EQ(grey.g, grey.b);
}

TEST(ChartTest, LineStylesAndLegendColours) {
    GraphDic dic = initGraphDic();
    dic.xAxisMax = 10;
    dic.yAxisMax = 10;
    dic.zoom = 0;  // no zoom at all draws at the natural size
    for (int x = 0; x <= 10; x += 5) {
        addPoint(dic.graph[0], x, x);
        addPoint(dic.graph[1], x, 5);
        addPoint(dic.graph[2], x, 10 - x);
    }
    dic.graph[0][1].label = "5";
    dic.graphType = {linestyle::dotsOnly, linestyle::thick, linestyle::dashed};
    addToLegenda(dic, "Пятый ответ", 5, true);
    const Rect rect{0, 0, 300, 200};
    platform::RecordingCanvas canvas;
    drawNewGraph(canvas, dic, rect);

    // Style 1: dots, no line; style 6: one thick line; style 8: dashes.
    const auto strokes = ofKind(canvas, DrawCommand::Kind::StrokePath);
    ASSERT_EQ(strokes.size(), 1u);
    EXPECT_EQ(strokes[0].lineWidth, 5);
    EXPECT_EQ(ofKind(canvas, DrawCommand::Kind::FillRoundedRect).size(), 3u);
    const auto lines = ofKind(canvas, DrawCommand::Kind::Line);
    std::size_t dashes = 0;
    for (const auto& line : lines) {
        if (line.color == nextColor(3)) {
            ++dashes;
            EXPECT_LE(std::hypot(line.to.x - line.from.x, line.to.y - line.from.y), 5 + 1e-9);
        }
    }
    EXPECT_GT(dashes, 20u);
    // A legend entry past the three curves takes the colour of its share.
    const auto swatches = ofKind(canvas, DrawCommand::Kind::FillRect);
    ASSERT_FALSE(swatches.empty());
    EXPECT_EQ(swatches.back().color, nextColor(5));
}

TEST(ChartTest, ExtraCurvesAreDashedAndNamedAtTheirRightEnd) {
    GraphDic dic = initGraphDic();
    dic.xAxisMax = 10;
    dic.yAxisMax = 10;
    const platform::Color grey{0.3, 0.3, 0.3};
    for (double level : {4.0, 30.0}) {
        ExtraCurve curve;
        addPoint(curve.points, 0, level);
        addPoint(curve.points, 8, level + 2);
        // Past the x range: the name stays at the last point inside it.
        addPoint(curve.points, 12, level + 3);
        curve.color = grey;
        curve.label = level < 10 ? "3" : "97";
        dic.extraCurves.push_back(std::move(curve));
    }
    addToLegenda(dic, "Центили", 0, true);
    dic.legenda.back().color = grey;
    const Rect rect{0, 0, 300, 200};
    const Rect plot = plotRect(dic, rect);
    platform::RecordingCanvas canvas;
    drawNewGraph(canvas, dic, rect);

    std::size_t dashes = 0;
    for (const auto& line : ofKind(canvas, DrawCommand::Kind::Line)) {
        dashes += line.color == grey ? 1 : 0;
    }
    EXPECT_GT(dashes, 20u);
    std::vector<DrawCommand> names;
    for (const auto& text : ofKind(canvas, DrawCommand::Kind::Text)) {
        if (text.text == "3" || text.text == "97") {
            names.push_back(text);
        }
    }
    // The curve above the range has no name to show.
    ASSERT_EQ(names.size(), 1u);
    EXPECT_EQ(names[0].text, "3");
    EXPECT_NEAR(names[0].rect.right(), getPoint(dic, 8, 6, plot)->x, 2);
    EXPECT_LT(names[0].rect.bottom(), getPoint(dic, 8, 6, plot)->y);
    EXPECT_EQ(ofKind(canvas, DrawCommand::Kind::FillRect).back().color, grey);
}

TEST(ChartTest, GraphWithoutRangeDrawsAxesAlone) {
    GraphDic dic = growthChart();
    dic.xAxisMax = dic.xAxisMin;
    platform::RecordingCanvas canvas;
    drawNewGraph(canvas, dic, Rect{0, 0, 320, 240});
    EXPECT_EQ(ofKind(canvas, DrawCommand::Kind::Line).size(), 2u);
    EXPECT_TRUE(ofKind(canvas, DrawCommand::Kind::StrokePath).empty());
    EXPECT_TRUE(ofKind(canvas, DrawCommand::Kind::FillPath).empty());
}

TEST(ChartTest, RingsOfSharesAndProgress) {
    EXPECT_EQ(correctPer(0), 270);
    EXPECT_EQ(correctPer(100), 630);
    EXPECT_EQ(nextColor(1), nextColor(8));
    EXPECT_EQ(nextColor(0), nextColor(1));
    EXPECT_NE(nextColor(2), nextColor(1));

    platform::RecordingCanvas canvas;
    std::vector<GraphPoint> votes{{30, 0, {}, {}, {}}, {68, 0, {}, {}, {}}, {2, 0, {}, {}, {}}};
    drawNewChart(canvas, votes, Rect{0, 0, 200, 200});
    const auto shares = ofKind(canvas, DrawCommand::Kind::FillPath);
    ASSERT_EQ(shares.size(), 3u);
    // The first share starts at the top and turns clockwise by 30 percent.
    const auto& arc = shares[0].path.elements()[0];
    EXPECT_EQ(arc.points[2].x, 90);
    EXPECT_DOUBLE_EQ(arc.points[2].y, -108);
    // Shares under three percent carry no label.
    std::vector<std::string> labels;
    for (const auto& text : ofKind(canvas, DrawCommand::Kind::Text)) {
        labels.push_back(text.text);
    }
    EXPECT_EQ(labels, (std::vector<std::string>{"30%", "68%"}));

    platform::RecordingCanvas ring;
    drawProgressRing(ring, Rect{0, 0, 100, 100}, 25, {1, 0.5, 0}, {0.565, 0.718, 0.447});
    const auto arcs = ofKind(ring, DrawCommand::Kind::Arc);
    ASSERT_EQ(arcs.size(), 2u);
    EXPECT_EQ(arcs[1].startAngle, -270);
    EXPECT_EQ(arcs[1].sweepAngle, -90);
    EXPECT_EQ(ofKind(ring, DrawCommand::Kind::Text)[0].text, "25%");
}

}  // namespace
}  // namespace tilika::development
