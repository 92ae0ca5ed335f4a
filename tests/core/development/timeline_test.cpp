#include "development/timeline.h"

#include <SQLiteCpp/Statement.h>
#include <gtest/gtest.h>

#include <fstream>

#include "development/timeline_paint.h"
#include "diary/reference_lists.h"
#include "platform/log.h"
#include "platform/recording_canvas.h"
#include "support/core_fixture.h"

namespace tilika::development {
namespace {

std::string listRow(int n) {
    return core::newID2(core::idkind::listRow, n);
}

class TimelineTest : public test::CoreFixture {
protected:
    std::filesystem::path content = dir.path() / "content";
    NoPlaneAppend noAppend;
    Timeline timeline{context, content, noAppend};
    std::vector<std::string> logged;

    TimelineTest() {
        std::filesystem::create_directories(content);
        platform::setLogSink([this](std::string_view line) { logged.emplace_back(line); });
    }
    ~TimelineTest() override { platform::setLogSink({}); }

    void write(const std::string& name, const std::string& text) {
        std::ofstream(content / name) << text;
    }

    void put(const std::string& gid, const std::string& sdat, const std::string& value) {
        SQLite::Statement insert(db(),
                                 "insert into childdata (type, value, sdat, childguid) values "
                                 "('achive', ?, ?, ?)");
        insert.bind(1, value);
        insert.bind(2, sdat);
        insert.bind(3, gid);
        insert.exec();
    }

