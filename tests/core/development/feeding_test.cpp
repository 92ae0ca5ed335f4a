#include "development/feeding.h"

#include <gtest/gtest.h>

#include "development/feeding_totals.h"
#include "diary/day_cloud.h"
#include "diary/reference_lists.h"
#include "diary/value_codecs.h"
#include "support/core_fixture.h"

namespace tilika::development {
namespace {

struct SentDay {
    int kind;
    std::string day;
    bool operator==(const SentDay&) const = default;
};

class RecordingCloud final : public diary::DayCloud {
public:
    explicit RecordingCloud(const core::Dates& dates) : dates_(dates) {}
    void dataToCloud(int kind, core::Date date, std::string_view) override {
        sent.push_back({kind, dates_.dateToString(date, core::formats::day)});
    }
    std::vector<SentDay> sent;

private:
    const core::Dates& dates_;
};

std::string breast(int left, int right) {
    return R"({"tp":"1","tip":"Грудное молоко","left":")" + std::to_string(left) +
           R"(","right":")" + std::to_string(right) + R"("})";
}

std::string food(int tp, const std::string& volume, const std::string& tip = "",
                 const std::string& measure = "мил.") {
    return R"({"tp":")" + std::to_string(tp) + R"(","tip":")" + tip + R"(","volume":")" + volume +
           R"(","measure":")" + measure + R"("})";
}

class FeedingTest : public test::CoreFixture {
protected:
    Feeding feeding{context};
    const std::string gid = newChild("2026-03-01");
    RecordingCloud cloud{dates};

    core::Date at(const std::string& text) { return *dates.dateFromString(text); }

    void put(const std::string& moment, const std::string& value) {
        insertKorm(db(), dates, at(moment), value, gid);
    }

    struct Loaded {
        std::vector<KormRow> rows;
        std::vector<KormGroup> groups;
    };
    Loaded load() {
        Loaded loaded;
        feeding.loadKorm(loaded.rows, loaded.groups, gid);
        return loaded;
    }

    // The totals lines of each day, oldest day first.
    std::vector<std::vector<std::string>> totals() {
        std::vector<std::vector<std::string>> days;
        for (const KormRow& row : load().rows) {
            if (row.tp == KormRow::totals) {
                days.push_back(kormTotals(row));
            }
        }
        return days;
    }

    std::string stored(const std::string& column) {
        return queryText("select group_concat(" + column +
                         ", '|') from (select * from childkorm order by koid)");
    }
};

TEST_F(FeedingTest, InsertWorksOutKindAndSumAndKeepsUnreadableValues) {
    put("2026-11-20 08:00:05", breast(7, 5));
    put("2026-11-20 08:00:05", food(kormkind::formula, "120"));
    put("2026-11-20 08:00:05", food(kormkind::cereal, "много"));
    put("2026-11-20 08:00:05", "каша 100");
    put("2026-11-20 08:00:05", food(9, "50"));

    EXPECT_EQ(stored("kotype"), "1|2|5|0|0");
    EXPECT_EQ(stored("kosum"), "12|120|0|0|0");
    EXPECT_NE(stored("kovalue").find("каша 100"), std::string::npos);
    EXPECT_EQ(queryText("select kodates from childkorm limit 1"), "2026-11-20 08:00:05");

    // The unreadable ones are kept but left out of the feeding and its sums.
    const Loaded loaded = load();
    ASSERT_EQ(loaded.rows.size(), 2u);
    EXPECT_EQ(kormFoods(loaded.rows[0]).size(), 3u);
    EXPECT_EQ(loaded.rows[1].value, "12<tr>120<tr>0<tr>0<tr>0<tr>0<tr>0");
}

