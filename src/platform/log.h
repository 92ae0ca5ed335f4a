#pragma once

#include <functional>
#include <string_view>

namespace tilika::platform {

// The program's few log lines: plain text, no levels. They go to standard
// error unless a sink is set (the Qt shell routes them to Qt's log, tests
// collect them).
void log(std::string_view line);

using LogSink = std::function<void(std::string_view)>;
// Replaces the sink for the whole process; an empty sink restores the default.
void setLogSink(LogSink sink);

}  // namespace tilika::platform
