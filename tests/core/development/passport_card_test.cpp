#include "development/passport_card.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "core/app_state.h"
#include "platform/recording_canvas.h"

namespace tilika::development {
namespace {

using platform::DrawCommand;
using platform::RecordingCanvas;
using platform::Rect;

const Rect kCard{0, 0, 320, 900};

// A child with a profile as the form leaves it: no birth measures, a
// "HH:mm" time that is no full moment, nothing measured since.
PassportCardData plainChild(int ageDays) {
    PassportCardData data;
    data.age = "1 месяц";
    data.ageDays = ageDays;
    data.ageWeeks = "1 неделя и 1 день";
    return data;
}

std::vector<std::string> texts(const RecordingCanvas& canvas) {
    std::vector<std::string> out;
    for (const DrawCommand& command : canvas.commands()) {
        if (command.kind == DrawCommand::Kind::Text) {
            out.push_back(command.text);
        }
    }
    return out;
}

bool has(const std::vector<std::string>& lines, const std::string& text) {
    return std::find(lines.begin(), lines.end(), text) != lines.end();
}

bool mentions(const std::vector<std::string>& lines, const std::string& part) {
    return std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
        return line.find(part) != std::string::npos;
    });
}

// Draws the card and checks that measuring alone reaches the same bottom.
std::vector<std::string> drawn(const PassportCardData& data, int tp,
                               RecordingCanvas* out = nullptr) {
    const core::AppState state;
    PassportCard card(state, data);
    RecordingCanvas canvas;
    const double measured = card.drawContent(canvas, tp, false, kCard);
    EXPECT_TRUE(canvas.commands().empty()) << "measuring draws nothing";
    const double bottom = card.drawContent(canvas, tp, true, kCard);
    EXPECT_DOUBLE_EQ(measured, bottom);
    EXPECT_DOUBLE_EQ(card.calcHeight(canvas, tp), bottom + 10);
    if (out != nullptr) {
        *out = canvas;
    }
    return texts(canvas);
}

TEST(PassportCardTest, MainCardShowsOnlyWhatIsKnown) {
    const auto plain = drawn(plainChild(30), card::main);
    EXPECT_FALSE(has(plain, "Данные при рождении"));
    EXPECT_FALSE(has(plain, "Биометрические данные"));
    EXPECT_TRUE(
        has(plain, "Перейдите в настройки и создайте список часто используемых документов"));
    EXPECT_FALSE(has(plain, "Посмотреть документы"));
    const std::vector<std::string> order{"Возраст", "Группа крови", "Документы", "Карта прививок",
                                         "Посмотреть карту"};
    auto at = plain.begin();
    for (const std::string& heading : order) {
        at = std::find(at, plain.end(), heading);
        EXPECT_NE(at, plain.end()) << heading << " in its place";
    }

    PassportCardData full = plainChild(30);
    full.birthRost = "52";
    full.birthTime = "07:15";
    full.measures.rost = "74.000";
    full.measures.rostper = "меньше месяца";
    full.measures.bio1 = "45";
    full.measures.bio1per = "1 месяц назад";
    full.documents = "Паспорт";
    const auto lines = drawn(full, card::main);
    EXPECT_TRUE(has(lines, "Данные при рождении"));
    EXPECT_TRUE(has(lines, "07:15"));
    EXPECT_FALSE(has(lines, "Вес")) << "no weight was given at birth nor since";
    EXPECT_TRUE(has(lines, "Биометрические данные"));
    EXPECT_TRUE(has(lines, "74.0"));
    EXPECT_TRUE(has(lines, "Окружность головы"));
    EXPECT_TRUE(has(lines, "1 месяц назад"));
    EXPECT_FALSE(has(lines, "Обхват груди"));
    EXPECT_TRUE(has(lines, "Посмотреть документы"));
}

TEST(PassportCardTest, WeeksAreToldFromTheEighthDayToTheEndOfTheFirstYear) {
    for (int days : {7, 8, 364, 365}) {
        SCOPED_TRACE(days);
        const bool weeks = days >= 8 && days <= 364;
        const auto lines = drawn(plainChild(days), card::main);
        EXPECT_EQ(has(lines, "1 месяц или \n1 неделя и 1 день"), weeks);
        EXPECT_EQ(mentions(lines, " или"), weeks);
    }
}