TEST_F(FeedingTest, FeedingsAreMomentsToTheSecondGroupedByDay) {
    put("2026-11-21 08:00:40", food(kormkind::formula, "90"));
    put("2026-11-20 08:00:05", breast(10, 0));
    put("2026-11-20 08:00:40", food(kormkind::formula, "60"));
    put("2026-11-20 08:00:05", food(kormkind::kefir, "30", "Кефир"));
    put("2026-11-18 21:15:00", food(kormkind::formula, "100"));
    // A day whose rows can't be read shows nothing.
    put("2026-11-19 12:00:00", "{broken");

    Loaded loaded = load();
    ASSERT_EQ(loaded.groups.size(), 3u);
    EXPECT_EQ(loaded.groups[0], (KormGroup{"", "18.11.2026", 2, 0}));
    EXPECT_EQ(loaded.groups[1], (KormGroup{"", "20.11.2026", 3, 2}));
    EXPECT_EQ(loaded.groups[2], (KormGroup{"", "21.11.2026", 2, 5}));
    ASSERT_EQ(loaded.rows.size(), 7u);
    EXPECT_EQ(posFromIndexPath(loaded.groups, 1, 1), 3);

    const KormRow& first = loaded.rows[2];
    EXPECT_EQ(first.dat, at("2026-11-20 08:00:05"));
    // The foods of a moment come in the order of their kinds.
    ASSERT_EQ(kormFoods(first).size(), 2u);
    EXPECT_EQ(kormTp(kormFoods(first)[0]), kormkind::breast);
    EXPECT_EQ(kormTp(kormFoods(first)[1]), kormkind::kefir);
    EXPECT_EQ(loaded.rows[4].tp, KormRow::totals);
    EXPECT_EQ(loaded.rows[4].value, "10<tr>60<tr>30<tr>0<tr>0<tr>0<tr>0");
    EXPECT_EQ(loaded.rows[4].last, "0<tr>100<tr>0<tr>0<tr>0<tr>0<tr>0");
    // The newest feeding and its day are closed too.
    EXPECT_EQ(loaded.rows[5].dat, at("2026-11-21 08:00:40"));
    EXPECT_EQ(loaded.rows[6].value, "0<tr>90<tr>0<tr>0<tr>0<tr>0<tr>0");

    deleteKorm(db(), dates, at("2026-11-20 08:00:05"), gid);
    loaded = load();
    EXPECT_EQ(loaded.groups[1].count, 2);
    EXPECT_EQ(loaded.rows[2].dat, at("2026-11-20 08:00:40"));
    EXPECT_EQ(loaded.rows.size(), 6u);
}

TEST_F(FeedingTest, MomentsHoldOnDaysWithAChangeOfClocks) {
    clock.setTimeZoneId("Europe/Berlin");
    // 29 March 2026 is 23 hours long, 25 October 25 hours.
    const std::vector<std::string> moments{"2026-03-28 23:59:59", "2026-03-29 01:30:00",
                                           "2026-03-29 03:30:00", "2026-10-25 02:30:00",
                                           "2026-10-25 23:00:00", "2026-10-26 00:00:01"};
    for (const std::string& moment : moments) {
        put(moment, breast(1, 0));
    }
    const Loaded loaded = load();
    std::vector<core::Date> got;
    for (const KormRow& row : loaded.rows) {
        if (row.tp == KormRow::feeding) {
            got.push_back(row.dat);
        }
    }
    ASSERT_EQ(got.size(), moments.size());
    for (std::size_t i = 0; i < moments.size(); ++i) {
        EXPECT_EQ(got[i], at(moments[i])) << moments[i];
    }
    EXPECT_EQ(loaded.groups.size(), 4u);
    EXPECT_EQ(loaded.groups[2].name2, "25.10.2026");
}

TEST_F(FeedingTest, TotalsCompareWithThePreviousDayThatHasFeedings) {
    put("2026-11-17 09:00:00", breast(10, 5));
    put("2026-11-17 09:00:00", food(kormkind::cereal, "100"));
    put("2026-11-17 12:00:00", food(kormkind::kefir, "50", "Кефир"));
    put("2026-11-17 12:00:00", food(kormkind::tvorog, "40", "Творог", "г."));
    // 18 November has no feedings at all.
    put("2026-11-19 09:00:00", breast(15, 0));
    put("2026-11-19 09:00:00", food(kormkind::cereal, "120"));
    put("2026-11-19 12:00:00", food(kormkind::kefir, "30", "Кефир"));
    put("2026-11-19 12:00:00", food(kormkind::tvorog, "40", "Творог", "г."));
    put("2026-11-19 12:00:00", food(kormkind::puree, "80"));
    put("2026-11-19 18:00:00", food(kormkind::other, "1", "", "шт."));
    put("2026-11-20 09:00:00", food(kormkind::formula, "150"));

    const auto days = totals();
    ASSERT_EQ(days.size(), 3u);
    EXPECT_EQ(days[0], (std::vector<std::string>{"Грудное молоко: 15 мин.", "Кефир: 50 мл.",
                                                 "Творог: 40 г.", "Каши: 100 мл."}));
    EXPECT_EQ(days[1],
              (std::vector<std::string>{"Грудное молоко: 15 мин.", "Кефир: 30 (-20) мл.",
                                        "Творог: 40 г.", "Каши: 120 (+20) мл.",
                                        "Супы и пюре: 80 мл.", "Другое: итог не ведется"}));
    EXPECT_EQ(days[2], (std::vector<std::string>{
                           "Грудное молоко: перестали", "Смесь/сцеженное молоко: 150 мл.",
                           "Кефир: перестали", "Творог: перестали", "Каши: перестали",
                           "Супы и пюре: перестали", "Другое: перестали"}));
}

