#include "frame/text_page.h"

#include <gtest/gtest.h>

#include <fstream>
#include <limits>

#include "core/app_state.h"
#include "core/dates.h"
#include "core/ids.h"
#include "frame/pictures.h"
#include "platform/clock.h"
#include "platform/recording_canvas.h"
#include "support/temp_dir.h"

namespace tilika::frame {
namespace {

using platform::DrawCommand;
using platform::Rect;

void writeFile(const std::filesystem::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

std::string svg(int width, int height) {
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + std::to_string(width) +
           "\" height=\"" + std::to_string(height) + "\"></svg>";
}

// A page at width 320 and scale 1 over a few pictures and content files of
// its own, measured by the recording canvas's fixed metrics.
class TextPageTest : public ::testing::Test {
protected:
    test::TempDir dir;
    platform::ManualClock clock{core::Date{}, "Europe/Moscow"};
    core::Dates dates{clock};
    core::AppState state;
    platform::RecordingCanvas metrics;
    Pictures pictures;
    std::optional<TextPage> page;

    TextPageTest() {
        const auto pictureDir = dir.path() / "pictures";
        const auto contentDir = dir.path() / "content";
        std::filesystem::create_directories(pictureDir);
        std::filesystem::create_directories(contentDir);
        for (const char* name : {"text-doc", "b-text-doc", "text-next", "b-text-next", "checkgreen",
                                 "checkempty", "etc-up2", "etc-down2", "grayB"}) {
            writeFile(pictureDir / (std::string(name) + ".svg"), svg(64, 64));
        }
        writeFile(pictureDir / "photo.svg", svg(600, 400));
        writeFile(contentDir / "empty-u.txt", "\n tp<val>4<tr>text<val>Пусто \n");
        writeFile(contentDir / "chapters.txt", chapters(12));
        pictures = Pictures(pictureDir);
        page.emplace(TextPageEnvironment{state, pictures, dates, contentDir}, metrics);
    }

    static std::string chapters(int count) {
        std::string markup = "tp<val>2<tr>text<val>Главы";
        for (int i = 1; i <= count; ++i) {
            markup += "<br>tp<val>1<tr>groupid<val>" + std::to_string(i) +
                      "<br>tp<val>4<tr>text<val>Глава " + std::to_string(i);
            if (i == 1) {
                markup += "<tr>checkid<val>7<tr>hiddentext<val>Текст первой главы";
            }
        }
        return markup;
    }

    std::vector<DrawCommand> drawn() {
        platform::RecordingCanvas canvas;
        page->draw(canvas, Rect{0, 0, page->width(), 1e9});
        return canvas.commands();
    }

    std::vector<std::string> texts() {
        std::vector<std::string> result;
        for (const auto& command : drawn()) {
            if (command.kind == DrawCommand::Kind::Text) {
                result.push_back(command.text);
            }
        }
        return result;
    }

    std::vector<long long> groupIds() {
        std::vector<long long> ids;
        for (const auto& group : page->groupData()) {
            ids.push_back(group.groupid);
        }
        return ids;
    }

    bool hasAction(PageAction action) {
        for (const auto& element : page->elements()) {
            if (element.action == action) {
                return true;
            }
        }
        return false;
    }
};

TEST_F(TextPageTest, LaysItemsFromTopToBottomInGroups) {
    page->prepareTextFromString(
        "tp<val>2<tr>text<val>Заголовок"
        "<br>tp<val>1<tr>groupid<val>1"
        "<br>tp<val>4<tr>text<val>Первый абзац"
        "<br>tp<val>7<tr>text<val>Ссылка<tr>linkid<val>5<tr>pic<val>text-doc.png"
        "<br>tp<val>1<tr>groupid<val>2"
        "<br>tp<val>4<tr>text<val>Второй<tr>checkid<val>12",
        true);

    const auto commands = drawn();
    ASSERT_EQ(commands.size(), 7u);
    // The heading: 7 above the first position of 12, bold 17 in the brown
    // of the child edition.
    EXPECT_EQ(commands[0].text, "Заголовок");
    EXPECT_EQ(commands[0].rect, (Rect{15, 19, 290, 21.25}));
    EXPECT_EQ(commands[0].font.weight, platform::FontWeight::Bold);
    EXPECT_EQ(commands[0].color, (platform::Color{0.4, 0.2, 0}));
    // The body text: 5 below the heading, 1 above itself.
    EXPECT_EQ(commands[1].rect, (Rect{15, 46.25, 290, 15}));
    // The link row: its picture (dark under the light theme), the arrow at
    // the right, and the text between them centred on the 35-point line.
    EXPECT_EQ(commands[2].text, "b-text-doc.png");
    EXPECT_EQ(commands[2].rect, (Rect{15, 73.25, 35, 35}));
    EXPECT_EQ(commands[3].text, "b-text-next.png");
    EXPECT_EQ(commands[3].rect, (Rect{285, 80.75, 20, 20}));
    EXPECT_EQ(commands[4].text, "Ссылка");
    EXPECT_EQ(commands[4].rect, (Rect{55, 82, 225, 17.5}));
    // The check box and its text beside it.
    EXPECT_EQ(commands[5].text, "checkempty.png");
    EXPECT_EQ(commands[5].rect, (Rect{15, 114.25, 30, 30}));
    EXPECT_EQ(commands[6].rect, (Rect{50, 121.75, 255, 15}));

    ASSERT_EQ(page->groupData().size(), 2u);
    EXPECT_EQ(page->groupData()[0].top, 45.25);
    EXPECT_EQ(page->groupData()[0].bottom, 113.25);
    EXPECT_EQ(page->groupData()[1].top, 113.25);
    EXPECT_EQ(page->groupData()[1].bottom, 149.25);
    EXPECT_EQ(page->contentHeight(), 169.25);

    // Taps: the whole link line, and the box on its own line.
    EXPECT_EQ(page->hitTest({300, 90}).action, PageAction::Link);
    EXPECT_EQ(page->hitTest({300, 90}).tag, 5);
    EXPECT_EQ(page->hitTest({20, 120}).action, PageAction::Check);
    EXPECT_EQ(page->hitTest({20, 120}).tag, 1001);
    EXPECT_EQ(page->hitTest({200, 50}).action, PageAction::None);

    // A wider window lays the same page out again, marks kept.
    page->checkClick(1001);
    page->setWidth(640);
    EXPECT_EQ(drawn()[0].rect.width, 610);
    EXPECT_TRUE(page->checkState("12"));
}

TEST_F(TextPageTest, WindowOfGroupsWithItsButtons) {
    page->specialPartial(7);
    page->prepareTextFromFile("chapters", true);
    EXPECT_EQ(page->partialstart(), 4);
    EXPECT_EQ(page->gfl(), "chapters");
    EXPECT_EQ(texts(), (std::vector<std::string>{"Глава 4", "Глава 5", "Глава 6", "Глава 7",
                                                 "Глава 8", "Глава 9"}));
    // The group after the window is opened by its start and closed at the end.
    EXPECT_EQ(groupIds(), (std::vector<long long>{4, 5, 6, 7, 8, 9, 10}));
    EXPECT_TRUE(hasAction(PageAction::Previous));
    EXPECT_TRUE(hasAction(PageAction::Next));
    EXPECT_EQ(page->hitTest({160, 20}).tag, -11);
    // Hidden text of a group outside the window is still there.
    EXPECT_EQ(page->getHiddenText(core::newID2(core::idkind::listRow, 7)), "Текст первой главы");
    EXPECT_EQ(page->getHiddenText("8"), "");
    EXPECT_EQ(page->ggroupmax(), 12);

    page->contClick();
    EXPECT_EQ(page->partialstart(), 9);
    EXPECT_EQ(texts().front(), "Глава 9");
    EXPECT_EQ(texts().back(), "Глава 12");
    EXPECT_FALSE(hasAction(PageAction::Next));

    const long long place = page->prevClick();
    EXPECT_EQ(page->partialstart(), 4);
    EXPECT_EQ(place, page->visibleGroup(9, true));

    // Near the start the window begins at the top, with nothing to go back to.
    page->specialPartial(2);
    page->prepareTextFromFile("chapters", true);
    EXPECT_EQ(texts().front(), "Главы");
    EXPECT_FALSE(hasAction(PageAction::Previous));
}

TEST_F(TextPageTest, OneGroupAndTheGroupCursor) {
    page->justGroup(2);
    page->prepareTextFromString(
        "tp<val>1<tr>groupid<val>1<br>tp<val>4<tr>text<val>Один"
        "<br>tp<val>1<tr>groupid<val>2<br>tp<val>3<tr>text<val>Заголовок два"
        "<br>tp<val>4<tr>text<val>Два<br>tp<val>7<tr>text<val>Ссылка два<tr>linkid<val>3"
        "<br>groupid<val>5<br>tp<val>4<tr>text<val>Пять, по старому номеру",
        true);
    // Headings are left out. A record that only names group 5 raises the
    // highest number, while the records after it stay in the open group.
    EXPECT_EQ(texts(), (std::vector<std::string>{"Два", "Ссылка два", "Пять, по старому номеру"}));
    EXPECT_EQ(page->ggroupmax(), 5);

    page->nextGroup();
    EXPECT_EQ(page->ggroupid(), 3);
    page->justGroup(5);
    page->nextGroup();
    EXPECT_EQ(page->ggroupid(), 1);
    page->prevGroup();
    EXPECT_EQ(page->ggroupid(), 5);
}

TEST_F(TextPageTest, ScrollingHighlightAndDimming) {
    page->prepareTextFromFile("chapters", true);
    const auto& groups = page->groupData();
    ASSERT_EQ(groups.size(), 12u);

    EXPECT_EQ(page->visibleGroup(3, true), static_cast<long long>(groups[2].top - 10));
    EXPECT_FALSE(page->highlight());
    EXPECT_EQ(page->hiliteGroup(30, false), static_cast<long long>(groups[11].top - 10));
    EXPECT_EQ(page->highlight()->y, groups[11].top);
    EXPECT_EQ(page->visibleGroup(30, true), -1);
    EXPECT_EQ(page->visibleGroup(0, false), -1);

    page->alphaGroup(2, false);
    for (const auto& element : page->elements()) {
        if (element.text == "Глава 1" || element.text == "Глава 2") {
            EXPECT_EQ(element.alpha, 1.0);
        } else if (element.text == "Глава 3") {
            EXPECT_EQ(element.alpha, 0.3);
            EXPECT_EQ(element.fromAlpha, 1.0);
        }
    }
    page->alphaGroup(3, true);
    for (const auto& element : page->elements()) {
        if (element.text == "Глава 1") {
            EXPECT_EQ(element.alpha, 0.3);
            EXPECT_EQ(element.fromAlpha, 1.0);
        } else if (element.text == "Глава 3") {
            EXPECT_EQ(element.alpha, 1.0);
        }
    }
}

TEST_F(TextPageTest, CheckBoxesByShortNumbersAndGuids) {
    const std::string guid = "0A1B2C3D-0000-4000-8000-000000000001";
    page->prepareTextFromString(
        "tp<val>4<tr>text<val>Первый<tr>checkid<val>1"
        "<br>tp<val>4<tr>text<val>Второй<tr>checkid<val>" +
            guid,
        true);
    ASSERT_EQ(page->checkAr().size(), 2u);
    EXPECT_EQ(page->checkAr()[0].guid, core::newID2(core::idkind::listRow, 1));
    EXPECT_FALSE(page->getFirstCheckGuid());

    page->setCheckData({guid});
    EXPECT_EQ(page->getFirstCheckGuid(), guid);
    EXPECT_TRUE(page->checkState(guid));
    page->checkClick(1001);
    EXPECT_TRUE(page->checkState("1"));
    EXPECT_EQ(page->getFirstCheckGuid(), page->checkAr()[0].guid);
    EXPECT_EQ(page->tagguid(1002), guid);
    EXPECT_FALSE(page->tagguid(1003));
    EXPECT_EQ(drawn()[0].text, "checkgreen.png");

    page->uncheckAll();
    EXPECT_FALSE(page->getFirstCheckGuid());
    EXPECT_EQ(drawn()[0].text, "checkempty.png");
    page->checkClick(999);  // no such box: nothing happens
}

TEST_F(TextPageTest, FormatsTranslationAndColours) {
    page->setStartDate(*dates.dateFromString("2026-01-05"));
    page->prepareTextFromString(
        "tp<val>4<tr>text<val>Неделя<tr>format<val>WS3-WE3 CAP"
        "<br>tp<val>4<tr>text<val>Только<tr>format<val>CAP"
        "<br>tp<val>4<tr>text<val>Знаки<tr>format<val>WS WSx (CAP)",
        true);
    EXPECT_EQ(texts(),
              (std::vector<std::string>{"19.01-25.01 Неделя", "Только", "WS WSx (Знаки)"}));

    state.langid = 2;
    state.trandic["Вес"] = "Gewicht";
    page->specialColor({0, 0, 1}, {0, 1, 0}, {1, 0, 0, 0.5});
    page->prepareTextFromString("tp<val>2<tr>text<val>Вес<br>tp<val>4<tr>text<val>Рост", true);
    const auto commands = drawn();
    EXPECT_EQ(commands[0].text, "Gewicht");
    EXPECT_EQ(commands[0].color, (platform::Color{0, 1, 0}));
    EXPECT_EQ(commands[1].text, "Рост");
    EXPECT_EQ(commands[1].color, (platform::Color{0, 0, 1}));
    EXPECT_EQ(page->highlightColor(), (platform::Color{1, 0, 0, 0.5}));

    // JSON texts are taken as they stand.
    page->prepareTextFromJSONString(R"([{"groupid": 1, "Content": [{"tp": 4, "text": "Вес"}]}])",
                                    true);
    EXPECT_EQ(texts(), (std::vector<std::string>{"Вес"}));
}

TEST_F(TextPageTest, JsonPagesWithButtonsPicturesAndWebLinks) {
    page->prepareTextFromJSONString(
        R"([{"groupid": 1, "Content": [
               {"tp": 8, "text": "Кнопка", "linkid": 4},
               {"tp": 6, "pic": "photo.png", "text": "Подпись"},
               {"tp": "7", "text": "Сайт", "weblink": "https://example.org/a.png"}]},
            {"groupid": 3, "Content": [{"tp": 4, "text": "Три"}]}])",
        true, R"([{"groupid": 1, "Content": [{"tp": 4, "text": "Ещё к первой"}]},
                  {"groupid": 2, "Content": [{"tp": 4, "text": "Вторая"}]}])");

    EXPECT_EQ(texts(), (std::vector<std::string>{"Кнопка", "Подпись", "Сайт", "Ещё к первой",
                                                 "Вторая", "Три"}));
    EXPECT_EQ(groupIds(), (std::vector<long long>{1, 2, 3}));
    const auto commands = drawn();
    EXPECT_EQ(commands[0].text, "grayB.png");
    // The picture is 300 wide, centred, in its own proportions.
    EXPECT_EQ(commands[2].text, "photo.png");
    EXPECT_EQ(commands[2].rect, (Rect{10, commands[2].rect.y, 300, 200}));

    EXPECT_EQ(page->hitTest({100, commands[0].rect.y + 5}).tag, 4);
    // A caption without a link is no target.
    EXPECT_EQ(page->hitTest({160, commands[3].rect.y + 2}).action, PageAction::None);
    const auto web = page->hitTest({100, commands[5].rect.y + 5});
    EXPECT_EQ(web.action, PageAction::OpenLink);
    EXPECT_EQ(web.url, "https://example.org/a.png");
    EXPECT_EQ(page->htmlData().size(), 1u);
}

