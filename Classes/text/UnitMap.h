// Whole texts through a mapping of single units. Most text is ASCII, and most mappings leave
// ASCII alone or change its case: eight such units are mapped in one step.
#pragma once

#include <algorithm>
#include <string_view>

#include <velmocore/platform/String.h>

#include "platform/Ascii.h"
#include "text/UnitScan.h"

namespace velmo::detail {

/// What a mapping does to ASCII.
enum class AsciiRule { Other, Same, Lower, Upper };

inline char16_t applied(AsciiRule rule, char16_t unit) noexcept {
    return rule == AsciiRule::Lower   ? ascii::toLower(unit)
           : rule == AsciiRule::Upper ? ascii::toUpper(unit)
                                      : unit;
}

/// Asks the mapping for all of ASCII, which pays for a longer text only.
template <class Map>
AsciiRule asciiRuleOf(const Map& map, std::size_t length) noexcept {
    if (length < 256) return AsciiRule::Other;
    for (const AsciiRule rule : {AsciiRule::Same, AsciiRule::Lower, AsciiRule::Upper}) {
        char16_t unit = 0;
        while (unit < 128 && map(unit) == applied(rule, unit)) ++unit;
        if (unit == 128) return rule;
    }
    return AsciiRule::Other;
}

#if defined(__SSE2__)

/// Marks the letters that a rule changes.
inline __m128i changedLetters(AsciiRule rule, __m128i block) noexcept {
    switch (rule) {
        case AsciiRule::Lower:
            return scan::inRange(block, u'A', u'Z');
        case AsciiRule::Upper:
            return scan::inRange(block, u'a', u'z');
        default:
            return _mm_setzero_si128();
    }
}

#endif

/// Maps [from, to) to out, which may be from itself.
template <class Map>
void mapUnits(const char16_t* from, const char16_t* to, char16_t* out, const Map& map) noexcept {
#if defined(__SSE2__)
    const AsciiRule rule = asciiRuleOf(map, static_cast<std::size_t>(to - from));
    if (rule != AsciiRule::Other) {
        for (; to - from >= scan::BlockUnits; from += scan::BlockUnits, out += scan::BlockUnits) {
            const __m128i block = scan::loadBlock(from);
            if (_mm_movemask_epi8(scan::aboveAscii(block))) {
                std::transform(from, from + scan::BlockUnits, out, map);
                continue;
            }
            // The two cases of a letter differ in one bit.
            const __m128i bit = _mm_and_si128(changedLetters(rule, block), _mm_set1_epi16(0x20));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_xor_si128(block, bit));
        }
    }
#endif
    std::transform(from, to, out, map);
}

/// The mapped units: always a new string.
template <class Map>
String mappedString(std::u16string_view units, const Map& map) {
    StringBuilder out;
    mapUnits(units.data(), units.data() + units.size(), out.prepare(units.size()), map);
    out.commit(units.size());
    return out.finish();
}

/// The first unit that the mapping changes; to if there is none.
template <class Map>
const char16_t* firstMapped(const char16_t* from, const char16_t* to, const Map& map) noexcept {
    const auto changes = [&](char16_t unit) { return map(unit) != unit; };
#if defined(__SSE2__)
    const AsciiRule rule = asciiRuleOf(map, static_cast<std::size_t>(to - from));
    if (rule != AsciiRule::Other) {
        for (; to - from >= scan::BlockUnits; from += scan::BlockUnits) {
            const __m128i block = scan::loadBlock(from);
            const __m128i open = _mm_or_si128(scan::aboveAscii(block), changedLetters(rule, block));
            if (!_mm_movemask_epi8(open)) continue;
            const char16_t* const end = from + scan::BlockUnits;
            if (const char16_t* hit = std::find_if(from, end, changes); hit != end) return hit;
        }
    }
#endif
    return std::find_if(from, to, changes);
}

}  // namespace velmo::detail
