#include "core/system_folders.h"

#include <gtest/gtest.h>

#include <fstream>

#include "platform/folders.h"
#include "support/temp_dir.h"

namespace tilika::core {
namespace {

TEST(SystemFolders, NamesEachFolderByItsWord) {
    test::TempDir dir;
    platform::DataFolders folders(dir.path() / "data", dir.path() / "res");
    const auto data = dir.path() / "data";

    EXPECT_EQ(getSystemFolder(folders, "Document"), data / "Documents");
    EXPECT_EQ(getSystemFolder(folders, "Library"), data / "Library");
    EXPECT_EQ(getSystemFolder(folders, "Temp"), data / "tmp");
    EXPECT_EQ(getSystemFolder(folders, "Reserv"), data / "Documents" / "reserv");
    EXPECT_EQ(getSystemFolder(folders, "Root"), dir.path() / "res");
    EXPECT_FALSE(getSystemFolder(folders, "Pictures"));
    EXPECT_FALSE(getSystemFolder(folders, "document"));

    EXPECT_FALSE(std::filesystem::exists(data / "Cloud"));
    EXPECT_EQ(getSystemFolder(folders, "Cloud"), data / "Cloud");
    EXPECT_TRUE(std::filesystem::is_directory(data / "Cloud"));
}

TEST(SystemFolders, FallsBackToTempWithoutACloudFolder) {
    test::TempDir dir;
    platform::DataFolders folders(dir.path(), dir.path() / "res");
    // A file where the folder should be: the cloud can't be had.
    std::ofstream(dir.path() / "Cloud") << "not a folder";
    EXPECT_EQ(getSystemFolder(folders, "Cloud"), dir.path() / "tmp");
}

TEST(SystemFolders, CreatesTheWholeLayout) {
    test::TempDir dir;
    platform::DataFolders folders(dir.path() / "x", dir.path() / "res");
    ASSERT_TRUE(folders.createLayout());
    for (const char* sub :
         {"Documents/reserv", "Documents/picture", "Documents/picture-s", "Documents/analizy",
          "Documents/documents", "Library", "tmp", "Cloud"}) {
        EXPECT_TRUE(std::filesystem::is_directory(dir.path() / "x" / sub)) << sub;
    }

    // A file where a folder should be: the others are made all the same, and
    // the reason is told.
    platform::DataFolders blocked(dir.path() / "y", dir.path() / "res");
    std::filesystem::create_directories(dir.path() / "y");
    std::ofstream(dir.path() / "y" / "Library") << "not a folder";
    std::error_code error;
    EXPECT_FALSE(blocked.createLayout(error));
    EXPECT_TRUE(error);
    EXPECT_TRUE(std::filesystem::is_directory(dir.path() / "y" / "Documents" / "reserv"));
}

TEST(SystemFolders, PlacesFilesByName) {
    const std::filesystem::path base = "/docs";
    const std::pair<const char*, const char*> cases[] = {
        {"a-1.jpg", "/docs/analizy"},
        {"a-1x", "/docs/analizy"},
        {"a-x", "/docs"},  // too short for the rule
        {"a-", "/docs"},
        {"d-12-1.jpg", "/docs/documents"},
        {"doc-a", "/docs"},
        {"doc-a1", "/docs/documents"},
        {"GUID-22-11-2026-s.jpg", "/docs/picture-s"},
        {"x-s.jpg", "/docs/picture-s"},
        {"-s.jpg", "/docs/picture"},
        {"a.jpg", "/docs/picture"},
        {".jpg", "/docs"},
        {"child-GUID.jpg", "/docs/picture"},
        {"261121.sqlite", "/docs/reserv"},
        {".sqlite", "/docs"},
        {"report.pdf", "/docs"},
        {"", "/docs"},
    };
    for (const auto& [name, folder] : cases) {
        EXPECT_EQ(typeFilePath(base, name), std::filesystem::path(folder)) << name;
    }
}

}  // namespace
}  // namespace tilika::core
