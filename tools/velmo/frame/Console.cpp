// The two outputs of the tool, and the progress on a terminal that shares one of them. One lock
// covers both, as they may be the same terminal: progress is taken away before anything is
// written, and never stands in the middle of a line.
#include "Console.h"

#include <fmt/core.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>

#include "Terminal.h"

namespace velmo::tool {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view ClearLine = "\r\x1B[K";

/// Waits until a descriptor that does not block takes bytes again.
void waitForRoom(int descriptor) {
    pollfd waiting = {descriptor, POLLOUT, 0};
    poll(&waiting, 1, -1);
}

/// 0, or the number of the error that kept bytes from being written.
int writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (errno == EAGAIN || errno == EWOULDBLOCK)
            waitForRoom(descriptor);
        else if (errno != EINTR)
            return errno;
    }
    return 0;
}

}  // namespace

OutputError::OutputError(int number)
    : std::runtime_error(std::generic_category().message(number)), isClosedPipe_(number == EPIPE) {}

Console::Console()
    : outputIsTerminal_(isTerminal(STDOUT_FILENO)),
      errorIsTerminal_(isTerminal(STDERR_FILENO)),
      // A run that is over sooner shows none.
      nextProgress_(std::chrono::steady_clock::now() + 100ms) {}

Console::~Console() { hideProgress(); }

void Console::writeOutput(std::string_view bytes) {
    const std::scoped_lock lock(mutex_);
    hideProgress();
    if (const int error = writeAll(STDOUT_FILENO, bytes)) throw OutputError(error);
}

void Console::complain(std::string_view text) {
    const std::scoped_lock lock(mutex_);
    hideProgress();
    // Whoever does not read the complaints is not told that he does not.
    writeAll(STDERR_FILENO,
             fmt::format("velmo: {}\n", errorIsTerminal_ ? shown(text) : std::string(text)));
}

void Console::showProgress(std::size_t done, std::size_t total) {
    showProgress([&] { return fmt::format("{} of {}", done, total); });
}

void Console::showProgress(FunctionRef<std::string()> words) {
    if (!errorIsTerminal_) return;
    const std::scoped_lock lock(mutex_);
    if (std::chrono::steady_clock::now() < nextProgress_) return;
    nextProgress_ = std::chrono::steady_clock::now() + 100ms;
    writeAll(STDERR_FILENO, fmt::format("{}{}", ClearLine, words()));
    progressIsShown_ = true;
}

void Console::hideProgress() {
    if (progressIsShown_) writeAll(STDERR_FILENO, ClearLine);
    progressIsShown_ = false;
}

}  // namespace velmo::tool
