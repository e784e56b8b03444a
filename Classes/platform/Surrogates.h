// The halves of a pair that stands for a character outside the 16-bit plane.
#pragma once

#include <cstddef>
#include <string_view>

namespace velmo::detail {

constexpr bool isHighSurrogate(char32_t unit) noexcept { return (unit & 0xFFFFFC00) == 0xD800; }
constexpr bool isLowSurrogate(char32_t unit) noexcept { return (unit & 0xFFFFFC00) == 0xDC00; }
constexpr bool isSurrogate(char32_t unit) noexcept { return (unit & 0xFFFFF800) == 0xD800; }

/// The character of a pair.
constexpr char32_t characterOfPair(char16_t high, char16_t low) noexcept {
    return 0x10000 + ((high & 0x3FFu) << 10) + (low & 0x3FFu);
}

/// Whether a pair begins at the index, which lies in the text.
constexpr bool isPairAt(std::u16string_view text, std::size_t index) noexcept {
    return isHighSurrogate(text[index]) && index + 1 < text.size() &&
           isLowSurrogate(text[index + 1]);
}

/// The first half that is no part of a pair; npos if there is none.
constexpr std::size_t findLoneSurrogate(std::u16string_view text) noexcept {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!isSurrogate(text[i])) continue;
        if (!isPairAt(text, i)) return i;
        ++i;
    }
    return text.npos;
}

constexpr bool hasLoneSurrogate(std::u16string_view text) noexcept {
    return findLoneSurrogate(text) != text.npos;
}

/// How many units of at most that many can be cut off so that no pair is cut.
constexpr std::size_t wholePairs(std::u16string_view text, std::size_t most) noexcept {
    if (most >= text.size()) return text.size();
    return most > 0 && isPairAt(text, most - 1) ? most - 1 : most;
}

}  // namespace velmo::detail
