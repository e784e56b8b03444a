// Queries against texts: the input is split at its first zero byte. The parser's tree is
// well formed, and evaluation ends.
#include <velmocore/query/QueryEvaluation.h>
#include <velmocore/query/QueryTerms.h>
#include <velmocore/query/WordSearch.h>

#include <algorithm>
#include <vector>

#include "Input.h"

using namespace velmo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto split = static_cast<std::size_t>(std::find(data, data + size, 0) - data);
    // Many terms on a long text are slow by nature; the target looks for faults.
    const String query = fuzz::unitsOf(data, std::min<std::size_t>(split, 300));
    const String text = fuzz::unitsOf(data + std::min(split + 1, size),
                                      std::min<std::size_t>(size - std::min(split + 1, size), 600));
    const QueryTerms terms(query);
    const bool matches = terms.matchesString(text, false);
    fuzz::require(!text.isEmpty() || !matches);
    terms.matchesString(text, true);
    terms.containsString(text, false);

    const Range range = rangeOfWord(text, query, false);
    fuzz::require(!range.isFound() || range.end() <= text.length());
    fuzz::require(range.isFound() == (countWord(text, query, false) > 0));
    return 0;
}