TEST_F(TextPageTest, JsonGroupsInWindowsAndAlone) {
    std::string json = "[";
    for (int i = 1; i <= 12; ++i) {
        json += (i > 1 ? "," : "") + std::string("{\"groupid\": ") + std::to_string(i) +
                ", \"Content\": [{\"tp\": 3, \"text\": \"Заголовок " + std::to_string(i) +
                "\"}, {\"tp\": 4, \"text\": \"Текст " + std::to_string(i) + "\"}]}";
    }
    json += "]";
    page->specialPartial(7);
    page->prepareTextFromJSONString(json, true);
    EXPECT_EQ(texts().front(), "Заголовок 4");
    EXPECT_EQ(texts().back(), "Текст 9");
    EXPECT_TRUE(hasAction(PageAction::Previous));
    EXPECT_TRUE(hasAction(PageAction::Next));

    page->specialPartial(-1);
    page->justGroup(11);
    page->prepareTextFromJSONString(json, true);
    EXPECT_EQ(texts(), (std::vector<std::string>{"Текст 11"}));

    // A picture with a caption, a link and a check box keeps all three.
    page->justGroup(-1);
    page->prepareTextFromJSONString(
        R"([{"groupid": 1, "Content": [{"tp": 6, "pic": "photo.png", "text": "Баннер",
             "linkid": 8, "checkid": "5"}]}])",
        true);
    EXPECT_EQ(page->checkAr().size(), 1u);
    const auto commands = drawn();
    ASSERT_EQ(commands.size(), 4u);
    EXPECT_EQ(commands[3].text, "Баннер");
    EXPECT_EQ(commands[3].align, platform::TextAlign::Center);
    EXPECT_EQ(page->hitTest({200, commands[3].rect.y + 2}).tag, 8);
}

