#include "diary/reference_lists.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "core/ids.h"
#include "support/core_fixture.h"

namespace tilika::diary {
namespace {

std::string templateRow(int coid) {
    return core::newID2(core::idkind::listRow, coid);
}

// The row of a guid, or an empty row when the list lacks it.
ListRow found(std::string_view guid, const std::vector<ListRow>& rows) {
    const ListRow* row = listByIndex(guid, rows);
    return row != nullptr ? *row : ListRow{};
}

class ReferenceListsTest : public test::CoreFixture {
protected:
    ReferenceLists lists{context};

    std::vector<ListRow> load(int cotype, std::string_view checked = {}) {
        std::vector<ListRow> rows;
        lists.loadConstList(rows, cotype, checked);
        return rows;
    }

    int rowCount() { return std::stoi(queryText("select count(*) from childconst")); }
};

TEST_F(ReferenceListsTest, ListsShowProtectedRowsFirstInCaptionOrder) {
    const std::string own =
        lists.addConst(cotype::illnesses, "Аденоидит", rowstate::user).guid.value();
    const std::vector<ListRow> rows = load(cotype::illnesses);

    ASSERT_GT(rows.size(), 3u);
    EXPECT_EQ(rows.front().cap, "Выздоровление");
    EXPECT_EQ(rows.back().index, own);  // last, although its caption comes first
    for (std::size_t i = 1; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].tp, cotype::illnesses);
        EXPECT_GE(rows[i - 1].deleted, rows[i].deleted) << rows[i].cap;
        if (rows[i - 1].deleted == rows[i].deleted) {
            EXPECT_LT(rows[i - 1].cap, rows[i].cap);
        }
    }
}

TEST_F(ReferenceListsTest, OnlyUsersRowsCanBeRemovedAndStayReadable) {
    const std::string measles = templateRow(66);
    EXPECT_TRUE(lists.deleteConst(measles));
    const ListRow kept = found(measles, load(cotype::illnesses));
    EXPECT_EQ(kept.cap, "Корь<tr>1");
    EXPECT_EQ(kept.deleted, rowstate::protectedRow);
    EXPECT_FALSE(removable(kept));

    const std::string own =
        lists.addConst(cotype::complaints, "Икота", rowstate::user).guid.value();
    ASSERT_TRUE(removable(found(own, load(cotype::complaints))));
    EXPECT_TRUE(lists.deleteConst(own));
    EXPECT_TRUE(lists.deleteConst(own));
    EXPECT_EQ(found(own, load(cotype::complaints)), ListRow{});
    EXPECT_EQ(found(own, load(cotype::all)),
              (ListRow{"Икота", own, cotype::complaints, rowstate::removed, 1, false}));
}

TEST_F(ReferenceListsTest, RowsReadWithCaptionsAndTicks) {
    db().exec("insert into childconst (coname, cotype, deleted, coguid) values (NULL, 4, 0, 'NC')");
    db().exec("insert into childconst (coname, cotype, deleted) values ('Без guid', 4, 0)");
    const auto byCaption = [](const std::vector<ListRow>& rows, std::string_view cap) {
        const auto row =
            std::find_if(rows.begin(), rows.end(), [&](const ListRow& r) { return r.cap == cap; });
        return row != rows.end() ? *row : ListRow{};
    };

    std::vector<ListRow> rows =
        load(cotype::bloodGroups, templateRow(32) + "<tr>00000000-UNKNOWN<tr>" + templateRow(34));
    EXPECT_EQ(std::count_if(rows.begin(), rows.end(), [](const ListRow& r) { return r.checked; }),
              2);
    EXPECT_TRUE(found("32", rows).checked);
    EXPECT_TRUE(found("34", rows).checked);
    EXPECT_EQ(byCaption(rows, "Без названия"), (ListRow{"Без названия", "NC", 4, 0, 1, false}));

    // No ticks at all is one empty piece, which a row without a guid must
    // not match.
    rows = load(cotype::bloodGroups, "");
    EXPECT_EQ(byCaption(rows, "Без guid"), (ListRow{"Без guid", "", 4, 0, 1, false}));
}

TEST_F(ReferenceListsTest, RecoveryRowIsKnownAfterALoadOfIllnesses) {
    EXPECT_EQ(lists.boleznId(), "");
    load(cotype::achievements);
    EXPECT_EQ(lists.boleznId(), "");
    load(cotype::illnesses);
    EXPECT_EQ(lists.boleznId(), templateRow(64));

    ReferenceLists fresh{context};
    std::vector<ListRow> all;
    fresh.loadConstList(all, cotype::all, {});
    EXPECT_EQ(fresh.boleznId(), templateRow(64));
}

