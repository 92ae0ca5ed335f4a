#include "diary/catalogue.h"

#include <gtest/gtest.h>

namespace tilika::diary {
namespace {

TEST(Catalogue, ListsTheChildsEntriesInEditorOrder) {
    std::vector<CatalogueRow> rows(3);
    initTodayNoteStruct(rows);
    ASSERT_EQ(rows.size(), 18u);

    std::vector<std::string> fields;
    for (const CatalogueRow& row : rows) {
        fields.push_back(row.field);
        EXPECT_TRUE(row.edit);
        EXPECT_FALSE(row.required);
        EXPECT_TRUE(row.source.empty() && row.text.empty() && row.multiarray.empty());
        EXPECT_FALSE(row.oldsource);
    }
    EXPECT_EQ(fields, (std::vector<std::string>{"achive", "health", "doctor", "priv", "pills",
                                                "bolezn", "temp", "ves", "rost", "smile", "alarm",
                                                "biosize", "tooth", "analizy", "sleep", "walk",
                                                "note", ""}));

    EXPECT_EQ(rows.back().tp, tp::photo);
    EXPECT_EQ(rows.back().caption, "Фото");
    EXPECT_EQ(rows[14].tp, tp::periods);
    EXPECT_EQ(rows[15].tp, tp::periods);
    EXPECT_EQ(rows[5].listid, 3);
    EXPECT_EQ(rows[0].listid, 1);
    EXPECT_EQ(rows[1].listid, 2);
    EXPECT_EQ(rows[4].editcap, "Лекарства");
    EXPECT_TRUE(rows[5].editdescr.ends_with("поместить в анкету малыша "));
    EXPECT_EQ(rows[7].editcap, "");
    EXPECT_EQ(rows[0].caption, "Достижения малыша в этот день");
    EXPECT_EQ(rows[12].pic, "ne-tooth.png");

    // Free text sits at doctor, priv, smile and note.
    int texts = 0;
    for (const CatalogueRow& row : rows) {
        texts += row.tp == tp::text ? 1 : 0;
    }
    EXPECT_EQ(texts, 4);
}

TEST(Catalogue, ClearsTheDayFlags) {
    DayFlags flags{true, true, true, true, true};
    initNoteStruct(flags);
    EXPECT_FALSE(flags.isbirthdate || flags.istoday || flags.isphoto || flags.isbolezn ||
                 flags.isdieta);
}

}  // namespace
}  // namespace tilika::diary
