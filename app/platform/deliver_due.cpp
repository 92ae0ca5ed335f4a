#include "platform/deliver_due.h"

#include <QString>

#include <cerrno>
#include <fcntl.h>
#include <iostream>
#include <sys/file.h>
#include <unistd.h>

#include "core/dates.h"
#include "core/notification_ledger.h"
#include "platform/clock.h"
#include "platform/desktop_notifier.h"
#include "platform/folders.h"

namespace tilika::platform {
namespace {

// Whether a running program holds the data folder's lock. Only looks: the
// lock is not taken, so the program can start while this run works.
bool programIsOpen(const std::filesystem::path& lockFile) {
    const int fd = ::open(lockFile.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    int result = 0;
    do {
        result = ::flock(fd, LOCK_SH | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    const bool held = result != 0 && errno == EWOULDBLOCK;
    ::close(fd);
    return held;
}

}  // namespace

int deliverDue(const std::filesystem::path& dataDir, const std::filesystem::path& resourceDir) {
    const DataFolders folders(dataDir, resourceDir);
    const std::filesystem::path library = folders.path(SystemFolder::Library);
    if (programIsOpen(library / "tilika.lock")) {
        return deliverExit::done;
    }
    const SystemClock clock;
    const core::Dates dates(clock);
    core::LedgerNotifier ledger(library, dates);
    const std::optional<core::Date> next = ledger.nextFireDate();
    if (!ledger.readable()) {
        std::cerr << "tilika: не удалось прочитать напоминания в папке " << library.string()
                  << "\n";
        return deliverExit::unreadable;
    }
    if (!next || *next > clock.now()) {
        return deliverExit::done;
    }
    // The service is asked first: without one the reminders stay for the
    // program to show when it opens.
    DesktopNotifier notifier(reminderPicture(folders));
    if (!notifier.available()) {
        std::cerr << "tilika: служба уведомлений рабочего стола не отвечает; напоминания "
                     "покажет Тилика, когда её откроют\n";
        return deliverExit::noService;
    }
    int result = deliverExit::done;
    for (const LocalNotification& due : ledger.takeDue(clock.now())) {
        if (!notifier.notify(QString::fromStdString(due.alertBody), false)) {
            std::cerr << "tilika: служба уведомлений не приняла напоминание\n";
            result = deliverExit::noService;
        }
    }
    return result;
}

}  // namespace tilika::platform
