#pragma once

#include <concepts>
#include <cstdint>
#include <variant>

#include <velmocore/platform/String.h>

namespace velmo {

// Formats with arguments, as replaceStringWithFormat() and appendFormat() take them: %@ is any
// argument, %s a string, %d %i %u %x %X %o an integer, %C and %c one UTF-16 unit, %f %e %g (and in
// capitals) a number, %% a percent sign; flags, width and precision are those of printf. A
// conversion without an argument of its kind stays as it stands. Absent strings are empty. Any
// thread.
//
//     std::u16string text = u"$PAGE: $PAGE";
//     replaceStringWithFormat(text, u"$PAGE", u"%03d of %@, %s", {7, 12, u"x"});    // 2
//     text;    // "007 of 12, x: 007 of 12, x"

/// An argument of a format: an integer, a number, or a string, which it owns.
class FormatArgument {
public:
    /// Integers beyond 63 bits come as the negative ones of the same bits.
    template <std::integral Integer>
    FormatArgument(Integer value) : value_(static_cast<std::int64_t>(value)) {}
    /// Numbers; and strings, of UTF-8 for char, of which null is the absent one.
    FormatArgument(double value) : value_(value) {}
    FormatArgument(const String& value) : value_(value) {}
    FormatArgument(const char16_t* value) : value_(String(value)) {}
    FormatArgument(const char* utf8) : value_(utf8 ? String::fromUTF8(utf8) : String()) {}

    /// What it holds.
    [[nodiscard]] const std::variant<std::int64_t, double, String>& value() const { return value_; }

private:
    std::variant<std::int64_t, double, String> value_;
};
}  // namespace velmo
