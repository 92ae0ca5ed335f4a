#include "core/ids.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>

namespace tilika::core {
namespace {

TEST(Ids, MakesFreshUpperCaseGuids) {
    const std::regex shape("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
    std::set<std::string> seen;
    for (int i = 0; i < 1000; ++i) {
        const std::string id = newID();
        EXPECT_TRUE(std::regex_match(id, shape)) << id;
        seen.insert(id);
    }
    EXPECT_EQ(seen.size(), 1000u);
}

TEST(Ids, MakesFixedGuidsFromKindAndNumber) {
    EXPECT_EQ(newID2(idkind::seededRow, 61), "00000000-0000-0000-0004-000000000061");
    EXPECT_EQ(newID2(idkind::profile, 1), "00000000-0000-0000-0001-000000000001");
    EXPECT_EQ(newID2(idkind::listRow, "7"), "00000000-0000-0000-0002-000000000007");
    EXPECT_EQ(newID2(idkind::listRow, 123456789012LL), "00000000-0000-0000-0002-123456789012");
    // Longer numbers are kept whole rather than cut.
    EXPECT_EQ(newID2(idkind::listRow, "1234567890123"), "00000000-0000-0000-0002-1234567890123");
}

}  // namespace
}  // namespace tilika::core
