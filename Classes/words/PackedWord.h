// Short words of ASCII as numbers: up to eight units, one byte each, in lower case. Two such words
// are the same if their numbers are, so that a look-up compares no units. Most words of most
// European languages are short enough.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

namespace velmo::detail {

inline constexpr std::size_t MostPackedUnits = 8;

/// Packs unit by unit: for short words, and the reference for the other. 0 for what is no such word.
constexpr std::uint64_t packedOneByOne(std::u16string_view word) noexcept {
    if (word.empty() || word.size() > MostPackedUnits) return 0;
    std::uint64_t key = 0;
    for (std::size_t i = word.size(); i-- > 0;) {
        const char16_t unit = word[i];
        // A NUL at the end would be none.
        if (unit == 0 || unit >= 128) return 0;
        const bool isUpper = unit >= u'A' && unit <= u'Z';
        key = key << 8 | static_cast<std::uint64_t>(isUpper ? unit | 0x20 : unit);
    }
    return key;
}

/// Four units at a time.
inline std::uint64_t packedWord(std::u16string_view word) noexcept {
    const std::size_t size = word.size();
    if (size < 4 || size > MostPackedUnits) return packedOneByOne(word);
    constexpr std::uint64_t Each = 0x0101010101010101;
    std::uint64_t head, tail;  // which may have units in common
    std::memcpy(&head, word.data(), sizeof head);
    std::memcpy(&tail, word.data() + size - 4, sizeof tail);
    if ((head | tail) & 0xFF80FF80FF80FF80) return 0;
    const auto packed = [](std::uint64_t units) {
        units = (units | units >> 8) & 0x0000FFFF0000FFFF;
        return (units | units >> 16) & 0xFFFFFFFF;
    };
    const std::uint64_t key = packed(head) | packed(tail) << 8 * (size - 4);
    // The high bit of each byte: whether it is beyond @, and not beyond Z; and whether it is not 0.
    const std::uint64_t upper = (key + Each * (0x7F - '@')) & ~(key + Each * (0x7F - 'Z'));
    const std::uint64_t units = (key + Each * 0x7F) & (Each * 0x80);
    if (units != (Each * 0x80) >> 8 * (MostPackedUnits - size)) return 0;
    return key | (upper & Each * 0x80) >> 2;
}

}  // namespace velmo::detail