TEST(PassportCardTest, GirthsMoveTheValueColumnAndTheHeightLinesUpWithTheWeight) {
    PassportCardData data = plainChild(30);
    data.measures.rost = "60.000";
    data.measures.ves = "5.100";
    RecordingCanvas plain;
    drawn(data, card::main, &plain);
    data.measures.bio2 = "46";
    RecordingCanvas girth;
    drawn(data, card::main, &girth);

    const auto leftOf = [](const RecordingCanvas& canvas, const std::string& text) {
        for (const DrawCommand& command : canvas.commands()) {
            if (command.kind == DrawCommand::Kind::Text && command.text == text) {
                return command.rect.x;
            }
        }
        ADD_FAILURE() << text << " not drawn";
        return 0.0;
    };
    EXPECT_DOUBLE_EQ(leftOf(girth, "5.100") - leftOf(plain, "5.100"), 55);
    const double twoFigures = RecordingCanvas().measureText("00", platform::Font{13}, 0).width;
    EXPECT_DOUBLE_EQ(leftOf(plain, "60.0") - leftOf(plain, "5.100"), twoFigures);
}

TEST(PassportCardTest, EmptyIllnessesAndAllergensShowTheirHints) {
    PassportCardData data;
    EXPECT_EQ(drawn(data, card::illnesses),
              std::vector<std::string>{
                  "В этот раздел попадают серьезные болезни, которые Вы заносите в дневник"});
    EXPECT_EQ(drawn(data, card::allergens),
              std::vector<std::string>{
                  "Занесите в этот раздел аллергены, которые вызывают у ребенка аллергические "
                  "реакции нажав на кнопку редактирования"});

    data.illnesses = {{"Ветрянка", "2 года"}, {"Корь", "меньше месяца"}};
    data.allergens = {"Молоко", "Орехи"};
    EXPECT_EQ(drawn(data, card::illnesses),
              (std::vector<std::string>{"Ветрянка", "2 года", "Корь", "меньше месяца"}));
    EXPECT_EQ(drawn(data, card::allergens), (std::vector<std::string>{"Молоко", "Орехи"}));
}

TEST(PassportCardTest, SizesCardDrawsFlagLinesOnlyForAFoundSize) {
    const core::AppState state;
    PassportCardData data;
    data.sizes = clothingSizes(state, SizeInputs{74, 0, 0, 0, 0, 0, 9}).lines;
    RecordingCanvas canvas;
    const auto lines = drawn(data, card::sizes, &canvas);
    std::vector<std::string> flags;
    for (const DrawCommand& command : canvas.commands()) {
        if (command.kind == DrawCommand::Kind::Image) {
            flags.push_back(command.text);
        }
    }
    EXPECT_EQ(flags,
              (std::vector<std::string>{"flag1.png", "flag2.png", "flag3.png", "flag4.png"}));
    for (const char* text :
         {"Россия", "22", "Евросоюз", "74", "Англия", "9 (month)", "США", "9-12M"}) {
        EXPECT_TRUE(has(lines, text)) << text;
    }

    // The region values stand 30 units left of a plain labelled line's.
    double region = 0;
    double hat = 0;
    for (const DrawCommand& command : canvas.commands()) {
        if (command.kind == DrawCommand::Kind::Text && command.text == "22") {
            region = command.rect.x;
        }
        if (command.kind == DrawCommand::Kind::Text && command.text == "44") {
            hat = command.rect.x;
        }
    }
    EXPECT_DOUBLE_EQ(hat - region, 30);

    data.sizes = clothingSizes(state, SizeInputs{0, 0, 0, 0, 0, 0, -2}).lines;
    RecordingCanvas none;
    const auto noSize = drawn(data, card::sizes, &none);
    EXPECT_FALSE(has(noSize, "Россия"));
    EXPECT_TRUE(
        std::none_of(none.commands().begin(), none.commands().end(),
                     [](const DrawCommand& c) { return c.kind == DrawCommand::Kind::Image; }));
}

}  // namespace
}  // namespace tilika::development
