#include "development/reaction.h"

#include <gtest/gtest.h>

#include "development/feeding.h"
#include "diary/day_cloud.h"
#include "diary/reference_lists.h"
#include "support/core_fixture.h"

namespace tilika::development {
namespace {

class CountingCloud final : public diary::DayCloud {
public:
    void dataToCloud(int kind, core::Date, std::string_view) override { kinds.push_back(kind); }
    std::vector<int> kinds;
};

class ReactionTest : public test::CoreFixture {
protected:
    diary::ReferenceLists lists{context};
    const std::string gid = newChild("2026-03-01");
    CountingCloud cloud;

    std::string product(int cotype, const std::string& caption) {
        return *lists.addConst(cotype, caption, 0).guid;
    }

    void put(const std::string& moment, int tp, const std::string& tip) {
        const std::string value = R"({"tp":")" + std::to_string(tp) + R"(","tip":")" + tip +
                                  R"(","volume":"50","measure":"мил."})";
        insertKorm(db(), dates, *dates.dateFromString(moment), value, gid);
    }

    std::vector<std::string> suspects() {
        std::vector<KormRow> rows;
        std::vector<KormGroup> groups;
        Feeding(context).loadKorm(rows, groups, gid);
        std::vector<frame::ListRow> all;
        lists.loadConstList(all, diary::cotype::all, {});
        return reactionProducts(dates, clock.now(), rows, all);
    }

    // The captions of the child's allergens.
    std::vector<std::string> allergens() {
        std::vector<frame::ListRow> rows;
        lists.loadConstList(rows, diary::cotype::allergens,
                            queryText("select allergen from child where childguid='" + gid + "'"));
        std::vector<std::string> ticked;
        for (const frame::ListRow& row : rows) {
            if (row.checked) {
                ticked.push_back(row.cap);
            }
        }
        return ticked;
    }

    std::string allergenRows(const std::string& like) {
        return queryText("select count(*) from childconst where cotype=5 and coname like '" + like +
                         "'");
    }
};

TEST_F(ReactionTest, SuspectsAreTheFoodsOfTheLastThreeCalendarDaysNewestFirst) {
    const std::string buckwheat = product(diary::cotype::cereals, "Гречка (мил.)");
    const std::string puree = product(diary::cotype::purees, "  Пюре из яблок (мил.)<tr>10");
    const std::string juice = product(diary::cotype::otherFood, "Сок (мил.)<tr>10");
    const std::string fish = product(diary::cotype::otherFood, "Рыба (г.)<tr>11");
    ASSERT_TRUE(lists.deleteConst(juice));

    put("2026-11-18 23:30:00", kormkind::other, fish);
    put("2026-11-19 00:30:00", kormkind::puree, puree);
    put("2026-11-19 00:30:00", kormkind::kefir, "Кефир");
    put("2026-11-21 08:00:00", kormkind::breast, "Грудное молоко");
    put("2026-11-21 08:00:00", kormkind::cereal, buckwheat);
    put("2026-11-21 08:00:00", kormkind::tvorog, "Творог");
    put("2026-11-22 08:00:00", kormkind::other, juice);
    put("2026-11-22 08:00:00", kormkind::cereal, buckwheat);
    put("2026-11-22 08:00:00", kormkind::formula, "no-such-product");

    const std::vector<std::string> names = suspects();
    EXPECT_EQ(names,
              (std::vector<std::string>{"Гречка", "Сок", "Творог", "Кефир", "Пюре из яблок"}));

    // Four days on, the newest feeding is already too old.
    clock.set(*dates.dateFromString("2026-11-26 09:00"));
    EXPECT_TRUE(suspects().empty());
}

TEST_F(ReactionTest, DaysAreCountedOnTheCalendarAcrossAChangeOfClocks) {
    clock.setTimeZoneId("Europe/Berlin");
    clock.set(*dates.dateFromString("2026-03-31 00:10"));
    // Clocks went forward in the night to 29 March: the first feeding is less
    // than 72 hours back, yet four calendar days.
    put("2026-03-27 23:50:00", kormkind::kefir, "Кефир");
    put("2026-03-28 00:05:00", kormkind::tvorog, "Творог");
    EXPECT_EQ(suspects(), (std::vector<std::string>{"Творог"}));
}

TEST_F(ReactionTest, TickedSuspectsJoinTheAllergensWithoutDoublingAShortName) {
    ASSERT_TRUE(lists.addConst(diary::cotype::allergens, "Яблоко (зеленое)", 0).result);
    const std::string egg = queryText("select coguid from childconst where coname='Куриное яйцо'");
    db().exec("update child set allergen='" + egg + "' where childguid='" + gid + "'");

    const std::vector<std::string> names{"Коровье молоко", "Яблоко", "Гречка", "Кефир"};
    EXPECT_TRUE(Reaction(context).saveReaction(names, "1<tr>2<tr>3", gid, cloud));

    EXPECT_EQ(allergenRows("Яблоко%"), "1");
    EXPECT_EQ(allergenRows("Коровье молоко%"), "1");
    EXPECT_EQ(allergenRows("Гречка"), "1");
    EXPECT_EQ(allergenRows("Кефир"), "0");
    EXPECT_EQ(allergens(), (std::vector<std::string>{"Коровье молоко", "Куриное яйцо", "Гречка",
                                                     "Яблоко (зеленое)"}));
    EXPECT_TRUE(state.pageDirty[1]);
    EXPECT_TRUE(state.pageDirty[kKormPage]);
    EXPECT_TRUE(cloud.kinds.empty());

    // Ticking again adds nothing, and the cloud hears of the profile.
    state.cloudMode = core::cloudmode::icloud;
    EXPECT_TRUE(Reaction(context).saveReaction(names, "3", gid, cloud));
    EXPECT_EQ(allergenRows("Гречка"), "1");
    EXPECT_EQ(allergens().size(), 4u);
    EXPECT_EQ(cloud.kinds, (std::vector<int>{kProfileCloudRecord}));

    // The allergens dialog clears them all the same way.
    EXPECT_TRUE(Reaction(context).saveAllergens("", gid, cloud));
    EXPECT_TRUE(allergens().empty());
    EXPECT_EQ(cloud.kinds.size(), 2u);
}

TEST_F(ReactionTest, AFailedSaveLeavesTheAllergensAsTheyWere) {
    const std::string egg = queryText("select coguid from childconst where coname='Куриное яйцо'");
    db().exec("update child set allergen='" + egg + "' where childguid='" + gid + "'");
    db().exec(
        "create trigger refuse before update of allergen on child begin select raise(abort, "
        "'refused'); end");

    const core::WriteResult result = Reaction(context).saveReaction({"Гречка"}, "1", gid, cloud);
    EXPECT_FALSE(result);
    EXPECT_EQ(allergenRows("Гречка"), "0");
    EXPECT_EQ(allergens(), (std::vector<std::string>{"Куриное яйцо"}));
    EXPECT_FALSE(state.pageDirty[kKormPage]);
}

}  // namespace
}  // namespace tilika::development