TEST_F(FeedingTest, RowTextsNameProductsEvenWhenRemovedFromTheirList) {
    diary::ReferenceLists lists(context);
    const std::string porridge =
        *lists.addConst(diary::cotype::cereals, "Гречневая (мил.)", 0).guid;
    ASSERT_TRUE(lists.deleteConst(porridge));
    put("2026-11-20 07:05:00", breast(0, 12));
    put("2026-11-20 07:05:00", food(kormkind::kefir, "50", "Кефир"));
    put("2026-11-20 07:05:00", food(kormkind::tvorog, "много", "Творог", "г."));
    put("2026-11-20 07:05:00", food(kormkind::cereal, "100", porridge));

    std::vector<frame::ListRow> all;
    lists.loadConstList(all, diary::cotype::all, {});
    const KormCellText cell = kormCellText(dates, load().rows.front(), all);
    EXPECT_EQ(cell.time, "07:05");
    EXPECT_EQ(cell.text,
              "\nПравая грудь: 12 мин.\nКефир: 50 мил.\nТворог: много г.\nГречневая: 100 мил.");
}

TEST_F(FeedingTest, FormValuesBecomeStoredFoods) {
    const auto value = [](const KormValue& made) {
        return diary::jsonToDictionary(made.value.value_or(""));
    };
    const std::string breastText = *addEditKorm(kormkind::breast, "00:07", "12", {}).value;
    const auto breastFood = diary::jsonToDictionary(breastText);
    EXPECT_EQ(breastFood["left"], "7");
    EXPECT_EQ(breastFood["right"], "12");

    EXPECT_EQ(value(addEditKorm(kormkind::kefir, "много", "", {}))["volume"], "много");
    const std::vector<frame::ListRow> other{{"Сок (мил.)<tr>10", "00000000-juice", 9, 0, 1, false},
                                            {"Печенье (шт.)", "00000000-cookie", 9, 0, 1, false}};
    const auto juice = value(addEditKorm(kormkind::other, "100", "00000000-juice", other));
    EXPECT_EQ(juice["measure"], "мил.");
    EXPECT_EQ(juice["tip"], "00000000-juice");
    EXPECT_EQ(value(addEditKorm(kormkind::other, "2", "00000000-cookie", other))["measure"], "шт.");

    const KormValue negative = addEditKorm(kormkind::formula, "-20", "g", {});
    EXPECT_FALSE(negative.value);
    EXPECT_EQ(negative.message, "Количество не может быть отрицательным");

    // A stored food opens its form with the values it was made from.
    for (const std::string& made :
         {*addEditKorm(kormkind::breast, "01:05", "00:07", {}).value,
          *addEditKorm(kormkind::other, "много", "00000000-juice", other).value}) {
        const KormFormValues form = kormFormValues(made);
        EXPECT_EQ(addEditKorm(kormTp(made), form.first, form.second, other).value, made);
    }
    EXPECT_EQ(kormFormValues(breastText).first, "00:07");

    std::vector<std::string> foods;
    addKormFood(foods, *addEditKorm(kormkind::cereal, "1", "a", {}).value);
    addKormFood(foods, *addEditKorm(kormkind::breast, "1", "2", {}).value);
    addKormFood(foods, *addEditKorm(kormkind::kefir, "1", "", {}).value);
    EXPECT_EQ(kormTp(foods[0]), kormkind::breast);
    EXPECT_EQ(kormTp(foods[1]), kormkind::kefir);
    EXPECT_EQ(kormTp(foods[2]), kormkind::cereal);
}

