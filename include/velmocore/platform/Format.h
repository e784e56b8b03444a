#pragma once

#include <concepts>
#include <string>
#include <string_view>
#include <version>

#include <velmocore/platform/Error.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>

#if __has_include(<fmt/format.h>)
#include <fmt/format.h>
#endif
#ifdef __cpp_lib_format
#include <format>
#endif

// Optional: nothing else includes this header. With it, the library's values that can be
// printed are formatted by {fmt}, if it is installed, and by std::format, where there is one, as
// UTF-8 and with the fill, width and precision of a string. What is absent is as printed() has it:
// nothing for a String or a URL, "{none}" for a Range. Any thread may format.
//
//     fmt::print("{:>12} at {}\n", title, range);

namespace velmo {

/// What printed() makes a text of: String, Range, Error, URL.
template <class Value>
concept Printable = requires(const Value& value) {
    { printed(value) } -> std::same_as<std::string>;
};

}  // namespace velmo

#ifdef FMT_VERSION
/// For fmt::format() and fmt::print().
template <velmo::Printable Value>
struct fmt::formatter<Value, char> : fmt::formatter<std::string_view> {
    /// Writes what printed() gives.
    template <class Context>
    [[nodiscard]] auto format(const Value& value, Context& context) const {
        return fmt::formatter<std::string_view>::format(printed(value), context);
    }
};
#endif

#ifdef __cpp_lib_format
/// For std::format().
template <velmo::Printable Value>
struct std::formatter<Value, char> : std::formatter<std::string_view> {
    /// Writes what printed() gives.
    template <class Context>
    [[nodiscard]] auto format(const Value& value, Context& context) const {
        return std::formatter<std::string_view>::format(printed(value), context);
    }
};
#endif
