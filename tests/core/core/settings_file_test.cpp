#include "core/settings_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "core/date.h"
#include "support/temp_dir.h"

namespace tilika::core {
namespace {

namespace fs = std::filesystem;

std::string readFile(const fs::path& file) {
    std::ifstream in(file);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

TEST(JsonSettingsStore, KeepsEveryKindOfValueAcrossRestarts) {
    test::TempDir dir;
    const fs::path file = dir.path() / "Library" / "settings.json";
    const core::Date moment{std::chrono::milliseconds(1795378757123)};
    {
        JsonSettingsStore settings(file);
        settings.setBool("pass", true);
        settings.setInt("backgroundId", 7);
        settings.setText("chatname", "Мама Лены");
        settings.setDate("deactive", moment);
        settings.setValue("chatmessages", nlohmann::json{{"12", 3}});
        settings.setInt("gone", 1);
        settings.remove("gone");
        EXPECT_TRUE(settings.synchronize());
        settings.setInt("newscount", 4);  // not synchronized: written on the way out
    }
    EXPECT_FALSE(fs::exists(dir.path() / "Library" / "settings.json.tmp"));
    EXPECT_NE(readFile(file).find("\"chatname\": \"Мама Лены\""), std::string::npos);

    JsonSettingsStore settings(file);
    EXPECT_TRUE(settings.boolValue("pass"));
    EXPECT_EQ(settings.intValue("backgroundId"), 7);
    EXPECT_EQ(settings.textValue("chatname"), "Мама Лены");
    EXPECT_EQ(settings.dateValue("deactive"), moment);
    EXPECT_EQ(settings.value("chatmessages"), (nlohmann::json{{"12", 3}}));
    EXPECT_EQ(settings.intValue("newscount"), 4);
    EXPECT_FALSE(settings.contains("gone"));
}

TEST(JsonSettingsStore, ReadsMissingAndMistypedValuesAsZero) {
    test::TempDir dir;
    JsonSettingsStore settings(dir.path() / "settings.json");
    EXPECT_FALSE(settings.boolValue("absent"));
    EXPECT_EQ(settings.intValue("absent"), 0);
    EXPECT_EQ(settings.textValue("absent"), "");
    EXPECT_FALSE(settings.dateValue("absent"));

    settings.setText("icloud", "eleven");
    settings.setText("counter", "12");
    settings.setValue("list", nlohmann::json::array({1, 2}));
    settings.setInt("stamp", 5);
    settings.setValue("float", 2.9);
    EXPECT_EQ(settings.intValue("icloud"), 0);
    EXPECT_EQ(settings.intValue("counter"), 12);
    EXPECT_EQ(settings.intValue("list"), 0);
    EXPECT_FALSE(settings.boolValue("list"));
    EXPECT_TRUE(settings.boolValue("stamp"));
    EXPECT_FALSE(settings.dateValue("stamp"));
    EXPECT_EQ(settings.intValue("float"), 2);
    EXPECT_EQ(settings.textValue("stamp"), "5");

    // What a damaged or hostile file may hold where a date should be.
    for (const auto& odd : {nlohmann::json{{"$date", 1e300}}, nlohmann::json{{"$date", "x"}},
                            nlohmann::json{{"other", 5}}, nlohmann::json(5)}) {
        settings.setValue("deactive", odd);
        EXPECT_FALSE(settings.dateValue("deactive")) << odd.dump();
    }
}

TEST(JsonSettingsStore, KeepsADamagedFileAsideAndStartsAfresh) {
    test::TempDir dir;
    const fs::path file = dir.path() / "settings.json";
    std::ofstream(file) << "{\"pass\": tru";
    {
        JsonSettingsStore settings(file);
        EXPECT_FALSE(settings.contains("pass"));
        EXPECT_EQ(settings.damagedCopy(), dir.path() / "settings.json.damaged");
        settings.setBool("pass", false);
        EXPECT_TRUE(settings.synchronize());
    }
    EXPECT_EQ(readFile(dir.path() / "settings.json.damaged"), "{\"pass\": tru");
    // The file saved since reads well: nothing more to tell.
    EXPECT_TRUE(JsonSettingsStore(file).contains("pass"));
    EXPECT_FALSE(JsonSettingsStore(file).damagedCopy());
    EXPECT_FALSE(JsonSettingsStore(dir.path() / "none.json").damagedCopy());

    // A second damaged file doesn't overwrite the first one kept.
    std::ofstream(file) << "[1, 2, 3]";
    const JsonSettingsStore second(file);
    EXPECT_FALSE(second.contains("pass"));
    EXPECT_EQ(second.damagedCopy(), dir.path() / "settings.json.damaged-2");
    EXPECT_EQ(readFile(dir.path() / "settings.json.damaged"), "{\"pass\": tru");
    EXPECT_EQ(readFile(dir.path() / "settings.json.damaged-2"), "[1, 2, 3]");
}

TEST(JsonSettingsStore, MarksOneShotEventsDurably) {
    test::TempDir dir;
    const fs::path file = dir.path() / "settings.json";
    JsonSettingsStore settings(file);
    EXPECT_TRUE(settings.helpCheck("noteHelp"));
    settings.helpFinish("noteHelp");
    EXPECT_FALSE(settings.helpCheck("noteHelp"));
    // Already on disk, without waiting for the store to close.
    EXPECT_FALSE(JsonSettingsStore(file).helpCheck("noteHelp"));
}

TEST(JsonSettingsStore, ReportsAFolderItCannotWriteTo) {
    test::TempDir dir;
    std::ofstream(dir.path() / "blocker") << "a file, not a folder";
    JsonSettingsStore settings(dir.path() / "blocker" / "settings.json");
    settings.setBool("pass", true);
    EXPECT_FALSE(settings.synchronize());
    EXPECT_TRUE(settings.boolValue("pass"));
}

}  // namespace
}  // namespace tilika::core
