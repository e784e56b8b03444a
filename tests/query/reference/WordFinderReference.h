// The search for wildcards in a text written down as plainly as can be, forward only. Term
// units are ASCII letters and digits, and folding is that of ASCII case.
#pragma once

#include <velmocore/query/Wildcards.h>

#include "query/reference/ExcerptReference.h"

namespace velmo::test {

/// A wildcard of one word or several in a stretch of a text.
std::optional<RefHit> refFindWildcard(const std::u16string& text, std::size_t start, std::size_t end,
                                      const std::u16string& wildcard, WildcardComparison comparison, bool acceptStar);

/// Finds the words of queries as wildcards.
RefFind refWildcards(std::u16string_view text, WildcardComparison comparison);

/// The nearest of several wildcards, each of which only counts before those of the ones before it.
RefNextHit refNextWildcard(const std::u16string& text, const std::vector<std::u16string>& wildcards,
                           WildcardComparison comparison);

}  // namespace velmo::test
