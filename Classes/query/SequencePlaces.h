// The places of a sequence of patterns in one text, for those who ask for them over and over:
// proximity, which looks into one stretch after the other, and searches for several wildcards,
// where a frequent one must not have the rare ones searched for again at each of its hits.
//
// A stretch finds what the text as a whole has there, as far as it fits. There are two
// exceptions, and both take a pattern that may hold units that are no term units, such as
// qu?z or c++: it may end with the stretch although the word goes on there in the text; and
// its places may overlap, so that what is tried as the beginning of a phrase depends on where
// the search began.
#pragma once

#include <cstdint>
#include <vector>

#include "query/WildcardSequence.h"

namespace velmo::detail {

/// Answers what WildcardSequence::find() answers, going forward, for any stretches of a text,
/// but looks at each part of the text only once and not before it is needed. Not to be shared
/// between threads.
class SequencePlaces {
public:
    /// The sequence must outlive this.
    SequencePlaces(const WildcardSequence& sequence, const WordText& text, bool acceptStar)
        : sequence_(&sequence),
          text_(text),
          acceptStar_(acceptStar),
          isChain_(sequence.isPhrase() && !sequence.findsWords(text)) {}

    Range find(std::uint64_t start, std::uint64_t end);

    /// No stretch that is asked for from now on begins before that position.
    void forgetBefore(std::uint64_t position);

private:
    /// What a search finds that comes by a place of the first word, by where its stretch ends:
    /// with the text, or at the last other end that was asked for.
    struct Verdict {
        std::uint64_t end = 0;  // 0 if it is not known
        Range hit;
    };

    std::uint64_t textEnd() const { return text_.units.size(); }
    std::size_t placeFrom(std::uint64_t position);
    Range hitFrom(std::uint64_t start);
    Range hitOfChain(std::uint64_t start, std::uint64_t end, std::vector<Verdict>& verdicts);

    const WildcardSequence* sequence_;
    WordText text_;
    bool acceptStar_;
    bool isChain_;
    // Hits, or for a chain places of the first word, in their order: all that begin before
    // scanned_ and have not been forgotten.
    std::vector<Range> places_;
    std::uint64_t scanned_ = 0;
    std::uint64_t forgotten_ = 0;              // no place before it is wanted
    std::vector<Verdict> inText_, inStretch_;  // by place
    std::vector<std::size_t> visited_;
};

}  // namespace velmo::detail
