// Passing over white space: what stands between the tags of a page is for the most part the
// indentation of its source, in runs of some dozen blanks, tabs and line ends.
#pragma once

#include <velmocore/text/CharacterSets.h>

#include "text/UnitScan.h"

namespace velmo::detail {

/// The white units of whiteCharacterSetRep(), told without a memory access for ASCII.
inline bool isWhiteUnit(char16_t unit, const CharacterSetRep& white) {
    if (unit < 128) return unit <= u' ' && ((0x100003E09ull >> unit) & 1);
    return white.contains(unit);
}

/// Whether a unit outside ASCII is in the two stretches of the plane that hold no white unit and
/// nearly all of what is written: the alphabets of Europe and the Near East, and East Asia.
constexpr bool isInPlainStretch(char16_t unit) {
    return (unit >= 0xA1 && unit <= 0x167F) || (unit >= 0x3001 && unit <= 0xFEFE);
}

/// The first unit that is not white, one unit after the other.
inline const char16_t* skipWhiteByUnit(const char16_t* from, const char16_t* to,
                                       const CharacterSetRep& white) {
    while (from < to && isWhiteUnit(*from, white)) ++from;
    return from;
}

/// The same. What no source is indented with, white or not, ends a block and is looked at by itself.
inline const char16_t* skipWhite(const char16_t* from, const char16_t* to,
                                 const CharacterSetRep& white) {
#if defined(__SSE2__)
    // Most runs are a blank or none, and a block would only be loaded for nothing.
    for (int i = 0; i < 2; ++i, ++from)
        if (from == to || !isWhiteUnit(*from, white)) return from;
    while (to - from >= scan::BlockUnits) {
        const __m128i block = scan::loadBlock(from);
        const __m128i blank =
            _mm_or_si128(scan::equalTo(block, u' '), scan::inRange(block, u'\t', u'\r'));
        const int blanks = scan::firstOf(~_mm_movemask_epi8(blank));
        from += blanks;
        if (blanks == scan::BlockUnits) continue;
        if (!isWhiteUnit(*from, white)) return from;
        ++from;
    }
#endif
    return skipWhiteByUnit(from, to, white);
}

/// The white units as the members of runs.
struct WhiteMember {
    const CharacterSetRep& white;
    bool operator()(char16_t unit) const { return isWhiteUnit(unit, white); }
};

/// The first unit that is no member.
template <class Member>
const char16_t* skipMembers(const char16_t* from, const char16_t* to, const Member& member) {
    while (from < to && member(*from)) ++from;
    return from;
}
inline const char16_t* skipMembers(const char16_t* from, const char16_t* to,
                                   const WhiteMember& member) {
    return skipWhite(from, to, member.white);
}

}  // namespace velmo::detail
