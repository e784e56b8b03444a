#include <velmocore/platform/Log.h>

#include <atomic>
#include <cstdio>

namespace velmo {
namespace {

void logToStandardError(std::string_view line) {
    // One call a line keeps the lines of several threads whole.
    std::fprintf(stderr, "%.*s\n", static_cast<int>(line.size()), line.data());
}

std::atomic<LogHandler> currentHandler = logToStandardError;

}  // namespace

void setLogHandler(LogHandler handler) noexcept {
    currentHandler = handler ? handler : logToStandardError;
}

void log(std::string_view line) { currentHandler.load()(line); }

}  // namespace velmo
