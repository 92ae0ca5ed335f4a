#include "diary/measure_table.h"

#include <gtest/gtest.h>

#include "core/ids.h"
#include "diary/day_cloud.h"
#include "diary/day_rows.h"
#include "diary/diary_store.h"
#include "diary/profiles.h"
#include "frame/form_kinds.h"
#include "support/core_fixture.h"

namespace tilika::diary {
namespace {

class MeasureTableTest : public test::CoreFixture {
protected:
    DiaryStore store{context, courses};
    NoCloud cloud;
    MeasureTable table{context, store, cloud};
    const std::string gid = newChild("2026-01-10", "3.2", "50");

    std::string stored(const char* date, const char* type) {
        return DayRows(db(), dates).getDateValue(*dates.dateFromString(date), type, gid);
    }

    std::vector<CatalogueRow> answer(const std::string& value, const std::string& day) {
        EntryForm form = table.addForm();
        form.rows[0].source = value;
        form.rows[1].source = day;
        return form.rows;
    }
};

TEST_F(MeasureTableTest, AddFormStartsFromTheLastMeasureAndToday) {
    table.prepare(MeasureTable::kWeight, gid);
    EXPECT_EQ(table.caption(), "Вес");
    EntryForm form = table.addForm();
    ASSERT_EQ(form.rows.size(), 2u);
    EXPECT_EQ(form.rows[0].tp, frame::formkind::slider);
    EXPECT_EQ(form.rows[0].caption, "Вес (кг.)");
    EXPECT_EQ(form.rows[0].scalemin, "-3");
    EXPECT_EQ(form.rows[0].scaletype, "3");
    EXPECT_EQ(form.rows[1].tp, frame::formkind::date);
    EXPECT_EQ(form.rows[1].caption, "Дата замера");
    EXPECT_EQ(form.defaults.at(form.rows[0].field), "3.200");
    EXPECT_EQ(form.defaults.at(form.rows[1].field), "22.11.2026");

    table.prepare(MeasureTable::kHeight, gid);
    form = table.addForm();
    EXPECT_EQ(table.caption(), "Рост");
    EXPECT_EQ(form.rows[0].scalemin, "20");
    EXPECT_EQ(form.rows[0].scalemax, "180");
    EXPECT_EQ(form.defaults.at(form.rows[0].field), "50.0");
}

TEST_F(MeasureTableTest, AddReplaceAndDeleteAMeasure) {
    DayRows(db(), dates)
        .insertValue("note", "прививка", *dates.dateFromString("2026-12-01"), gid, true, false);
    table.prepare(MeasureTable::kWeight, gid);
    EXPECT_TRUE(table.rows().empty());

    ASSERT_TRUE(table.editData(answer("4.2", "01.12.2026")));
    EXPECT_EQ(stored("2026-12-01", "ves"), "4.200");
    for (const int page : {1, 3, 9}) {
        EXPECT_TRUE(state.pageDirty[static_cast<std::size_t>(page)]) << page;
    }
    EXPECT_FALSE(state.pageDirty[0]);

    ASSERT_TRUE(table.editData(answer("4.45", "01.12.2026")));
    ASSERT_TRUE(table.editData(answer("3.9", "15.11.2026")));
    ASSERT_EQ(table.rows().size(), 2u);
    EXPECT_EQ(stored("2026-12-01", "ves"), "4.450");
    EXPECT_EQ(table.rows()[1].day, "01 декабря 2026");
    EXPECT_FALSE(table.rows()[1].age.empty());

    state.pageDirty.fill(false);
    ASSERT_TRUE(table.deleteRow(1));
    EXPECT_EQ(stored("2026-12-01", "ves"), "");
    EXPECT_EQ(stored("2026-12-01", "note"), "прививка");
    EXPECT_EQ(stored("2026-11-15", "ves"), "3.900");
    EXPECT_EQ(table.rows().size(), 1u);
    EXPECT_TRUE(state.pageDirty[9]);

    // Without a day there is nothing to store.
    EXPECT_TRUE(table.editData(answer("5", "")));
    EXPECT_EQ(table.rows().size(), 1u);
}

}  // namespace
}  // namespace tilika::diary
