#include "query/WildcardOccurrences.h"

#include <algorithm>

namespace velmo::detail {

constexpr TermChoice Choice{.acceptStar = true};

WildcardOccurrences::WildcardOccurrences(const WordText& text, std::u16string_view wildcard,
                                         WildcardComparison comparison)
    : text_(text),
      term_(wildcard, comparison, 1),
      findsWords_(term_.findsWords(text.termCharacters) && !term_.hasLoneStar()) {}

Range WildcardOccurrences::find(std::uint64_t start, std::uint64_t end) {
    if (start >= end) return Range::none();
    // The end of a stretch ends words; where it cuts one, the text as a whole says nothing.
    const bool cutsWord = end < text_.units.size() && text_.isBehindTerm(end) && text_.isTerm(end);
    if (!findsWords_ || cutsWord) return term_.find(text_, start, end, Choice);
    const Range hit = firstKept(words_, &WildcardTerm::findWords, start, end);
    return hit.isFound() ? hit : firstKept(joined_, &WildcardTerm::findJoined, start, end);
}

Range WildcardOccurrences::firstKept(Places& places, Search search, std::uint64_t start,
                                     std::uint64_t end) {
    const auto fits = [&](Range hit) { return hit.end() <= end ? hit : Range::none(); };
    const auto known = std::ranges::lower_bound(places.hits, start, {}, &Range::location);
    if (known != places.hits.end()) return fits(*known);
    const std::uint64_t textEnd = text_.units.size();
    while (places.scanned < end) {
        const Range hit = (term_.*search)(text_, places.scanned, textEnd, Choice);
        places.scanned = hit.isFound() ? hit.location + 1 : textEnd;
        if (!hit.isFound()) break;
        places.hits.push_back(hit);
        if (hit.location >= start) return fits(hit);
    }
    return Range::none();
}

}  // namespace velmo::detail
