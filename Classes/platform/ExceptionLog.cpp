#include "platform/ExceptionLog.h"

#include <execinfo.h>
#include <fmt/core.h>

#include <cstdlib>
#include <memory>
#include <string>

#include <velmocore/platform/Log.h>

namespace velmo::detail {
namespace {

std::string callStack() {
    void* frames[32];
    const int count = backtrace(frames, 32);
    const std::unique_ptr<char*, decltype(&std::free)> names(backtrace_symbols(frames, count),
                                                             &std::free);
    std::string text;
    for (int i = 0; names && i < count; ++i) (text += i ? "\n" : "") += names.get()[i];
    return text;
}

}  // namespace

void logException(std::string_view operation, std::string_view receiver, std::string_view name,
                  std::string_view reason) {
    log(fmt::format("{} ({}): {}\n{}\n{}", operation, receiver, name, reason, callStack()));
}

}  // namespace velmo::detail