    // The comment and column of each event, as "comment@start".
    std::vector<std::string> placed() const {
        std::vector<std::string> out;
        for (const PlaneEvent& event : timeline.mainData()) {
            out.push_back(event.comment + "@" + std::to_string(event.start));
        }
        return out;
    }
};

TEST_F(TimelineTest, EventsTakeTheFirstLaneFreeOverAllTheirMonths) {
    for (int i = 0; i < 3; ++i) {
        timeline.addComment("a.png", "bar", 2, 5, "", "", "");
    }
    // Ends before the first bars begin, so it shares their first lane.
    timeline.addComment("a.png", "before", 1, "");
    // Free in lane 0 only after the bars end.
    timeline.addComment("m.png", "after", 7, "");
    timeline.addComment("m.png", "inside", 6, "");
    timeline.layoutPlane();
    EXPECT_EQ(timeline.lanes(), (std::vector<int>{0, 1, 2, 0, 0, 3}));
    EXPECT_EQ(timeline.lanesUsed(), 4);
    EXPECT_EQ(timeline.mainData()[3].tp, planetp::mark);
    EXPECT_EQ(timeline.mainData()[3].length, 1);

    // Twenty lanes are all there is: the next event lies over lane 0.
    for (int i = 0; i < 17; ++i) {
        timeline.addComment("a.png", "more", 3, 2, "", "", "");
    }
    timeline.addComment("a.png", "over", 4, 1, "", "", "");
    timeline.layoutPlane();
    EXPECT_EQ(timeline.lanes()[22], 19);
    EXPECT_EQ(timeline.lanes().back(), 0);
    EXPECT_EQ(timeline.lanesUsed(), 20);

    // A bar running past fourteen years is cut at the last month; one that
    // starts past it has no place.
    timeline.addComment("a.png", "late", 160, 20, "", "", "");
    timeline.addComment("a.png", "gone", 169, "");
    timeline.layoutPlane();
    const platform::Rect late = timeline.eventRect(timeline.mainData().size() - 2);
    EXPECT_LE(late.right(), timeline.stripSize().width);
    EXPECT_EQ(timeline.lanes().back(), -1);
    EXPECT_EQ(timeline.eventRect(timeline.mainData().size() - 1).width, 0);
    // A touch finds the event drawn last on top.
    const platform::Point inLaneZero{timeline.columnX(4) + 10, timeline.geometry().lanesTop() + 10};
    EXPECT_EQ(timeline.eventAt(inLaneZero), std::optional<std::size_t>(23));
}

TEST_F(TimelineTest, AchievementsComeFromTheDiaryByMonthOfLife) {
    const std::string gid = newChild("2025-01-10");
    diary::ReferenceLists lists(context);
    const auto own = lists.addConst(diary::cotype::achievements, "Испек пирог", 0);
    ASSERT_TRUE(own.guid);
    put(gid, "2025-01-10", listRow(9));
    put(gid, "2024-12-01", listRow(12));
    put(gid, "2025-03-09", listRow(1) + "<tr>no-such-row<tr>" + listRow(17));
    put(gid, "2025-03-10 12:00", *own.guid + "<tr>" + listRow(8));
    put(newChild("2025-01-10"), "2025-05-10", listRow(10));

    timeline.buildPlane(gid);
    EXPECT_EQ(timeline.caption(), "Развитие ребенка");
    EXPECT_EQ(placed(), (std::vector<std::string>{
                            "Учится садиться@4", "Учится ползать@6", "Учится ходить@6", "Встал@1",
                            "Сел@1", "Первая улыбка@2", "Сказал первое слово@2", "Испек пирог@3",
                            "Перевернулся с животика на спинку@3"}));
    const auto& events = timeline.mainData();
    EXPECT_EQ(events[0].icon, "c-icon-child.png");
    EXPECT_EQ(events[2].length, 13);
    EXPECT_EQ(events[3].icon, "4b.png");
    EXPECT_EQ(events[4].icon, "1b.png");
    EXPECT_EQ(events[4].tp, planetp::mark);
    EXPECT_EQ(events[5].icon, "c-ne-achiv128.png");
    EXPECT_EQ(events[5].tp, planetp::bar);
    EXPECT_EQ(events[5].length, 1);
    EXPECT_EQ(events[6].icon, "8b.png");
    EXPECT_EQ(events[7].icon, "c-ne-achiv128.png");
    EXPECT_EQ(events[8].icon, "2b.png");
    // 22 November 2026 is in the 23rd month of life.
    EXPECT_EQ(timeline.currentMonth(), 23);
}

TEST_F(TimelineTest, CurrentMonthAndScrollCaptionFollowTheCalendar) {
    timeline.buildPlane(newChild("2023-01-31"));
    EXPECT_EQ(timeline.currentMonth(), 46);
    EXPECT_EQ(timeline.scrollCaption(1), "1-й месяц (31.01.2023-28.02.2023)");
    EXPECT_EQ(timeline.scrollCaption(2), "2-й месяц (28.02.2023-31.03.2023)");
    EXPECT_EQ(timeline.scrollCaption(14), "14-й месяц (29.02.2024-31.03.2024)");
    EXPECT_EQ(planeColumnLabel(1), "1");
    EXPECT_EQ(planeColumnLabel(12), "12");
    EXPECT_EQ(planeColumnLabel(13), "1");
    EXPECT_EQ(planeColumnLabel(168), "12");
    EXPECT_EQ(timeline.columnAt(0), 1);
    EXPECT_EQ(timeline.columnAt(timeline.columnX(46) + 1), 46);

    // The strip marks the running month, and only that one.
    platform::RecordingCanvas canvas;
    const platform::Size size = timeline.stripSize();
    paintPlane(canvas, timeline, state, {0, 0, size.width, size.height});
    int warnings = 0;
    for (const auto& command : canvas.commands()) {
        if (command.kind == platform::DrawCommand::Kind::Image && command.text == "warning.png") {
            ++warnings;
            EXPECT_EQ(timeline.columnAt(command.rect.x), 46);
        }
    }
    EXPECT_EQ(warnings, 1);

    // Fourteen years and more: nothing is marked.
    timeline.buildPlane(newChild("2012-11-22"));
    EXPECT_EQ(timeline.currentMonth(), 0);
    timeline.buildPlane(newChild("2012-11-23"));
    EXPECT_EQ(timeline.currentMonth(), 168);
}

TEST_F(TimelineTest, DataFileEventsComeBeforeTheAppendsAndBadItemsAreSkipped) {
    write("plan.jsn", R"([
        {"groupid": "1", "source": "test", "Content": [
            {"text": "no plane keys"},
            {"planeicon": "a.png", "planecomment": "A", "planestart": "1", "planelength": "2",
             "planelcomment": "long A", "sublink": "3"},
            {"planeicon": "a.png", "planecomment": "no length", "planestart": "1"},
            {"planeicon": "a.png", "planecomment": "bad", "planestart": "x1", "planelength": "1"},
            {"planeicon": "a.png", "planecomment": "late", "planestart": "169", "planelength": "1"},
            {"planeicon": "a.png", "planecomment": "empty", "planestart": "5", "planelength": "0"}
        ]},
        {"groupid": "2", "Content": [
            {"planeicon": "b.png", "planecomment": "B", "planestart": 3, "planelength": 1,
             "planelink": "https://example.org/b"}
        ]}
    ])");
    const std::string append = R"([{"groupid": "1", "Content": [
        {"planeicon": "c.png", "planecomment": "C", "planestart": "2", "planelength": "1"}]}])";
    EXPECT_TRUE(timeline.loadFromDataFile("plan", append));
    EXPECT_EQ(placed(), (std::vector<std::string>{"A@1", "B@3", "C@2"}));
    const PlaneEvent& a = timeline.mainData()[0];
    EXPECT_EQ(a.length, 2);
    EXPECT_EQ(a.lcomment, "long A");
    EXPECT_EQ(a.sublink, "3");
    EXPECT_EQ(timeline.mainData()[1].link, "https://example.org/b");

    // An append that doesn't parse adds nothing; a file that doesn't
    // parse, or isn't there, adds nothing and says so once.
    EXPECT_TRUE(timeline.loadFromDataFile("plan", "{oops"));
    EXPECT_EQ(timeline.mainData().size(), 5U);
    write("broken.jsn", "[{\"Content\": [");
    EXPECT_FALSE(timeline.loadFromDataFile("broken", std::nullopt));
    EXPECT_FALSE(timeline.loadFromDataFile("missing", std::nullopt));
    EXPECT_EQ(timeline.mainData().size(), 5U);
    EXPECT_EQ(logged.size(), 2U);

    // The doctor's regime reads its own plan, which isn't here.
    EXPECT_FALSE(timeline.changeRegim("Нет такого"));
    EXPECT_TRUE(timeline.changeRegim("К доктору"));
    EXPECT_FALSE(timeline.changeRegim("К доктору"));
    timeline.buildPlane(newChild("2025-01-10"));
    EXPECT_EQ(timeline.caption(), "К доктору");
    EXPECT_TRUE(timeline.mainData().empty());
    EXPECT_EQ(logged.size(), 3U);
}