TEST_F(ReferenceListsTest, OldNumericIdsAndRowsInMemoryAreFound) {
    std::vector<ListRow> all = load(cotype::all);
    const ListRow byOldId = found("7", all);
    EXPECT_EQ(byOldId.index, "00000000-0000-0000-0002-000000000007");
    EXPECT_EQ(byOldId.cap, "Перевернулся со спинки на животик");
    EXPECT_EQ(listByIndex("", all), nullptr);
    EXPECT_EQ(listByIndex("999", all), nullptr);

    const int stored = rowCount();
    addToList(all, "MEM-ROW-0001", "Смекта", cotype::medicines, true);
    EXPECT_EQ(found("MEM-ROW-0001", all),
              (ListRow{"Смекта", "MEM-ROW-0001", cotype::medicines, 0, 1, true}));
    EXPECT_EQ(rowCount(), stored);
}

TEST_F(ReferenceListsTest, IncomingRowsAddOnlyWhatIsMissing) {
    const std::string own =
        lists.addConst(cotype::medicines, "Смекта", rowstate::user).guid.value();
    ASSERT_TRUE(lists.deleteConst(own));
    const int before = rowCount();
    const std::string fresh = "AAAAAAAA-1111-4111-8111-000000000001";

    const std::vector<ListRow> incoming = {
        {"Переименовано", templateRow(40), cotype::complaints, 2, 1, false},
        {"Смекта", own, cotype::medicines, 0, 1, false},  // removed here, yet known
        {"Энтерофурил", fresh, cotype::medicines, 0, 1, true},
        {"Энтерофурил", fresh, cotype::medicines, 0, 1, true},
        {"Нет guid", "", cotype::medicines, 0, 1, false},
        {"Старый", "777", cotype::complaints, 2, 1, false},
    };
    EXPECT_TRUE(lists.correctConstList(incoming));
    EXPECT_TRUE(lists.correctConstList(incoming));

    EXPECT_EQ(rowCount(), before + 2);
    const std::vector<ListRow> all = load(cotype::all);
    EXPECT_EQ(found(templateRow(40), all).cap, "Насморк");
    EXPECT_EQ(found(own, all).deleted, rowstate::removed);
    EXPECT_EQ(found(fresh, all), (ListRow{"Энтерофурил", fresh, cotype::medicines, 0, 1, false}));
    EXPECT_EQ(found("777", all),
              (ListRow{"Старый", templateRow(777), cotype::complaints, 2, 1, false}));
}

TEST_F(ReferenceListsTest, ListScreensAddRowsByTheirKind) {
    // The caption and `deleted` of the row added, as the reloaded list shows it.
    using Stored = std::pair<std::string, int>;
    const auto add = [&](const NewListRow& row, std::vector<ListRow>& rows) {
        const AddedRow stored = lists.addFromListScreen(row, rows);
        EXPECT_TRUE(stored.result);
        const ListRow* added = stored.guid ? listByIndex(*stored.guid, rows) : nullptr;
        return added ? Stored{added->cap, added->deleted} : Stored{"-", -1};
    };

    std::vector<ListRow> rows = load(cotype::achievements, templateRow(1));
    EXPECT_EQ(add(NewListRow::plain(cotype::achievements, "Хлопает"), rows),
              (Stored{"Хлопает", 0}));
    EXPECT_TRUE(found("1", rows).checked);  // the reload keeps the ticks

    rows = load(cotype::illnesses);
    EXPECT_EQ(add(NewListRow::illness(cotype::illnesses, "Диабет", true), rows),
              (Stored{"Диабет<tr>1", 2}));
    EXPECT_EQ(add(NewListRow::illness(cotype::illnesses, "Ячмень", false), rows),
              (Stored{"Ячмень", 3}));

    rows = load(cotype::otherFood);
    EXPECT_EQ(add(NewListRow::food(cotype::otherFood, "Творог", "Граммы (гр.)"), rows),
              (Stored{"Творог (гр.)<tr>11", 0}));
    EXPECT_EQ(meraToRead(foodUnit(cotype::otherFood, "Творог (гр.)<tr>11")), "Граммы (гр.)");

    // A unit that isn't one of ours is not stored, and that is no failure.
    const std::size_t shown = rows.size();
    const AddedRow unknown = lists.addFromListScreen(
        NewListRow::food(cotype::otherFood, "Кефир", "Стаканы (ст.)"), rows);
    EXPECT_TRUE(unknown.result);
    EXPECT_FALSE(unknown.guid);
    EXPECT_EQ(rows.size(), shown);
}

TEST_F(ReferenceListsTest, ListWritesThatCannotLandSaySoAndChangeNothing) {
    const std::string own =
        lists.addConst(cotype::complaints, "Икота", rowstate::user).guid.value();
    ASSERT_TRUE(lists.setCheckData(1, "TAG-A", true, "CHILD-1"));
    const int before = rowCount();
    std::vector<ListRow> rows = load(cotype::complaints, own);
    const std::vector<ListRow> shown = rows;

    db().exec("PRAGMA query_only = 1");
    const auto readOnly = std::optional(core::WriteFailure::readOnly);
    const AddedRow added =
        lists.addFromListScreen(NewListRow::plain(cotype::complaints, "Зевота"), rows);
    EXPECT_EQ(added.result.failure(), readOnly);
    EXPECT_FALSE(added.guid);
    EXPECT_EQ(rows, shown);  // read again, ticks and all
    EXPECT_EQ(lists.deleteConst(own).failure(), readOnly);
    EXPECT_EQ(lists.correctConstList({{"Смекта", "SOME-GUID-0001", cotype::medicines, 0, 1, false}})
                  .failure(),
              readOnly);
    EXPECT_EQ(lists.setCheckData(1, "TAG-A", false, "CHILD-1").failure(), readOnly);

    EXPECT_EQ(rowCount(), before);
    EXPECT_TRUE(removable(found(own, load(cotype::complaints))));
    std::vector<std::string> ticks;
    lists.loadCheckData(ticks, 1, "CHILD-1");
    EXPECT_EQ(ticks, std::vector<std::string>{"TAG-A"});
}

