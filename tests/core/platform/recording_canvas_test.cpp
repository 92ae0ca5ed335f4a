#include "platform/recording_canvas.h"

#include <gtest/gtest.h>

namespace tilika::platform {
namespace {

TEST(RecordingCanvasTest, WrapsWordsByCharactersNotBytes) {
    const Font font{10};  // 5 per character, 12.5 per line
    EXPECT_EQ(RecordingCanvas::wrap("Мама мыла раму", font, 50),
              (std::vector<std::string>{"Мама мыла", "раму"}));
    // A word longer than the line is cut; line breaks start paragraphs.
    EXPECT_EQ(RecordingCanvas::wrap("Длинноеслово\nа", font, 25),
              (std::vector<std::string>{"Длинн", "оесло", "во", "а"}));
    EXPECT_EQ(RecordingCanvas::wrap("", font, 50).size(), 0u);

    RecordingCanvas canvas;
    EXPECT_EQ(canvas.measureText("Мама мыла раму", font, 50), (Size{45, 25}));
    EXPECT_EQ(canvas.measureText("Мама мыла раму", font, 0), (Size{70, 12.5}));
    EXPECT_EQ(canvas.measureText("Жир", Font{10, FontWeight::Bold}, 0).width, 16.5);
}

TEST(RecordingCanvasTest, ReplaysEveryCallInOrder) {
    RecordingCanvas first;
    first.save();
    first.clip({0, 0, 10, 10});
    first.drawText("текст", {1, 2, 3, 4}, Font{12}, Color{1, 0, 0}, TextAlign::Center);
    first.drawLine({0, 0}, {5, 5}, Color{}, 2);
    first.fillRect({1, 1, 2, 2}, Color{0, 1, 0});
    first.strokeRect({1, 1, 2, 2}, Color{}, 1);
    first.fillRoundedRect({1, 1, 2, 2}, 3, Color{});
    first.strokeRoundedRect({1, 1, 2, 2}, 3, Color{}, 1);
    first.drawArc({0, 0, 4, 4}, 90, -180, Color{}, 1);
    first.strokePath(Path().moveTo({0, 0}).lineTo({1, 1}).close(), Color{}, 1);
    first.fillPath(Path().moveTo({0, 0}).cubicTo({1, 0}, {1, 1}, {0, 1}), Color{});
    first.drawImage("ne-tooth.png", {0, 0, 35, 35}, 0.5);
    first.restore();
    first.newPage();

    RecordingCanvas second;
    first.replay(second);
    ASSERT_EQ(second.commands().size(), first.commands().size());
    for (std::size_t i = 0; i < first.commands().size(); ++i) {
        const auto& a = first.commands()[i];
        const auto& b = second.commands()[i];
        EXPECT_EQ(a.kind, b.kind);
        EXPECT_EQ(a.rect, b.rect);
        EXPECT_EQ(a.text, b.text);
        EXPECT_EQ(a.color, b.color);
        EXPECT_EQ(a.opacity, b.opacity);
        EXPECT_EQ(a.path.elements().size(), b.path.elements().size());
    }
}

}  // namespace
}  // namespace tilika::platform
