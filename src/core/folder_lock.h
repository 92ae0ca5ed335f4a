#pragma once

#include <filesystem>
#include <string>
#include <system_error>

namespace tilika::core {

// Keeps a second copy of the program off a data folder while this one works
// on it: two programs on one folder would overwrite each other's settings and
// race for the daily copy.
//
// The lock is an advisory lock (flock) on a file in the folder, so it dies
// with the process that holds it: a program that crashed leaves a file
// behind, never a lock, and the next start simply takes it over. The file
// also names the holder's process id, for a person who looks.
class FolderLock {
public:
    enum class Result {
        Acquired,
        HeldByOther,  // another living process holds the lock
        Failed,       // the file can't be created or written: see error()
    };

    FolderLock() = default;
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    // Takes the lock at `file`, creating the file if need be. A lock already
    // held by this object is released first.
    Result acquire(const std::filesystem::path& file);
    void release();

    bool held() const { return fd_ >= 0; }
    // Why the last acquire() failed.
    std::error_code error() const { return error_; }

private:
    int fd_ = -1;
    std::error_code error_;
};

// Why a folder can't be written, as the user reads it: "папка доступна только
// для чтения", "нет места на диске", ...
std::string folderErrorText(std::error_code error);

}  // namespace tilika::core
