// A query as it is asked of the texts of pages.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include <velmocore/platform/Range.h>
#include <velmocore/query/QueryHits.h>
#include <velmocore/query/QueryTerms.h>
#include <velmocore/query/Wildcards.h>

#include "gather/QuerySignature.h"

namespace velmo::detail {

/// Any number of threads may share it.
class SearchQuery {
public:
    SearchQuery(const QueryTerms& query, WildcardComparison comparison);

    bool holdsFor(std::u16string_view text) const;
    std::vector<Range> hitsIn(std::u16string_view text) const { return hitsOf(query_, text); }

    /// The positive words, none of them twice: what a score is made of.
    std::size_t numberOfWords() const { return words_.size(); }
    std::size_t countOf(std::size_t word, std::u16string_view text) const {
        return hitsOf(words_[word].term, text).size();
    }
    /// The number of the word in the signature of the query.
    std::size_t signatureNumberOf(std::size_t word) const { return words_[word].signatureNumber; }

    const QuerySignature& signature() const { return signature_; }

private:
    struct Word {
        QueryTerms term;
        std::size_t signatureNumber;
    };

    std::vector<Range> hitsOf(const QueryTerms& terms, std::u16string_view text) const;

    QueryTerms query_;
    WildcardComparison comparison_;
    QuerySignature signature_;
    std::vector<Word> words_;
};

}  // namespace velmo::detail
