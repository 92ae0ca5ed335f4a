#pragma once

#include <filesystem>

namespace tilika::test {

// A fresh folder for one test, removed with everything in it afterwards.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

// The folder with the program's resources as built, template database included.
inline std::filesystem::path resourceDir() {
    return TILIKA_TEST_RESOURCE_DIR;
}

}  // namespace tilika::test
