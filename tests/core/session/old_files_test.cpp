#include "session/old_files.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "core/ids.h"
#include "support/temp_dir.h"

namespace tilika::session {
namespace {

namespace fs = std::filesystem;

class OldFilesTest : public ::testing::Test {
protected:
    test::TempDir dir;

    fs::path put(const std::string& relative, const std::string& content = "") {
        const fs::path file = dir.path() / relative;
        fs::create_directories(file.parent_path());
        std::ofstream(file) << (content.empty() ? relative : content);
        return file;
    }

    std::string read(const std::string& relative) const {
        std::ifstream in(dir.path() / relative);
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }

    std::set<std::string> names(const std::string& folder) const {
        std::set<std::string> found;
        for (const auto& entry : fs::directory_iterator(dir.path() / folder)) {
            found.insert(entry.path().filename().string());
        }
        return found;
    }

    static std::string guid(int chid) { return core::newID2(core::idkind::profile, chid); }
};

TEST_F(OldFilesTest, NumberedPhotosAndScansTakeTheirProfilesGuid) {
    put("picture/1-1416300000.jpg");
    put("picture-s/2-1416300000-s.jpg");
    put("analizy/a-2-1416300000.PDF");
    put("documents/d-1-1.jpg");
    // Already new, the profile photos, and files of other kinds stay.
    put("picture/" + guid(1) + "-1700000000.jpg");
    put("picture/child-" + guid(1) + ".jpg");
    put("picture/child2.jpg");
    put("documents/notes.txt");
    put("documents/1-x.png");

    std::vector<std::pair<std::size_t, std::size_t>> steps;
    const RenameOutcome outcome = renameOldFiles(
        oldFileRenames(dir.path()),
        [&](std::size_t done, std::size_t total) { steps.emplace_back(done, total); });

    EXPECT_EQ(outcome.renamed, 4u);
    EXPECT_EQ(outcome.kept, 0u);
    EXPECT_EQ(steps,
              (std::vector<std::pair<std::size_t, std::size_t>>{{1, 4}, {2, 4}, {3, 4}, {4, 4}}));
    EXPECT_EQ(names("picture"),
              (std::set<std::string>{guid(1) + "-1416300000.jpg", guid(1) + "-1700000000.jpg",
                                     "child-" + guid(1) + ".jpg", "child2.jpg"}));
    EXPECT_EQ(names("picture-s"), std::set<std::string>{guid(2) + "-1416300000-s.jpg"});
    EXPECT_EQ(names("analizy"), std::set<std::string>{"a-" + guid(2) + "-1416300000.PDF"});
    EXPECT_EQ(names("documents"),
              (std::set<std::string>{"d-" + guid(1) + "-1.jpg", "notes.txt", "1-x.png"}));
    // The bytes travel with the name.
    EXPECT_EQ(read("picture/" + guid(1) + "-1416300000.jpg"), "picture/1-1416300000.jpg");

    // A second run finds nothing to do.
    EXPECT_TRUE(oldFileRenames(dir.path()).empty());
}

TEST_F(OldFilesTest, TakenNameIsNeverOverwrittenAndCutRunResumes) {
    put("picture/3-100.jpg");
    put("picture/3-200.jpg");
    put("picture/3-300.jpg", "old photo");
    put("picture/" + guid(3) + "-300.jpg", "photo already there");
    // Missing folders are simply empty.
    const std::vector<FileRename> plan = oldFileRenames(dir.path());
    ASSERT_EQ(plan.size(), 3u);

    // A launch that stops after the first file leaves the rest to be found
    // again, and nothing twice.
    renameOldFiles({plan.front()}, {});
    const std::vector<FileRename> rest = oldFileRenames(dir.path());
    ASSERT_EQ(rest.size(), 2u);
    const RenameOutcome outcome = renameOldFiles(rest, {});
    EXPECT_EQ(outcome.renamed, 1u);
    EXPECT_EQ(outcome.kept, 1u);
    EXPECT_TRUE(fs::exists(dir.path() / "picture" / (guid(3) + "-100.jpg")));
    EXPECT_TRUE(fs::exists(dir.path() / "picture" / (guid(3) + "-200.jpg")));
    EXPECT_FALSE(fs::exists(dir.path() / "picture" / "3-200.jpg"));

    // The clash stays for the user to sort out, and is never forced.
    EXPECT_EQ(read("picture/" + guid(3) + "-300.jpg"), "photo already there");
    EXPECT_EQ(read("picture/3-300.jpg"), "old photo");
    const RenameOutcome again = renameOldFiles(oldFileRenames(dir.path()), {});
    EXPECT_EQ(again.renamed, 0u);
    EXPECT_EQ(read("picture/" + guid(3) + "-300.jpg"), "photo already there");
}

}  // namespace
}  // namespace tilika::session
