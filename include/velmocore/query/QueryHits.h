#pragma once

#include <string_view>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Matching.h>
#include <velmocore/platform/Range.h>
#include <velmocore/query/QueryTerms.h>

namespace velmo {

/// Where a query holds: the ranges of the words and phrases in a text that made it true, in
/// their order and in UTF-16 units; empty if it does not hold. All occurrences of a word count,
/// and all terms of an OR that hold; but a term that is near another only where the one stands
/// near the other, and what is negated or optional not at all. A lone *, which is found
/// everywhere, gives no range.
///
///     QueryTerms query(u"cat NEAR/2 mat -dog");
///     hitsOfQueryTerms(u"A cat. The cat sat by the mat", query, Case::Insensitive).size();  // 0
///     hitsOfQueryTerms(u"A cat. One more cat, its mat", query, Case::Insensitive).front();
///     // {16, 3}
///
/// The first form takes words as they are written, the second as wildcards, and the third as
/// the query was parsed, with DefaultComparison. Time is polynomial in query and text, and in
/// proportion to the text for ordinary queries. Any thread may call these, which are ours.
[[nodiscard]] VELMO_API std::vector<Range> hitsOfQueryTerms(std::u16string_view text,
                                                            const QueryTerms& terms,
                                                            Case letterCase);
[[nodiscard]] VELMO_API std::vector<Range> hitsOfQueryTerms(std::u16string_view text,
                                                            const QueryTerms& terms,
                                                            WildcardComparison comparison);
[[nodiscard]] VELMO_API std::vector<Range> hitsOfQueryTerms(std::u16string_view text,
                                                            const QueryTerms& terms);

}  // namespace velmo
