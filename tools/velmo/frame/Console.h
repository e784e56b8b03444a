// The one place that writes: standard output, standard error and the line of progress.
#pragma once

#include <chrono>
#include <cstddef>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>

#include <velmocore/platform/FunctionRef.h>

namespace velmo::tool {

/// Standard output takes no more: the disk is full, or the reader has gone.
class OutputError : public std::runtime_error {
public:
    OutputError(int number);
    /// The reader has gone, which is no fault: nothing is to be said about it.
    bool isClosedPipe() const { return isClosedPipe_; }

private:
    bool isClosedPipe_;
};

/// Any thread may write; what one call writes stays together.
class Console {
public:
    Console();
    ~Console();

    /// Writes all bytes to standard output at once, or throws an OutputError.
    void writeOutput(std::string_view bytes);
    /// Writes "velmo: TEXT" to standard error, on a terminal with all controls made visible.
    void complain(std::string_view text);

    bool outputIsTerminal() const { return outputIsTerminal_; }

    /// Tells on a terminal how far the work is, at most ten times a second. Every other output
    /// takes that line away first.
    void showProgress(std::size_t done, std::size_t total);
    /// The same in other words, which are made only when they are shown.
    void showProgress(FunctionRef<std::string()> words);

private:
    void hideProgress();

    const bool outputIsTerminal_, errorIsTerminal_;
    std::mutex mutex_;
    bool progressIsShown_ = false;
    std::chrono::steady_clock::time_point nextProgress_;
};

}  // namespace velmo::tool
