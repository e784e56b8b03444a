// One line on standard error that tells how far a long job is; only on a terminal.
#pragma once

#include <chrono>
#include <cstddef>

namespace velmo::tool {

class Progress {
public:
    explicit Progress(std::size_t total);
    ~Progress() { hide(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Draws at most ten times a second.
    void show(std::size_t done);
    /// Takes the line away, so that output can be written.
    void hide();

private:
    std::size_t total_;
    bool onTerminal_;
    bool isShown_ = false;
    std::chrono::steady_clock::time_point next_;
};

}  // namespace velmo::tool
