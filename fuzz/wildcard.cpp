// Wildcards against texts: the input is split at its first zero byte, and the first part at
// its line ends into wildcards. Both ways to match agree, and hits stand in the text one
// behind the other.
#include <velmocore/query/FuzzyAnalogy.h>
#include <velmocore/query/WildcardSearch.h>

#include <algorithm>
#include <vector>

#include "Input.h"
#include "platform/Surrogates.h"
#include "query/FuzzyMeasure.h"
#include "query/WildcardMatch.h"
#include "text/UnitFold.h"

using namespace velmo;
using fuzz::require;

namespace {

std::vector<String> linesOf(const String& text) {
    std::vector<String> lines;
    for (std::u16string_view rest = text; !rest.empty();) {
        const std::size_t end = std::min(rest.find(u'\n'), rest.size());
        lines.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return lines;
}

bool cutsPair(std::u16string_view text, std::size_t position) {
    return position > 0 && velmo::detail::isPairAt(text, position - 1);
}

void requireAgreement(std::u16string_view text, std::u16string_view wildcard) {
    using namespace velmo::detail;
    const bool matches = stringMatchesUnixWildcard(text, wildcard);
    require(matches == WildcardAutomaton(wildcard).matches(text, NoFold{}));
    if (wildcard.find(u'[') == wildcard.npos)
        require(matches == stringMatchesWildcard(text, wildcard));

    std::u16string optimized(wildcard);
    const OptimizedWildcard shape = optimizeWildcard(optimized);
    require(optimized.size() <= wildcard.size());
    require(!shape.core.isFound() || shape.core.end() <= optimized.size());
    require(minWildcardLen(optimized) <= maxWildcardLen(optimized));

    const std::u16string_view longer = text.size() > wildcard.size() ? text : wildcard;
    const std::u16string_view shorter = text.size() > wildcard.size() ? wildcard : text;
    if (!shorter.empty())
        require(fuzzyMeasure<LookedUpPlaces>(longer, shorter) ==
                fuzzyMeasure<ChainedPlaces>(longer, shorter));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto split = static_cast<std::size_t>(std::find(data, data + size, 0) - data);
    const std::size_t behind = std::min(split + 1, size);
    // Many wildcards on a long text are slow by nature; the target looks for faults.
    std::vector<String> wildcards = linesOf(fuzz::unitsOf(data, std::min<std::size_t>(split, 200)));
    wildcards.resize(std::min<std::size_t>(wildcards.size(), 6));
    const String text = fuzz::unitsOf(data + behind, std::min<std::size_t>(size - behind, 400));
    if (!wildcards.empty()) requireAgreement(text, wildcards[0]);

    // With scripts without spaces and without.
    for (unsigned choice = 0; choice < 16; ++choice) {
        const WildcardSearchOptions options{
            .comparison = static_cast<WildcardComparison>(choice % 8), .withinRuns = choice >= 8};
        std::vector<Range> hits;
        const auto keep = [&](Range hit) {
            require(hit.length > 0 && hit.end() <= text.length());
            require(choice < 8 || !(cutsPair(text, hit.location) || cutsPair(text, hit.end())));
            hits.push_back(hit);
            return true;
        };
        forEachWildcard(text, wildcards, keep, options);
        for (std::size_t i = 1; i < hits.size(); ++i)
            require(hits[i - 1].end() <= hits[i].location);
        require(containsAnyWildcard(text, wildcards, options) == !hits.empty());
        if (!hits.empty()) require(findNextWildcard(text, wildcards, options) == hits[0]);
        hits.clear();
        forEachWildcardBackwards(text, wildcards, keep, options);
        for (std::size_t i = 1; i < hits.size(); ++i)
            require(hits[i].end() <= hits[i - 1].location);
        if (!hits.empty()) require(findPreviousWildcard(text, wildcards, options) == hits[0]);
    }
    return 0;
}
