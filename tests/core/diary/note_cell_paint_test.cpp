#include "diary/note_cell_paint.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/recording_canvas.h"

namespace tilika::diary {
namespace {

using platform::DrawCommand;
using platform::RecordingCanvas;

// The lowest point any command reaches.
double drawnBottom(const RecordingCanvas& canvas) {
    double bottom = 0;
    for (const DrawCommand& c : canvas.commands()) {
        switch (c.kind) {
            case DrawCommand::Kind::Line:
                bottom = std::max({bottom, c.from.y, c.to.y});
                break;
            case DrawCommand::Kind::StrokePath:
                for (const auto& element : c.path.elements()) {
                    bottom = std::max(bottom, element.points[0].y);
                }
                break;
            default:
                bottom = std::max(bottom, c.rect.bottom());
        }
    }
    return bottom;
}

std::vector<std::string> pictures(const RecordingCanvas& canvas, DrawCommand::Kind kind) {
    std::vector<std::string> names;
    for (const DrawCommand& c : canvas.commands()) {
        if (c.kind == kind) {
            names.push_back(c.text);
        }
    }
    return names;
}

class NoteCellPaintTest : public ::testing::Test {
protected:
    DayNote day;
    std::vector<CatalogueRow> rows;

    NoteCellPaintTest() {
        initTodayNoteStruct(rows);
        day.day = "22";
        day.weekday = "вс";
        day.color = kIllnessNote;
    }

    CatalogueRow& row(std::string_view field) {
        return *std::find_if(rows.begin(), rows.end(),
                             [&](const CatalogueRow& r) { return r.field == field; });
    }
};

TEST_F(NoteCellPaintTest, HeightIsWhatIsDrawn) {
    const NoteCellPaint paint(NoteCellLook{});
    RecordingCanvas canvas;
    // An empty day is only its block.
    const double empty = paint.height(day, rows, 360, canvas);
    paint.draw(day, rows, {0, 0, 360, empty}, false, canvas);
    EXPECT_DOUBLE_EQ(drawnBottom(canvas), empty);

    row("note").text = std::string(400, 'a');  // wraps onto many lines
    row("temp").multiarray = {{"08:00", "37.2", 0, "", ""}, {"20:00", "38.1", 1, "", ""}};
    row("pills").multiarray = {{"", "", 0, "{}", "Нурофен, 1 шт."}};
    day.flags.isphoto = true;
    day.photopath = "/photos/x-s.jpg";
    for (double width : {360.0, 200.0, 900.0}) {
        canvas.clear();
        const double height = paint.height(day, rows, width, canvas);
        EXPECT_GT(height, empty);
        const NoteCellButtons buttons =
            paint.draw(day, rows, {0, 100, width, height}, false, canvas);
        EXPECT_DOUBLE_EQ(drawnBottom(canvas), 100 + height) << width;
        ASSERT_TRUE(buttons.picture.has_value());
        EXPECT_FALSE(buttons.analysis.has_value());
    }
    EXPECT_EQ(pictures(canvas, DrawCommand::Kind::ImageFile),
              std::vector<std::string>{"/photos/x-s.jpg"});
}

TEST_F(NoteCellPaintTest, DrawsFilledSectionsInCatalogueOrderWithTheirLook) {
    row("note").text = "Заметка";
    row("temp").multiarray = {{"08:00", "37.2", 0, "", ""}};
    row("analizy").text = "Общий анализ крови";
    day.values["analizy"] = "Общий анализ крови<br>x<br>a.jpg";
    row("doctor").text = "";  // left out

    RecordingCanvas canvas;
    NoteCellPaint(NoteCellLook{true, true, {0, 0, 0, 1}})
        .draw(day, rows, {0, 0, 360, 200}, true, canvas);
    EXPECT_EQ(
        pictures(canvas, DrawCommand::Kind::Image),
        (std::vector<std::string>{"c-ne-temp128.png", "c-ne-analizy128.png", "c-ne-notepad.png"}));
    const std::vector<std::string> texts = pictures(canvas, DrawCommand::Kind::Text);
    EXPECT_EQ(texts, (std::vector<std::string>{"22", "вс", "08:00  37.2", "Общий анализ крови",
                                               "Заметка"}));
    // Today's warm tint comes first, under everything.
    ASSERT_FALSE(canvas.commands().empty());
    EXPECT_EQ(canvas.commands().front().kind, DrawCommand::Kind::FillRect);
    EXPECT_EQ(canvas.commands().front().color, (platform::Color{1.0, 0.804, 0.255, 0.2}));

    canvas.clear();
    const NoteCellButtons buttons = NoteCellPaint(NoteCellLook{false, false, {1, 1, 1, 1}})
                                        .draw(day, rows, {0, 0, 360, 200}, true, canvas);
    EXPECT_EQ(pictures(canvas, DrawCommand::Kind::Image).front(), "ne-temp128.png");
    EXPECT_EQ(canvas.commands().front().color, (platform::Color{1, 1, 1, 0.2}));
    EXPECT_TRUE(buttons.analysis.has_value());
    EXPECT_FALSE(buttons.picture.has_value());

    // A day that isn't today has no tint; the block carries the day's colour.
    canvas.clear();
    NoteCellPaint(NoteCellLook{}).draw(day, rows, {0, 0, 360, 200}, false, canvas);
    EXPECT_EQ(canvas.commands().front().kind, DrawCommand::Kind::FillRoundedRect);
    EXPECT_EQ(canvas.commands().front().color, (platform::Color{0.8, 0, 0, 0.5}));
}

}  // namespace
}  // namespace tilika::diary
