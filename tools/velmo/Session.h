// What all commands share: where output goes, and what the tool exits with.
#pragma once

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include <velmocore/platform/String.h>

namespace velmo::tool {

using Json = nlohmann::ordered_json;

enum ExitCode { Hit = 0, Done = 0, NoHit = 1, Failure = 2 };

class Session {
public:
    bool json = false;  ///< one object a line instead of text for people

    /// Notes that an input could not be used; the tool goes on and exits with 2.
    void fail(std::string_view file, std::string_view reason);

    /// Notes whether an input held what was looked for.
    void noteHit(bool hit) { (hit ? anyHit_ : anyMiss_) = true; }

    /// 2 if an input failed, 1 if something was looked for and nowhere found, else 0.
    int exitCode() const;

    /// Output as it stands, line ends and all; flushed for machines.
    void print(std::string_view output);

    /// One line of output for people.
    void printLine(std::string_view line);

    /// One line of output for machines, flushed. See text() for the strings in it.
    void printObject(const Json& object);

private:
    bool failed_ = false, anyHit_ = false, anyMiss_ = false;
};

/// A string as a JSON value: null if absent. A lone surrogate, which UTF-8 cannot hold,
/// travels in a disguise that printObject() turns into its \uXXXX escape, so nothing is lost.
Json text(const String& string);
Json text(std::u16string_view units);

/// 8-bit text that came from outside, as a file name; bytes that are not UTF-8 become U+FFFD.
Json text(std::string_view bytes);

/// An object of a JSON line as it is printed, without the line end.
std::string lineOf(const Json& object);

}  // namespace velmo::tool
