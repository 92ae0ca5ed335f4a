#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>

#include "frame/rich_text_source.h"

namespace tilika::frame {
namespace {

// The shipped guide, as the build copied it into the resources.
std::string guide() {
    const auto file =
        loadContentFile(std::filesystem::path(TILIKA_TEST_RESOURCE_DIR) / "content", "prikorm-u");
    EXPECT_FALSE(file.json);
    return file.text;
}

// The guide is highlighted by the running month of life, so every month
// from the sixth to the twelfth needs a group of its own with something to
// read, after the opening group of general rules.
TEST(FeedingGuideTest, HasAGroupForEveryMonthFromSixToTwelve) {
    const std::string markup = guide();
    std::set<long long> groups;
    for (const auto& item : parseMarkup(markup)) {
        if (item.tp == richtp::groupStart) {
            groups.insert(item.groupid);
        }
    }
    EXPECT_EQ(groups, (std::set<long long>{1, 6, 7, 8, 9, 10, 11, 12}));
    for (long long month = 6; month <= 12; ++month) {
        EXPECT_FALSE(extractGroupText(markup, month).empty()) << month;
    }
    EXPECT_NE(extractGroupText(markup, 1).find("5–7 дней"), std::string::npos);
}

// A field the parser can't read is silently dropped, so a slip in the file
// would lose text without a sign on screen: every field must be one the
// page reads, or the source note that it is meant to skip.
TEST(FeedingGuideTest, EveryFieldIsReadableAndTheSourceIsNamedFirst) {
    const std::string markup = guide();
    const std::set<std::string_view> known{"tp", "text", "groupid", "source"};
    std::string_view rest = markup;
    bool first = true;
    while (!rest.empty()) {
        const auto end = rest.find("<br>");
        std::string_view record = rest.substr(0, end);
        rest = end == std::string_view::npos ? std::string_view{} : rest.substr(end + 4);
        bool source = false;
        while (!record.empty()) {
            const auto stop = record.find("<tr>");
            const std::string_view field = record.substr(0, stop);
            record = stop == std::string_view::npos ? std::string_view{} : record.substr(stop + 4);
            const auto separator = field.find("<val>");
            ASSERT_NE(separator, std::string_view::npos) << field;
            std::string_view key = field.substr(0, separator);
            key.remove_prefix(std::min(key.find_first_not_of("\r\n "), key.size()));
            EXPECT_TRUE(known.contains(key)) << field;
            const std::string_view value = field.substr(separator + 5);
            EXPECT_EQ(value.find('<'), std::string_view::npos) << field;
            if (key == "source") {
                source = true;
                EXPECT_NE(value.find("2019"), std::string_view::npos);
            }
        }
        EXPECT_EQ(source, first);
        first = false;
    }
}

}  // namespace
}  // namespace tilika::frame
