// A stretch differs from the whole text only at its edges, where a word may stand that goes on
// outside. So the answers for all stretches come from one list of places, and two looks at the
// edges.
#include "query/WordOccurrences.h"

#include <algorithm>

namespace velmo::detail {

std::uint64_t WordOccurrences::find(const SoughtWord& sought, std::uint64_t start,
                                    std::uint64_t end) {
    const std::uint64_t length = sought.word.size();
    if (start > end || end - start < length) return NotFound;
    // The edges of the stretch first and last; between them it is as in the whole text.
    if (wordStandsAt(sought, start, start, end)) return start;
    const std::uint64_t last = end - length;
    const std::uint64_t inner = firstListed(sought, start + 1, end);
    if (inner <= last) return inner;
    return wordStandsAt(sought, last, start, end) ? last : NotFound;
}

std::uint64_t WordOccurrences::firstListed(const SoughtWord& sought, std::uint64_t from,
                                           std::uint64_t end) {
    const auto known = std::ranges::lower_bound(positions_, from);
    if (known != positions_.end()) return *known;
    while (scanned_ < end) {
        const std::uint64_t found = scanForWord(sought, scanned_, end);
        if (found == NotFound) {
            scanned_ = std::max(scanned_, end - sought.word.size() + 1);
            break;
        }
        scanned_ = found + 1;
        // Found at the edge of this stretch only; for the list it is none.
        if (!wordStandsAt(sought, found, 0, sought.text.size())) continue;
        positions_.push_back(found);
        if (found >= from) return found;
    }
    return NotFound;
}

}  // namespace velmo::detail
