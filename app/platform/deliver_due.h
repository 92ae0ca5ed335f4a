#pragma once

#include <filesystem>

namespace tilika::platform {

// What `tilika --deliver-due` exits with.
namespace deliverExit {
inline constexpr int done = 0;
inline constexpr int unreadable = 1;  // the data folder can't be read
inline constexpr int noService = 75;  // no notification service: try again later
}  // namespace deliverExit

// Shows the reminders of the data folder that have come due while the
// program is closed, each once, through the desktop's notification service;
// the open program shows its own, so then nothing is done. Needs a
// QCoreApplication and no display, and never opens the diary, whose opening
// would take the daily copy every minute.
int deliverDue(const std::filesystem::path& dataDir, const std::filesystem::path& resourceDir);

}  // namespace tilika::platform