TEST_F(TextPageTest, BadSourcesGiveWhatCanBeRead) {
    page->prepareTextFromString("", true);
    EXPECT_TRUE(texts().empty());
    EXPECT_EQ(groupIds(), (std::vector<long long>{0}));

    page->prepareTextFromString(
        "tp<val>4<tr>text без разделителя<tr>text<val>Читается"
        "<br>tp<val>99<tr>text<val>Неизвестный вид<br>tp<val>1e300<tr>text<val>Огромный"
        "<br>tp<val>4<tr>groupid<val>99999999999999999999<tr>text<val>Большая группа"
        "<br><tr><val><br>tp<val>4<tr>text<val>Конец",
        true);
    EXPECT_EQ(texts(), (std::vector<std::string>{"Читается", "Большая группа", "Конец"}));

    for (const char* json :
         {"", "{", "[1, \"x\", null]", R"({"groupid": 1})", R"([{"groupid": "x", "Content": 5}])",
          R"([{"groupid": 1, "Content": [7, {"tp": [1]}, {"tp": 1e999}]}])"}) {
        page->prepareTextFromJSONString(json, true, std::string("not json"));
        EXPECT_TRUE(texts().empty()) << json;
    }

    // A window asked for far beyond any page moves on without overflowing.
    page->specialPartial(std::numeric_limits<long long>::max());
    page->prepareTextFromFile("chapters", true);
    page->contClick();
    EXPECT_TRUE(texts().empty());
    page->specialPartial(-1);

    // A missing file, or a name that would leave the folder, shows the
    // empty page of the bundle.
    page->prepareTextFromFile("no-such-page", true);
    EXPECT_EQ(texts(), (std::vector<std::string>{"Пусто"}));
    page->prepareTextFromFile("../content/chapters", true);
    EXPECT_EQ(texts(), (std::vector<std::string>{"Пусто"}));
}

}  // namespace
}  // namespace tilika::frame
