// A word is sought as units first and judged by its neighbours then: the search for units is many
// times faster than cutting the text into words, and words that are asked for are mostly rare.
#include "query/WordScan.h"

#include "text/PatternScan.h"

namespace velmo::detail {
namespace {

/// Whether no term unit adjoins the word at the position, inside the stretch.
bool isBounded(const SoughtWord& sought, std::uint64_t position, std::uint64_t start,
               std::uint64_t end) {
    const WordText text{sought.text, sought.termCharacters, sought.unspaced};
    const std::uint64_t behind = position + sought.word.size();
    return !(position > start && text.isAfterTerm(position)) &&
           !(behind < end && text.isBeforeTerm(behind));
}

bool accepts(const SoughtWord& sought, std::uint64_t position, std::uint64_t start,
             std::uint64_t end) {
    return !sought.wholeWord || isBounded(sought, position, start, end);
}

bool fits(const SoughtWord& sought, std::uint64_t start, std::uint64_t end) {
    return start <= end && end - start >= sought.word.size();
}

template <class Fold>
std::uint64_t firstAccepted(const SoughtWord& sought, std::uint64_t start, std::uint64_t end,
                            const Fold& fold) {
    const std::uint64_t starts = end - sought.word.size() + 1;
    // One unit behind a refused place, as an occurrence may overlap it.
    for (std::uint64_t from = start; from < starts; ++from) {
        const std::uint64_t found =
            firstOccurrence(sought.text.data() + from, starts - from, sought.word, fold);
        if (found == NotFound) break;
        from += found;
        if (accepts(sought, from, start, end)) return from;
    }
    return NotFound;
}

}  // namespace

bool wordStandsAt(const SoughtWord& sought, std::uint64_t position, std::uint64_t start,
                  std::uint64_t end) {
    if (position < start || !fits(sought, position, end)) return false;
    const char16_t* units = sought.text.data() + position;
    const char16_t* word = sought.word.data();
    const bool same = sought.letterCase == Case::Sensitive
                          ? sameUnits(units, word, sought.word.size(), NoFold{})
                          : sameUnits(units, word, sought.word.size(), UpperFold{});
    return same && accepts(sought, position, start, end);
}

std::uint64_t scanForWord(const SoughtWord& sought, std::uint64_t start, std::uint64_t end) {
    if (!fits(sought, start, end)) return NotFound;
    return sought.letterCase == Case::Sensitive ? firstAccepted(sought, start, end, NoFold{})
                                                : firstAccepted(sought, start, end, UpperFold{});
}

std::uint64_t scanBackForWord(const SoughtWord& sought, std::uint64_t start, std::uint64_t end) {
    if (!fits(sought, start, end)) return NotFound;
    for (std::uint64_t position = end - sought.word.size() + 1; position-- > start;)
        if (wordStandsAt(sought, position, start, end)) return position;
    return NotFound;
}

}  // namespace velmo::detail
