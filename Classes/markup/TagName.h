// Tag names as numbers: a name of up to eight ASCII units is one 64-bit value, so that
// handlers tell tags apart with a switch and not with a row of comparisons.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include <velmocore/markup/TagScanner.h>

#include "markup/ByteTag.h"
#include "platform/Ascii.h"
#include "text/Keyword.h"
#include "text/UnitScan.h"

namespace velmo::detail {

using PackedName = std::uint64_t;

inline constexpr std::size_t MaxPackedUnits = 8;

/// The number of a name that is written in lower case: the first unit in the low byte.
constexpr PackedName packed(std::string_view name) {
    PackedName value = 0;
    for (std::size_t i = 0; i < name.size(); ++i)
        value |= static_cast<PackedName>(static_cast<unsigned char>(name[i])) << (8 * i);
    return value;
}

/// The number of a text without regard to case, as the upper-case table has it; 0 if it has
/// no number.
inline PackedName packedUnits(std::u16string_view name) {
    if (name.size() > MaxPackedUnits) return 0;
    PackedName value = 0;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char16_t unit = keyword::upper(name[i]);
        if (unit > 127) return 0;
        value |= static_cast<PackedName>(ascii::toLower(unit)) << (8 * i);
    }
    return value;
}

/// Finds names among a fixed few by their numbers, with one multiplication and one look. The
/// multiplier that sends each name to a slot of its own is found at compile time.
template <std::size_t Count>
class NameTable {
public:
    // At compile time, so that the search for a multiplier costs no caller anything.
    consteval explicit NameTable(const std::array<PackedName, Count>& names) {
        while (!isPerfectFor(names))
            multiplier_ = multiplier_ * 6364136223846793005 + 1442695040888963407;
        for (std::size_t i = 0; i < Count; ++i)
            slots_[slotOf(names[i])] = {names[i], static_cast<int>(i)};
    }

    /// The place of the name among those the table was made of; the other one if it is not there.
    int find(PackedName name, int otherwise = -1) const {
        const Slot& slot = slots_[slotOf(name)];
        // Both are there before they are chosen from: pages are full of names that are none of these.
        const int index = slot.index;
        return slot.name == name ? index : otherwise;
    }

private:
    struct Slot {
        PackedName name = ~PackedName{0};  ///< what no name is
        int index = -1;
    };

    constexpr bool isPerfectFor(const std::array<PackedName, Count>& names) const {
        std::uint64_t taken[4] = {};
        for (PackedName name : names) {
            const std::size_t slot = slotOf(name);
            if (taken[slot / 64] >> (slot % 64) & 1) return false;
            taken[slot / 64] |= std::uint64_t{1} << (slot % 64);
        }
        return true;
    }

    // The high byte of a product depends on all bytes of the name; 256 slots.
    constexpr std::size_t slotOf(PackedName name) const { return (name * multiplier_) >> 56; }

    std::uint64_t multiplier_ = 0x9E3779B97F4A7C15;
    std::array<Slot, 256> slots_{};
};

#if defined(__SSE2__)
/// The low eight bytes in lower case.
inline PackedName lowerCase(__m128i bytes) {
    const __m128i capital = _mm_and_si128(_mm_cmpgt_epi8(bytes, _mm_set1_epi8('A' - 1)),
                                          _mm_cmplt_epi8(bytes, _mm_set1_epi8('Z' + 1)));
    const __m128i lower = _mm_or_si128(bytes, _mm_and_si128(capital, _mm_set1_epi8(0x20)));
    return static_cast<PackedName>(_mm_cvtsi128_si64(lower));
}
#endif

// Names at the end of a page, or with letters outside ASCII. Out of line, as hardly any is.

[[gnu::noinline]] inline PackedName packedByUnit(const Tag& tag) { return packedUnits(tag.name()); }

[[gnu::noinline]] inline PackedName packedByUnit(const ByteTag& tag) {
    // A name of eight units has three times as many bytes at most.
    char16_t units[3 * MaxPackedUnits + Utf8Slack];
    if (tag.nameLength > 3 * MaxPackedUnits) return 0;
    return packedUnits({units, decodeUtf8(tag.name(), units)});
}

/// The number of a tag's name; 0 if it has none.
[[gnu::always_inline]] inline PackedName packedName(const Tag& tag) {
#if defined(__SSE2__)
    if (tag.nameLength - 1 < MaxPackedUnits &&
        tag.characters.size() - tag.nameLocation >= MaxPackedUnits) {
        const __m128i units = scan::loadBlock(tag.characters.data() + tag.nameLocation);
        const int nonAscii = _mm_movemask_epi8(scan::aboveAscii(units));
        if ((nonAscii & ((1 << (2 * tag.nameLength)) - 1)) == 0) {
            const auto value = lowerCase(_mm_packus_epi16(units, units));
            // Eight units were loaded whatever the length; those behind the name are cut off.
            return value & (~PackedName{0} >> (64 - 8 * tag.nameLength));
        }
    }
#endif
    return packedByUnit(tag);
}

[[gnu::always_inline]] inline PackedName packedName(const ByteTag& tag) {
#if defined(__SSE2__)
    if (tag.isNamePlain && tag.nameLength - 1 < MaxPackedUnits &&
        tag.characters.size() - tag.nameLocation >= MaxPackedUnits) {
        const auto* name =
            reinterpret_cast<const __m128i*>(tag.characters.data() + tag.nameLocation);
        return lowerCase(_mm_loadl_epi64(name)) & (~PackedName{0} >> (64 - 8 * tag.nameLength));
    }
#endif
    return packedByUnit(tag);
}

}  // namespace velmo::detail
