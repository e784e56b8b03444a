// Runs of white units made one replacement unit: the one collapsing routine. The members of a run
// are a predicate; it may hold any units but those of the plain stretches told below.
#pragma once

#include <algorithm>

#include <velmocore/text/CharacterSets.h>

#include "text/SettledUnits.h"
#include "text/UnitScan.h"
#include "text/WhiteSkip.h"

namespace velmo::detail {

#if defined(__SSE2__)

/// Marks the units of the three stretches of the plane that hold no white unit and nearly
/// all of what is written: ASCII, the alphabets of Europe and the Near East, and East Asia.
[[gnu::always_inline]] inline __m128i inPlainStretch(__m128i block) {
    return _mm_or_si128(
        scan::inRange(block, 0x21, 0x7F),
        _mm_or_si128(scan::inRange(block, 0xA1, 0x167F), scan::inRange(block, 0x3001, 0xFEFE)));
}

/// How many units at the start of a block stay as they are for sure: those that are plain,
/// and each blank in front of a plain unit where blanks stay. next is the block one unit on.
[[gnu::always_inline]] inline std::ptrdiff_t settledUnits(__m128i block, __m128i next,
                                                          bool blanksStay) {
    const __m128i plain = inPlainStretch(block);
    if (!blanksStay) return scan::firstOf(~_mm_movemask_epi8(plain));
    const __m128i single = _mm_and_si128(scan::equalTo(block, u' '), inPlainStretch(next));
    return scan::firstOf(~_mm_movemask_epi8(_mm_or_si128(single, plain)));
}

#endif

/// A blank on its own stays if it is no member, or if it is what a run becomes.
template <class Member>
bool blanksStay(const Member& member, char16_t replacement) {
    return replacement == u' ' || !member(u' ');
}

/// Copies [from, to) to out with every run of members made one replacement, and gives the
/// end of what was written. out needs as much room and must not overlap the text.
template <class Member>
char16_t* copyCollapsing(const char16_t* from, const char16_t* to, char16_t* out,
                         const Member& member, char16_t replacement) {
    // What was copied unit for unit since here stands in the output as it does in the text.
    [[maybe_unused]] const char16_t* verbatim = from;
    [[maybe_unused]] const bool blanks = blanksStay(member, replacement);
    const bool isWide = canSettleWide();
    while (from < to) {
#if defined(__SSE2__)
        if (isWide && to - from >= WideUnits) {
            const std::ptrdiff_t settled = settleWide(from, to, out, 0, blanks);
            from += settled;
            out += settled;
            if (from == to) break;
        }
        while (to - from > scan::BlockUnits && !(isWide && to - from >= WideUnits)) {
            const __m128i block = scan::loadBlock(from);
            const std::ptrdiff_t settled = settledUnits(block, scan::loadBlock(from + 1), blanks);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out), block);
            // The constant step lets the next block be loaded before this one is judged.
            if (settled == scan::BlockUnits) {
                from += scan::BlockUnits;
                out += scan::BlockUnits;
                continue;
            }
            from += settled;
            out += settled;
            break;
        }
        if (to - from <= scan::BlockUnits && to - verbatim >= scan::BlockUnits) {
            // The last block may begin in what is copied already. The unit behind it is
            // taken for white.
            const std::ptrdiff_t back = scan::BlockUnits - (to - from);
            const __m128i block = scan::loadBlock(from - back);
            const std::ptrdiff_t settled =
                settledUnits(block, _mm_srli_si128(block, 2), blanks) - back;
            if (settled > 0) {
                _mm_storeu_si128(reinterpret_cast<__m128i*>(out - back), block);
                from += settled;
                out += settled;
                if (from == to) return out;
            }
        }
#endif
        if (!member(*from)) {
            *out++ = *from++;
            continue;
        }
        *out++ = replacement;
        verbatim = from = skipMembers(from + 1, to, member);
    }
    return out;
}

/// The first place that collapsing would change; to if there is none.
template <class Member>
const char16_t* firstToCollapse(const char16_t* from, const char16_t* to, const Member& member,
                                char16_t replacement) {
    [[maybe_unused]] const bool blanks = blanksStay(member, replacement);
    const bool isWide = canSettleWide();
    for (; from < to; ++from) {
#if defined(__SSE2__)
        if (isWide) from += settleWide(from, to, nullptr, 0, blanks);
        if (from == to) break;
        while (to - from > scan::BlockUnits) {
            const std::ptrdiff_t settled =
                settledUnits(scan::loadBlock(from), scan::loadBlock(from + 1), blanks);
            if (settled != scan::BlockUnits) {
                from += settled;
                break;
            }
            from += scan::BlockUnits;
        }
#endif
        if (member(*from) && (*from != replacement || (from + 1 < to && member(from[1]))))
            return from;
    }
    return to;
}

/// White units to blanks.
inline char16_t* copyCollapsingWhite(const char16_t* from, const char16_t* to, char16_t* out,
                                     const CharacterSetRep& white) {
    return copyCollapsing(from, to, out, WhiteMember{white}, u' ');
}

}  // namespace velmo::detail
