// Copies text with every run of white units made one blank: the innermost loop of the
// plain-text conversion.
#pragma once

#include <algorithm>

#include <velmocore/text/CharacterSets.h>

#include "text/UnitScan.h"

namespace velmo::detail {

/// The white units of whiteCharacterSetRep(), told without a memory access for ASCII.
inline bool isWhiteUnit(char16_t unit, const CharacterSetRep& white) {
    if (unit < 128) return unit <= u' ' && ((0x100003E09ull >> unit) & 1);
    return white.contains(unit);
}

#if defined(__SSE2__)

/// Marks the units of the three stretches of the plane that hold no white unit and nearly
/// all of what is written: ASCII, the alphabets of Europe and the Near East, and East Asia.
inline __m128i inPlainStretch(__m128i block) {
    return _mm_or_si128(
        scan::inRange(block, 0x21, 0x7F),
        _mm_or_si128(scan::inRange(block, 0xA1, 0x167F), scan::inRange(block, 0x3001, 0xFEFE)));
}

#endif

/// Copies [from, to) to out, which needs as much room, and gives the end of what was
/// written; null as soon as a unit equals the one to stop at, if there is one.
template <char16_t Stop = 0>
inline char16_t* copyCollapsingWhite(const char16_t* from, const char16_t* to, char16_t* out,
                                     const CharacterSetRep& white) {
    // What was copied unit for unit since here stands in the output as it does in the text.
    [[maybe_unused]] const char16_t* verbatim = from;
    while (from < to) {
#if defined(__SSE2__)
        // Eight units are copied as they are if each is plain, or a blank in front of a
        // plain unit. The unit behind the last is taken for white.
        while (to - from >= scan::BlockUnits || to - verbatim >= scan::BlockUnits) {
            // The last block may begin in what is copied already.
            const std::ptrdiff_t back = std::max<std::ptrdiff_t>(scan::BlockUnits - (to - from), 0);
            const __m128i block = scan::loadBlock(from - back);
            __m128i inPlain = inPlainStretch(block);
            if constexpr (Stop) inPlain = _mm_andnot_si128(scan::equalTo(block, Stop), inPlain);
            const int plainUnits = _mm_movemask_epi8(inPlain);
            const int blanks = _mm_movemask_epi8(scan::equalTo(block, u' '));
            const int plain = plainUnits | (blanks & plainUnits >> 2);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out - back), block);
            const std::ptrdiff_t copied = scan::firstOf(~plain) - back;
            if (copied <= 0) break;
            from += copied;
            out += copied;
            if (from == to) return out;
        }
#endif
        if (!isWhiteUnit(*from, white)) {
            if (Stop && *from == Stop) return nullptr;
            *out++ = *from++;
            continue;
        }
        *out++ = u' ';
        do ++from;
        while (from < to && isWhiteUnit(*from, white));
        verbatim = from;
    }
    return out;
}

}  // namespace velmo::detail
