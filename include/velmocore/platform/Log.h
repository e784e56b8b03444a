#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>

namespace velmo {

/// Takes one line of log, in UTF-8 and without its line end.
using LogHandler = void (*)(std::string_view line);

/// Sends the library's diagnostics to the handler from now on; null restores the
/// default, which writes each line to standard error. May be called on any thread;
/// the handler must stand being called on several at once.
///
///     setLogHandler([](std::string_view line) { std::fwrite(line.data(), 1, line.size(), stdout); });
///     setLogHandler(nullptr);    // (to standard error, as at the start)
VELMO_API void setLogHandler(LogHandler handler) noexcept;

/// Logs one line through the handler.
VELMO_API void log(std::string_view line);

}  // namespace velmo
