// The grammar of RFC 3986 on UTF-16 units: where the parts of a URL stand, and how a
// reference is resolved. URLs are made for every link of every page, so one pass finds
// the parts and nothing is allocated.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include <velmocore/url/URL.h>

#include "url/URLMarks.h"

namespace velmo::detail::grammar {

/// Where one part stands. Its location is Missing if the URL does not have it.
struct Span {
    static constexpr std::uint32_t Missing = UINT32_MAX;

    std::uint32_t location = Missing;
    std::uint32_t length = 0;

    bool isPresent() const noexcept { return location != Missing; }
    std::uint32_t end() const noexcept { return location + length; }
    std::u16string_view of(std::u16string_view text) const noexcept {
        return isPresent() ? text.substr(location, length) : std::u16string_view();
    }
};

/// The parts of one URL. Only the path is always there.
struct Parts {
    std::array<Span, NumberOfURLParts> spans;

    Span& operator[](URLPart part) noexcept { return spans[static_cast<std::size_t>(part)]; }
    const Span& operator[](URLPart part) const noexcept {
        return spans[static_cast<std::size_t>(part)];
    }
    /// The path with its parameters.
    Span wholePath() const noexcept {
        const Span& path = (*this)[URLPart::Path];
        const Span& parameters = (*this)[URLPart::Parameters];
        return {path.location,
                parameters.isPresent() ? parameters.end() - path.location : path.length};
    }
};

/// Finds the parts of a URI or relative reference. False if the text is neither.
bool cut(std::u16string_view text, Parts& parts) noexcept;

/// The same unit by unit, for any text: the reference for the other.
bool cutOneByOne(std::u16string_view text, Parts& parts) noexcept;

/// The same of a text whose marks are known and are no "other" ones, nor a % without its escape.
bool cutByMarks(std::u16string_view text, const URLMarks& marks, Parts& parts) noexcept;

/// Whether two hexadecimal digits follow each %.
bool hasWholeEscapes(std::u16string_view text, const URLMarks& marks) noexcept;

/// Notes where the path and its parameters stand in a text of which all from start to end is a path.
/// The scheme must have been noted.
void notePathParts(std::u16string_view text, std::uint32_t start, std::uint32_t end,
                   Parts& parts) noexcept;

/// A text with its parts.
struct Reference {
    std::u16string_view text;
    const Parts& parts;

    std::u16string_view operator[](URLPart part) const noexcept { return parts[part].of(text); }
    bool has(URLPart part) const noexcept { return parts[part].isPresent(); }
    std::u16string_view wholePath() const noexcept { return parts.wholePath().of(text); }
};

/// The reference resolved against the base, as RFC 3986 tells it in 5.2.2 (strict), with its parts
/// behind it (see url/PartedText.h). Absent if it is too long.
String resolved(const Reference& reference, const Reference& base);

/// The text with the dot segments of its path removed, likewise.
String withoutDotSegments(const Reference& reference);

/// The number of the digits of a port, which has been cut; none if there are no digits.
constexpr std::optional<std::uint32_t> portOf(std::u16string_view digits) noexcept {
    if (digits.empty()) return std::nullopt;
    std::uint32_t port = 0;
    for (const char16_t digit : digits) port = port * 10 + static_cast<std::uint32_t>(digit - u'0');
    return port;
}

/// Whether the unit may stand in a path as it is, slashes included.
bool isPathUnit(char16_t unit) noexcept;
/// Whether the unit may stand anywhere in a URL as itself, % aside.
bool isURLUnit(char16_t unit) noexcept;

inline constexpr std::array<std::int8_t, 256> HexDigitValues = [] {
    std::array<std::int8_t, 256> values{};
    values.fill(-1);
    for (std::size_t digit = 0; digit < 16; ++digit) {
        values[static_cast<unsigned char>("0123456789abcdef"[digit])] =
            static_cast<std::int8_t>(digit);
        values[static_cast<unsigned char>("0123456789ABCDEF"[digit])] =
            static_cast<std::int8_t>(digit);
    }
    return values;
}();
/// The value of a hexadecimal digit; -1 for any other unit.
constexpr int hexDigitValue(char16_t unit) noexcept {
    return unit < 256 ? HexDigitValues[unit] : -1;
}

}  // namespace velmo::detail::grammar
