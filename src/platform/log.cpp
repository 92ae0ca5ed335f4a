#include "platform/log.h"

#include <iostream>
#include <mutex>

namespace tilika::platform {
namespace {

std::mutex& sinkMutex() {
    static std::mutex mutex;
    return mutex;
}

LogSink& currentSink() {
    static LogSink sink;
    return sink;
}

}  // namespace

void log(std::string_view line) {
    LogSink sink;
    {
        std::lock_guard lock(sinkMutex());
        sink = currentSink();
    }
    // Called outside the lock, so a sink may log in turn.
    if (sink) {
        sink(line);
    } else {
        std::cerr << line << '\n';
    }
}

void setLogSink(LogSink sink) {
    std::lock_guard lock(sinkMutex());
    currentSink() = std::move(sink);
}

}  // namespace tilika::platform