TEST_F(ReferenceListsTest, CheckMarksBelongToOneChildAndScreen) {
    EXPECT_TRUE(lists.setCheckData(1, "TAG-A", true, "CHILD-1"));
    EXPECT_TRUE(lists.setCheckData(1, "TAG-A", true, "CHILD-1"));
    EXPECT_TRUE(lists.setCheckData(1, "TAG-B", true, "CHILD-1"));
    EXPECT_TRUE(lists.setCheckData(1, "TAG-A", true, "CHILD-2"));
    EXPECT_TRUE(lists.setCheckData(2, "TAG-A", true, "CHILD-1"));

    std::vector<std::string> guids{"stale"};
    lists.loadCheckData(guids, 1, "CHILD-1");
    std::sort(guids.begin(), guids.end());
    EXPECT_EQ(guids, (std::vector<std::string>{"TAG-A", "TAG-B"}));

    EXPECT_TRUE(lists.setCheckData(1, "TAG-A", false, "CHILD-1"));
    lists.loadCheckData(guids, 1, "CHILD-1");
    EXPECT_EQ(guids, std::vector<std::string>{"TAG-B"});
    lists.loadCheckData(guids, 1, "CHILD-2");
    EXPECT_EQ(guids, std::vector<std::string>{"TAG-A"});
    lists.loadCheckData(guids, 2, "CHILD-1");
    EXPECT_EQ(guids, std::vector<std::string>{"TAG-A"});
}

TEST_F(ReferenceListsTest, WithoutADatabaseEverythingIsEmptyAndNothingIsStored) {
    database.disconnectFromBase();
    std::filesystem::remove(database.path());

    std::vector<ListRow> rows{ListRow{}};
    lists.loadConstList(rows, cotype::all, {});
    EXPECT_TRUE(rows.empty());
    const auto noDatabase = std::optional(core::WriteFailure::noDatabase);
    const AddedRow added = lists.addConst(cotype::medicines, "Смекта", 0);
    EXPECT_EQ(added.result.failure(), noDatabase);
    EXPECT_FALSE(added.guid);
    EXPECT_EQ(lists.deleteConst(templateRow(1)).failure(), noDatabase);
    EXPECT_EQ(lists.correctConstList({{"Смекта", "SOME-GUID-0001", cotype::medicines, 0, 1, false}})
                  .failure(),
              noDatabase);
    EXPECT_EQ(lists.addFromListScreen(NewListRow::plain(cotype::medicines, "Смекта"), rows)
                  .result.failure(),
              noDatabase);
    EXPECT_EQ(lists.setCheckData(1, "TAG", true, "CHILD").failure(), noDatabase);
    std::vector<std::string> guids{"stale"};
    lists.loadCheckData(guids, 1, "CHILD");
    EXPECT_TRUE(guids.empty());
}

TEST(CaptionTail, TailsDecideCardColourAndUnit) {
    EXPECT_EQ(captionText("a<tr>b<tr>1"), "a");
    EXPECT_EQ(captionTail("Корь<tr>1"), 1);
    EXPECT_EQ(captionTail("Корь<tr>1a"), std::nullopt);
    EXPECT_EQ(captionTail("Корь<tr>99999999999999999999"), std::nullopt);

    EXPECT_TRUE(illnessOnCard(cotype::illnesses, "Корь<tr>1"));
    EXPECT_FALSE(illnessOnCard(cotype::illnesses, "Корь<tr>12"));
    EXPECT_TRUE(isExpressedMilk(cotype::formula, "Сцеженное молоко<tr>2"));

    EXPECT_EQ(captionColour("Корь<tr>1", true), (Rgb{0.8, 0.0, 0.0}));
    EXPECT_EQ(captionColour("Молоко<tr>2", false), (Rgb{0.7, 0.0, 0.0}));
    EXPECT_EQ(captionColour("Молоко<tr>2", true), (Rgb{1.0, 0.81, 0.25}));
    EXPECT_EQ(captionColour("Сок (мил.)<tr>10", false), std::nullopt);

    EXPECT_EQ(foodUnit(cotype::otherFood, "Желток яйца (шт.)<tr>12"), 3);
    EXPECT_EQ(foodUnit(cotype::otherFood, "Что-то<tr>15"), 0);
    EXPECT_EQ(foodUnit(cotype::formula, "Что-то<tr>12"), 0);
    EXPECT_EQ(meraToRead(6), "");
}

}  // namespace
}  // namespace tilika::diary
