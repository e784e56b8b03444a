#pragma once

#include <concepts>
#include <cstdint>
#include <variant>

#include <velmocore/platform/String.h>

namespace velmo {

// Formats with arguments, as replaceStringWithFormat() and appendFormat() take them: %@ and %s are
// strings, %d %i %u %x %X %o integers, %C and %c one unit, %f %e %g numbers, %% a percent sign;
// flags, width and precision are those of printf. A conversion without an argument of its kind
// stays as it stands.

/// An argument of a format.
class FormatArgument {
public:
    template <std::integral Integer>
    FormatArgument(Integer value) : value_(static_cast<std::int64_t>(value)) {}
    FormatArgument(double value) : value_(value) {}
    FormatArgument(const String& value) : value_(value) {}
    FormatArgument(const char16_t* value) : value_(String(value)) {}
    FormatArgument(const char* utf8) : value_(utf8 ? String::fromUTF8(utf8) : String()) {}

    [[nodiscard]] const std::variant<std::int64_t, double, String>& value() const { return value_; }

private:
    std::variant<std::int64_t, double, String> value_;
};
}  // namespace velmo