TEST_F(TimelineTest, TouchShowsTheLongTextAndLeadsToTheGuideOrThePage) {
    timeline.addComment("a.png", "Только текст", 1, "Подробный текст");
    timeline.addComment("a.png", "Анализ крови", 2, 1, "Сдать натощак", "", "12");
    timeline.addComment("a.png", "Сайт", 3, 1, "", "https://example.org", "");
    timeline.addComment("a.png", "Пусто", 4, "");

    EXPECT_EQ(timeline.clickTag(0), (PlaneMessage{"Только текст", "Подробный текст", false}));
    EXPECT_EQ(timeline.openLink().kind, PlaneLink::Kind::none);
    EXPECT_EQ(timeline.clickTag(1), (PlaneMessage{"Анализ крови", "Сдать натощак", true}));
    EXPECT_EQ(timeline.openLink(),
              (PlaneLink{PlaneLink::Kind::guide, "doctorhelp-u", "Анализы", 12, ""}));
    EXPECT_EQ(timeline.clickTag(2), (PlaneMessage{"Сайт", "", true}));
    EXPECT_EQ(timeline.openLink(),
              (PlaneLink{PlaneLink::Kind::web, "", "Сайт", 0, "https://example.org"}));
    EXPECT_EQ(timeline.clickTag(3), std::nullopt);
    EXPECT_EQ(timeline.gseldic()->comment, "Пусто");
    EXPECT_EQ(timeline.clickTag(9), std::nullopt);
}

}  // namespace
}  // namespace tilika::development
