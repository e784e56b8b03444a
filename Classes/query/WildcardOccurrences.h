// The places of one wildcard in one text, for evaluations that ask for them over and over.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "query/WildcardTerm.h"

namespace velmo::detail {

/// Answers what WildcardTerm::find() answers with acceptStar, for any stretches of a text, but
/// scans each part of the text only once and not before it is needed. Not to be shared
/// between threads.
class WildcardOccurrences {
public:
    WildcardOccurrences(const WordText& text, std::u16string_view wildcard,
                        WildcardComparison comparison);

    Range find(std::uint64_t start, std::uint64_t end);

    /// Whether it matches single runs of term units, told by nothing but their units.
    bool isOneRun() const { return findsWords_ && !term_.isPhrase(); }

private:
    using Search = Range (WildcardTerm::*)(const WordText&, std::uint64_t, std::uint64_t,
                                           TermChoice) const;

    /// The hits of one of the two searches of the term in the text as a whole, as far as they
    /// are known. None ends before one that begins before it.
    struct Places {
        std::vector<Range> hits;
        std::uint64_t scanned = 0;  // all hits that begin before it are known
    };

    Range firstKept(Places& places, Search search, std::uint64_t start, std::uint64_t end);

    WordText text_;
    WildcardTerm term_;
    bool findsWords_;
    Places words_, joined_;
};

}  // namespace velmo::detail
