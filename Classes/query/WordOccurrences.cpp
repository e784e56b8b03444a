// A stretch differs from the whole text only at its edges, where a word may stand that goes on
// outside. So the answers for all stretches come from one list of places, and two looks at the
// edges.
#include "query/WordOccurrences.h"

namespace velmo::detail {

void WordOccurrences::scanUpTo(const SoughtWord& sought, std::uint64_t from, std::uint64_t end) {
    while (scanned_ < end && !reaches(from)) {
        const std::uint64_t found = scanForWord(sought, scanned_, end);
        if (found == NotFound) {
            scanned_ = std::max(scanned_, end - sought.word.size() + 1);
            break;
        }
        scanned_ = found + 1;
        // Found at the edge of this stretch only, it is none for the list.
        if (wordStandsAt(sought, found, 0, sought.text.size())) add(found);
    }
}

}  // namespace velmo::detail