TEST_F(FeedingTest, CloseStoresTheWholeFeedingOrNothing) {
    state.cloudMode = core::cloudmode::icloud;
    put("2026-11-20 08:00:00", breast(10, 10));
    put("2026-11-20 12:00:00", food(kormkind::formula, "60"));
    put("2026-11-21 09:00:00", food(kormkind::formula, "90"));

    KormEntry fresh = prepareKorm(at("2026-11-20 09:00:00") + std::chrono::milliseconds(700));
    EXPECT_FALSE(fresh.olddat);
    EXPECT_EQ(feeding.closeOK(fresh, gid, cloud), KormClose::noFoods);
    EXPECT_FALSE(state.pageDirty[kKormPage]);
    EXPECT_EQ(queryText("select count(*) from childkorm"), "3");

    // Editing the morning feeding keeps the others.
    KormEntry morning = prepareKorm(load().rows.front());
    ASSERT_EQ(morning.foods.size(), 1u);
    EXPECT_EQ(morning.olddat, at("2026-11-20 08:00:00"));
    morning.dat = at("2026-11-20 08:30:00");
    addKormFood(morning.foods, food(kormkind::formula, "30"));
    EXPECT_EQ(feeding.closeOK(morning, gid, cloud), KormClose::saved);
    EXPECT_EQ(stored("kodates"),
              "2026-11-20 12:00:00|2026-11-21 09:00:00|2026-11-20 08:30:00|2026-11-20 08:30:00");
    EXPECT_EQ(stored("kosum"), "60|90|20|30");
    EXPECT_TRUE(state.pageDirty[kKormPage]);
    EXPECT_EQ(cloud.sent, (std::vector<SentDay>{{kKormCloudRecord, "2026-11-20"}}));

    // Moved onto the moment of another day's feeding, it replaces that one,
    // and both days go out.
    EXPECT_EQ(
        feeding.closeOK({at("2026-11-21 09:00:00"), {breast(5, 5)}, at("2026-11-20 08:30:00")}, gid,
                        cloud),
        KormClose::saved);
    EXPECT_EQ(stored("kodates"), "2026-11-20 12:00:00|2026-11-21 09:00:00");
    EXPECT_EQ(stored("kotype"), "2|1");
    EXPECT_EQ(cloud.sent.size(), 3u);
    EXPECT_EQ(cloud.sent[2], (SentDay{kKormCloudRecord, "2026-11-20"}));

    // A food the file refuses takes the whole feeding back with it.
    db().exec(
        "create trigger refuse before insert on childkorm when new.kovalue like '%\"999\"%' "
        "begin select raise(abort, 'refused'); end");
    EXPECT_EQ(
        feeding.closeOK(
            {at("2026-11-21 10:00:00"), {breast(1, 1), food(2, "999")}, at("2026-11-21 09:00:00")},
            gid, cloud),
        KormClose::failed);
    EXPECT_EQ(stored("kodates"), "2026-11-20 12:00:00|2026-11-21 09:00:00");
}

TEST_F(FeedingTest, ADayIsReplacedByTheRowsOfAnotherDevice) {
    put("2026-11-20 08:00:00", breast(10, 10));
    put("2026-11-20 12:00:00", food(kormkind::formula, "60"));
    put("2026-11-21 09:00:00", food(kormkind::formula, "90"));

    const std::vector<KormRecord> day = feeding.loadKormForDate(at("2026-11-20"), gid);
    ASSERT_EQ(day.size(), 2u);
    EXPECT_EQ(day[0].kodates, "2026-11-20 08:00:00");
    EXPECT_EQ(day[0].kosum, 20);
    EXPECT_EQ(day[1].kotype, kormkind::formula);

    db().exec(
        "create trigger refuse before insert on childkorm when new.kosum = 999 "
        "begin select raise(abort, 'refused'); end");
    const std::vector<KormRecord> incoming{
        {"2026-11-20 07:00:00", 2, food(2, "70"), 70},
        {"2026-11-20 07:30:00", 2, food(2, "999"), 999},
        {"2026-11-20 10:00:00", 3, food(3, "40", "Кефир"), 40},
    };
    EXPECT_TRUE(feeding.saveKormForDate(at("2026-11-20"), gid, incoming));
    EXPECT_EQ(stored("kosum"), "90|70|40");
    EXPECT_EQ(feeding.loadKormForDate(at("2026-11-21"), gid).size(), 1u);
}

}  // namespace
}  // namespace tilika::development
