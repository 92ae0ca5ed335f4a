#include "documents/analyses.h"

#include <gtest/gtest.h>

namespace tilika::documents {
namespace {

std::vector<AnalysisItem> withTags(std::initializer_list<int> tags) {
    std::vector<AnalysisItem> items;
    for (int tag : tags) {
        items.push_back({itemtp::image, "kind", "Вид", std::nullopt, tag});
    }
    return items;
}

// The rows of the picker form as it returns them: the caption row, then the
// chosen list row.
std::vector<diary::CatalogueRow> chosen(const std::string& guid) {
    std::vector<diary::CatalogueRow> rows(2);
    rows[1].source = guid;
    return rows;
}

TEST(AnalysesListTest, NewItemTakesLowestFreeTag) {
    const std::vector<diary::ListRow> list{
        {"Общий анализ крови<tr>хвост", "00000000-0000-0000-0002-000000000007", 3}};

    std::vector<AnalysisItem> items;
    ASSERT_EQ(newAnalyz(items, chosen("00000000-0000-0000-0002-000000000007"), list), 1);
    EXPECT_EQ(items[0].caption, "Общий анализ крови");
    EXPECT_EQ(items[0].tp, itemtp::image);
    EXPECT_FALSE(items[0].file);

    items = withTags({1, 2, 4});
    EXPECT_EQ(newAnalyz(items, chosen("unknown"), list), 3);
    EXPECT_EQ(items.back().caption, "unknown");

    // Nothing chosen: nothing added.
    EXPECT_EQ(newAnalyz(items, chosen(""), list), std::nullopt);
    EXPECT_EQ(items.size(), 4u);

    std::vector<int> full(1000);
    for (int i = 0; i < 1000; ++i) {
        full[static_cast<std::size_t>(i)] = i + 1;
    }
    EXPECT_EQ(freeTag(full), 0);
}

TEST(AnalysesListTest, MenuFollowsTheItemsState) {
    AnalysisItem item;
    item.tp = itemtp::pdf;
    item.file = "d-x-1.pdf";
    EXPECT_EQ(
        actionMenu(item),
        (std::vector<std::string>{"Добавить фотографией", "Доб. изобр. из альбома",
                                  "Заменить файлом PDF", "Удалить страницу", "Удалить документ"}));

    const std::vector<std::string> noFile{"Новая фотография", "Изображение из альбома", "Файл PDF",
                                          "Удалить документ"};
    item.tp = itemtp::image;
    item.file.reset();
    EXPECT_EQ(actionMenu(item), noFile);
    item.file = "d-x-1.jpg";
    EXPECT_EQ(actionMenu(item),
              (std::vector<std::string>{"Новая фотография", "Изображение из альбома", "Файл PDF",
                                        "Преобразовать в PDF", "Удалить документ"}));
    item.tp = itemtp::nofile;
    EXPECT_EQ(actionMenu(item), noFile);
}

TEST(AnalysesListTest, ValueReadsAndWritesBack) {
    EXPECT_TRUE(prepare("").empty());
    EXPECT_TRUE(prepare("2<br>x<br>a-1.jpg<br>1").empty());
    EXPECT_TRUE(prepare("[broken").empty());
    EXPECT_EQ(close({}), "");

    // Values of other devices and of the upgrade keep numbers as text.
    const auto items = prepare(R"([{"tp":"2","captiontype":"g","caption":"Анализ","file":"a-1.pdf",
                                   "tag":"4"}, 5, {"tp":1,"captiontype":"h","tag":7}])");
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items[0], (AnalysisItem{itemtp::pdf, "g", "Анализ", "a-1.pdf", 4}));
    EXPECT_FALSE(items[1].file);
    EXPECT_EQ(prepare(close(items)), items);
}

}  // namespace
}  // namespace tilika::documents
