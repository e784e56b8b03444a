#pragma once

#include <string>

#include <velmocore/platform/Export.h>
#include <velmocore/query/QueryTerms.h>

namespace velmo {

/// A parsed query for people to read: one line a node, in UTF-8, children after their
/// group and two spaces further in, up to the depth of 40. A line tells the operator, with
/// its distance if it is a proximity operator, the marks - for a negated and ~ for a
/// substring term, and the word, in quotes if it is a phrase, or the number of children and
/// their common operator. An absent query gives "". Any thread.
///
///     dumpOfQueryTerms(QueryTerms(u"a -b"));    // "AND group of 2 (AND)\n  AND a\n  AND -b\n"
///     dumpOfQueryTerms(QueryTerms(u"a NEAR/3 -\"b c\""));    // (is these lines)
///
///     AND group of 2 (NEAR)
///       AND a
///       NEAR/3 -"b c"
[[nodiscard]] VELMO_API std::string dumpOfQueryTerms(const QueryTerms& terms);

}  // namespace velmo
