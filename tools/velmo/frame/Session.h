// What one run of the tool knows: how it prints, and what it exits with.
#pragma once

#include <atomic>
#include <string>
#include <string_view>

#include "Console.h"

namespace velmo::tool {

enum ExitCode { Hit = 0, Done = 0, NoHit = 1, Failure = 2 };

/// Any thread may call its operations; its fields are set before threads are made.
class Session {
public:
    Console console;
    bool json = false;              ///< one object a line instead of text for people
    bool isQuiet = false;           ///< nothing is printed, and the first hit ends the run
    bool hasColors = false;         ///< hits are coloured
    bool hasSeveralInputs = false;  ///< so that outputs must say whose they are
    bool printsNuls = false;        ///< the names of files end with NUL and not with a line end

    /// Notes that an input could not be used; the tool goes on and exits with 2.
    void fail(std::string_view file, std::string_view reason);
    void noteFailure() { failed_ = true; }

    /// Notes whether an input held what was looked for.
    void noteHit(bool hit) { (hit ? anyHit_ : anyMiss_) = true; }
    /// Whether nothing that is still to come can change the outcome.
    bool isSettled() const { return isQuiet && anyHit_; }

    /// 2 if an input failed, 1 if something was looked for and nowhere found, else 0.
    int exitCode() const;

private:
    std::atomic<bool> failed_ = false, anyHit_ = false, anyMiss_ = false;
};

}  // namespace velmo::tool
