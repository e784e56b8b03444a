#pragma once

#include <string_view>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>
#include <velmocore/query/QueryTerms.h>

namespace velmo {

/// What is wrong with a part of a query or pattern.
enum class QueryProblemKind {
    NothingToLookFor,   ///< no term at all
    HopelessPattern,    ///< a pattern that no word of any text can match
    OpenQuote,          ///< a phrase that runs to the end of the query
    OpenParenthesis,    ///< a group that does
    ClosedParenthesis,  ///< a ) that closes nothing
    OpenBracket,        ///< a comment, or a set of a pattern, without ]
    BadDistance,        ///< a distance that is no number, and so makes a plain AND
    NegativeDistance,   ///< one that is below 0, and so stands for any distance
};

/// A part of a query that cannot mean what was written.
struct QueryProblem {
    QueryProblemKind kind;  ///< what is wrong
    Range range;            ///< of the part, in UTF-16 units of the query
    String text;            ///< for people
};

/// What in a query cannot mean what was written, in the order of its places; nothing for most
/// queries. A query with problems can be evaluated all the same; an empty one has nothing to look
/// for. Ours. Time is in proportion to the query. Any thread may call these.
///
///     problemsOfQuery(u"tea NEAR/x \"two cups").size();             // 2
///     problemsOfQuery(u".net", {.wildcard = true}).front().text;
///     // ".net": no word begins with a "."
[[nodiscard]] VELMO_API std::vector<QueryProblem> problemsOfQuery(std::u16string_view query,
                                                                  const QueryOptions& options = {});

/// The same for a wildcard of its own, as searches and excerpts take it.
[[nodiscard]] VELMO_API std::vector<QueryProblem> problemsOfWildcard(std::u16string_view wildcard,
                                                                     const QueryOptions& options = {
                                                                         .wildcard = true});

}  // namespace velmo
