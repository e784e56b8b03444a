// What a query asks of the signatures of pages, and of the bytes of their texts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/query/QueryTerms.h>
#include <velmocore/query/Wildcards.h>

#include "gather/PageSignature.h"
#include "gather/TextNeedle.h"

namespace velmo::detail {

/// Any number of threads may share it. The set of term characters must not change meanwhile.
class VELMO_API QuerySignature {
public:
    /// The query as it was parsed, with wildcards or without.
    QuerySignature(const QueryTerms& query, WildcardComparison comparison);

    /// The number of a word of the query; words that are written and marked alike have the same.
    std::size_t numberOf(const QueryTerms& word) const;
    std::size_t numberOfWords() const { return words_.size(); }
    /// Whether signatures can tell anything of the word.
    bool isTold(std::size_t word) const { return words_[word].isTold; }

    /// For each word whether it may stand in the text of a signature.
    void findWords(const PageSignature& signature, std::vector<char>& mayStand) const;
    /// How much of a page the word stands in, as far as a signature can tell: the sum over many
    /// pages is about the number of those that have it. It may be less than 0.
    double shareOf(std::size_t word, const PageSignature& signature, bool mayStand) const;
    /// Whether the query may hold for a text with these words.
    bool mayHold(std::span<const char> mayStand, std::vector<char>& stack) const;
    /// The same for a text in UTF-8 that has no other words than these.
    bool mayHoldFor(std::string_view utf8, std::vector<char>& mayStand,
                    std::vector<char>& stack) const;

private:
    /// What must be true of a text.
    struct Needs {
        std::vector<SignatureFact> facts;
        std::vector<TextNeedle> needles;
    };
    /// A word stands in a text only if all that one of the alternatives needs is true.
    struct Word {
        std::vector<Needs> alternatives;
        bool isTold = false;         // whether each has facts
        bool isAsked = false;        // whether the query depends on it
        std::size_t needleSize = 0;  // of the shortest; 0 if one has none
    };
    /// A program for a machine with a stack of truth values.
    struct Step {
        enum Kind : std::uint8_t { PushWord, PushTrue, PushFalse, And, Or } kind;
        std::size_t word = 0;
    };
    using WordKey = std::pair<std::u16string_view, bool>;

    std::size_t addWord(const QueryTerms& word);
    void addPlainWord(Word& word, const QueryTerms& term) const;
    void addWildcardWord(Word& word, std::u16string_view wildcard) const;
    void addPattern(Needs& needs, std::u16string_view pattern) const;
    void addStretch(Needs& needs, std::u16string_view units, StretchEdges edges) const;
    void compile();
    void findSought();

    QueryTerms query_;  // keeps the words of the keys
    WildcardComparison comparison_;
    bool edgesCount_;
    const TellableUnits& tellable_;
    std::map<WordKey, std::size_t> numbers_;
    std::vector<Word> words_;
    std::vector<Step> steps_;
    std::vector<std::size_t> sought_;  // words with needles, the longest first
};

}  // namespace velmo::detail
