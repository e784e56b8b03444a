#include <velmocore/system/TimedLock.h>

#include <fmt/core.h>

#include <string>

#include <velmocore/platform/Log.h>

namespace velmo::detail {
namespace {

/// In seconds; what takes longer is worth a line.
constexpr double LongWait = 0.05;

std::string shown(const String& name) { return name.isAbsent() ? "(null)" : name.utf8(); }

}  // namespace

void LockWaits::add(double wait) {
    if (wait > LongWait) log(fmt::format("{} locked for {:f}s", shown(name_), wait));
    // Read, add and write in one: a reset between them would be undone.
    total_.fetch_add(wait);
}

double LockWaits::measure(const String& label) const {
    const double total = total_;
    log(fmt::format("{}: {:f}s", shown(label), total));
    return total;
}

}  // namespace velmo::detail
