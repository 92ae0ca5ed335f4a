#include "frame/rich_text_source.h"

#include <gtest/gtest.h>

#include <fstream>

#include "support/temp_dir.h"

namespace tilika::frame {
namespace {

TEST(RichTextSourceTest, RecordsKeepTheirGroupUntilAnotherIsNamed) {
    const auto items = parseMarkup(
        "tp<val>4<tr>text<val>До групп"
        "<br>\ntp<val>1<tr>groupid<val>2<br>tp<val>7.9<tr>linkid<val>12<tr>unknown<val>x"
        "<br>tp<val>4<tr>checkid<val><tr>text<val>a<val>b");
    ASSERT_EQ(items.size(), 4u);
    EXPECT_EQ(items[0].groupid, 0);
    EXPECT_EQ(items[1].tp, richtp::groupStart);  // the line break before a key is no part of it
    EXPECT_EQ(items[2].groupid, 2);
    EXPECT_EQ(items[2].tp, richtp::linkRow);  // a kind is cut to a whole number
    EXPECT_EQ(items[2].linkid, 12);
    EXPECT_EQ(items[3].groupid, 2);
    EXPECT_FALSE(items[3].checkid);
    EXPECT_EQ(items[3].text, "a");
}

TEST(RichTextSourceTest, AppendedGroupsJoinOrFallIntoPlace) {
    const auto groups = parseJson(
        R"([{"groupid": 1, "Content": [{"tp": 4, "text": "1a"}]},
            {"groupid": 4, "Content": [{"tp": 4, "text": "4a"}]}])",
        R"([{"groupid": 1, "Content": [{"tp": 4, "text": "1b"}]},
            {"groupid": 1, "Content": [{"tp": 4, "text": "1c"}]},
            {"groupid": 3, "Content": [{"tp": 4, "text": "3"}]},
            {"groupid": 9, "Content": [{"tp": 4, "text": "9"}]}])");
    std::vector<std::string> seen;
    for (const auto& group : groups) {
        for (const auto& item : group.items) {
            seen.push_back(std::to_string(group.groupid) + ":" + item.text);
        }
    }
    EXPECT_EQ(seen, (std::vector<std::string>{"1:1a", "1:1b", "1:1c", "3:3", "4:4a", "9:9"}));
}

TEST(RichTextSourceTest, GroupTextAndContentFiles) {
    const std::string markup =
        "tp<val>1<tr>groupid<val>1<br>tp<val>4<tr>text<val>Раз<br>tp<val>3<tr>text<val>Заголовок"
        "<br>tp<val>4<tr>text<val>Два<br>tp<val>1<tr>groupid<val>2<br>tp<val>4<tr>text<val>Три";
    EXPECT_EQ(extractGroupText(markup, 1), "Раз\nДва");
    EXPECT_EQ(extractGroupText(markup, 3), "");

    test::TempDir dir;
    std::ofstream(dir.path() / "empty-u.txt") << "  пусто\n\n";
    std::ofstream(dir.path() / "page.txt") << "\r\n страница \n";
    std::ofstream(dir.path() / "page.jsn") << "[]\n";
    EXPECT_EQ(fileToString(dir.path(), "page"), "страница");
    EXPECT_EQ(fileToString(dir.path(), "none"), "пусто");
    EXPECT_EQ(fileToString(dir.path(), "../page"), "пусто");
    EXPECT_TRUE(loadContentFile(dir.path(), "page").json);
    EXPECT_EQ(loadContentFile(dir.path(), "page").text, "[]");
    EXPECT_FALSE(loadContentFile(dir.path(), "none").json);
}

TEST(RichTextSourceTest, BundledEmptyPageReads) {
    const auto text = fileToString(test::resourceDir() / "content", "no-such-file");
    EXPECT_FALSE(extractGroupText(text, 1).empty());
}

}  // namespace
}  // namespace tilika::frame
