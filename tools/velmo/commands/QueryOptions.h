// Options that the commands with queries share, and how they all read one.
#pragma once

#include <string>
#include <vector>

#include <velmocore/query/QueryTerms.h>
#include <velmocore/query/Wildcards.h>

#include "frame/Command.h"

namespace velmo::tool {

/// How a query is read.
struct QueryParseOptions {
    bool plain = false;       ///< words are no patterns
    bool strict = false;      ///< a query that cannot mean what was written is a failure
    bool wholeWords = false;  ///< see wholeWordsOption()
    QueryOperator defaultOperator = QueryOperator::And;
    std::uint64_t defaultDistance = QueryOptions().defaultDistance;

    QueryOptions read() const;
};

/// --plain, --strict, --whole-words, --default-operator and --default-distance.
std::vector<Option> queryParseOptions(QueryParseOptions& options);

/// A query and how it is asked.
struct Query {
    String text;
    QueryTerms terms;
    bool plain;
    WildcardComparison comparison;

    bool holdsFor(std::u16string_view text) const;
    /// Whether a positive word occurs.
    bool occursIn(std::u16string_view text) const;
    /// Where the words stand that make it hold, in their order.
    std::vector<Range> hitsIn(std::u16string_view text) const;
};

/// Reads a query and tells what in it cannot mean what was written. Throws a UsageError for a
/// comparison that plain words do not know.
Query readQuery(Report& report, const std::string& text, const QueryParseOptions& options,
                WildcardComparison comparison);

/// --whole-words: in scripts without spaces too, words end at separators only. Else each of their
/// characters counts as a word, as users of these scripts expect.
Option wholeWordsOption(bool& wholeWords);

/// Tells what in a pattern cannot mean what was written; strict makes it a failure.
void explainPattern(Report& report, const String& pattern, bool strict, bool wholeWords);

}  // namespace velmo::tool
