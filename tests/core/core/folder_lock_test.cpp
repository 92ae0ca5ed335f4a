#include "core/folder_lock.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>
#include <sstream>
#include <unistd.h>

#include "support/temp_dir.h"

namespace tilika::core {
namespace {

std::string readFile(const std::filesystem::path& file) {
    std::ifstream in(file);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

TEST(FolderLock, KeepsOthersOffUntilReleased) {
    test::TempDir dir;
    const auto file = dir.path() / "tilika.lock";
    // A file left by a program that crashed names a process long gone; it
    // holds no lock, so it is taken over.
    std::ofstream(file) << "999999999\ntilika\n";

    FolderLock first;
    ASSERT_EQ(first.acquire(file), FolderLock::Result::Acquired);
    EXPECT_TRUE(first.held());
    EXPECT_EQ(readFile(file), std::to_string(::getpid()) + "\n");

    // A lock is one per open file, so a second holder in this process stands
    // for a second program.
    FolderLock second;
    EXPECT_EQ(second.acquire(file), FolderLock::Result::HeldByOther);
    EXPECT_FALSE(second.held());

    first.release();
    EXPECT_EQ(second.acquire(file), FolderLock::Result::Acquired);
}

TEST(FolderLock, TellsWhyTheFolderCantBeWritten) {
    test::TempDir dir;
    FolderLock lock;
    EXPECT_EQ(lock.acquire(dir.path() / "missing" / "tilika.lock"), FolderLock::Result::Failed);
    EXPECT_EQ(lock.error(), std::errc::no_such_file_or_directory);
    EXPECT_FALSE(lock.held());

    EXPECT_EQ(folderErrorText({EROFS, std::generic_category()}),
              "папка доступна только для чтения");
    EXPECT_EQ(folderErrorText({ENOSPC, std::generic_category()}), "нет места на диске");
    EXPECT_EQ(folderErrorText(std::make_error_code(std::errc::permission_denied)),
              "нет прав на запись");
    // Anything else still says what the system said.
    const std::string other = folderErrorText(std::make_error_code(std::errc::too_many_links));
    EXPECT_TRUE(other.starts_with("не удалось записать в папку (")) << other;
}

}  // namespace
}  // namespace tilika::core
