#include "core/folder_lock.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace tilika::core {
namespace {

std::error_code lastError() {
    return {errno, std::generic_category()};
}

}  // namespace

FolderLock::~FolderLock() {
    release();
}

FolderLock::Result FolderLock::acquire(const std::filesystem::path& file) {
    release();
    error_.clear();
    int fd = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0) {
        error_ = lastError();
        return Result::Failed;
    }
    while (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        if (errno == EINTR) {
            continue;
        }
        const bool busy = errno == EWOULDBLOCK;
        error_ = lastError();
        ::close(fd);
        return busy ? Result::HeldByOther : Result::Failed;
    }
    // Writing our id also proves the folder takes writes: a full disk shows
    // here, before anything of the user's is touched.
    const std::string pid = std::to_string(::getpid()) + "\n";
    errno = 0;
    if (::ftruncate(fd, 0) != 0 ||
        ::pwrite(fd, pid.data(), pid.size(), 0) != static_cast<ssize_t>(pid.size()) ||
        ::fsync(fd) != 0) {
        error_ = errno != 0 ? lastError() : std::make_error_code(std::errc::io_error);
        ::close(fd);
        return Result::Failed;
    }
    fd_ = fd;
    return Result::Acquired;
}

void FolderLock::release() {
    if (fd_ >= 0) {
        // Closing the last descriptor drops the lock; the file stays, so that
        // the next start needs no write to the folder's listing.
        ::close(fd_);
        fd_ = -1;
    }
}

std::string folderErrorText(std::error_code error) {
    if (error.category() == std::generic_category() || error.category() == std::system_category()) {
        switch (error.value()) {
            case EROFS:
                return "папка доступна только для чтения";
            case ENOSPC:
            case EDQUOT:
                return "нет места на диске";
            case EACCES:
            case EPERM:
                return "нет прав на запись";
            case ENOTDIR:
            case EEXIST:
                return "на месте папки лежит файл";
            case ENAMETOOLONG:
                return "слишком длинный путь";
            case EIO:
                return "ошибка чтения или записи диска";
            default:
                break;
        }
    }
    return "не удалось записать в папку (" + error.message() + ")";
}

}  // namespace tilika::core
