#include "Progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>

namespace velmo::tool {

using namespace std::chrono_literals;

Progress::Progress(std::size_t total)
    : total_(total),
      onTerminal_(isatty(STDERR_FILENO) != 0),
      next_(std::chrono::steady_clock::now() + 100ms) {}

void Progress::hide() {
    if (!isShown_) return;
    fmt::print(stderr, "\r\x1B[K");
    std::fflush(stderr);
    isShown_ = false;
}

void Progress::show(std::size_t done) {
    if (!onTerminal_ || std::chrono::steady_clock::now() < next_) return;
    next_ = std::chrono::steady_clock::now() + 100ms;
    fmt::print(stderr, "\r\x1B[K{} of {} pages", done, total_);
    std::fflush(stderr);
    isShown_ = true;
}

}  // namespace velmo::tool
