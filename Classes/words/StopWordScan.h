// The words of a text, sought among the stop words, many at a time. What each word is depends on
// the text alone, so that a processor guesses the jumps that ask it wrongly more often than not. So
// a stretch of words is looked at in steps that have no such jumps: where the words stand; what
// their numbers are (PackedWord.h) and whether the filter of the index lets them pass; and only for
// those that it does, which are mostly stop words indeed, a look into the table.
//
// Words that have no number, which are few in most texts, are left to the caller.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <string_view>

#include <velmocore/words/Separators.h>

#include "words/PackedWord.h"
#include "words/RunScan.h"
#include "words/StopWordIndex.h"
#include "words/WordCount.h"

namespace velmo::detail {

class StopWordScan {
public:
    /// Words of less units than leastSought are not sought, and of less than leastCounted passed
    /// over.
    StopWordScan(std::u16string_view text, const StopWordIndex& index, std::size_t leastCounted,
                 std::size_t leastSought)
        : text_(text), index_(index), leastCounted_(leastCounted), leastSought_(leastSought) {}

    /// Calls found(languages) for each stop word that has a number, and now and then for none; and
    /// other(word) for each word that has no number.
    template <class Found, class Other>
    void run(Found found, Other other) {
        forEachBlock(text_, defaultWordSeparators(),
                     [&](std::size_t base, std::uint64_t separators, std::size_t count) {
                         addEdges(base, ~separators, count);
                         if (edges_ > MostEdges - 64) lookAtWords(found, other);
                         return true;
                     });
        if (edges_ % 2) places_[edges_++] = text_.size();  // the text ends within a word
        lookAtWords(found, other);
    }

    /// The words that have a number.
    const WordCount& packed() const { return packed_; }

private:
    static constexpr std::size_t MostEdges = 512;

    struct Candidate {
        PackedWord word;
        std::uint64_t hash;
    };

    /// Appends the places in a block where words begin and end, in turns.
    void addEdges(std::size_t base, std::uint64_t members, std::size_t count) {
        std::uint64_t edges = members ^ (members << 1 | (edges_ % 2));
        if (count < 64) edges &= (std::uint64_t{1} << count) - 1;
        for (; edges; edges &= edges - 1)
            places_[edges_++] = base + static_cast<std::size_t>(std::countr_zero(edges));
    }

    template <class Found, class Other>
    void lookAtWords(Found& found, Other& other) {
        const std::size_t words = edges_ / 2;
        Candidate* candidate = candidates_.data();
        std::size_t* another = others_.data();
        WordCount counted;
        // Nothing that is written below can change these, as a compiler cannot know.
        const StopWordIndex::Filter filter = index_.filter();
        const std::u16string_view text = text_;
        const std::size_t leastCounted = leastCounted_, leastSought = leastSought_;
        for (std::size_t i = 0; i < words; ++i) {
            const std::size_t start = places_[2 * i], size = places_[2 * i + 1] - start;
            const auto [word, hasNumber] = packedAt(text, start, size);
            const bool isCounted = size >= leastCounted;
            counted.addIf(isCounted & hasNumber, size);
            *another = i;
            another += isCounted & !hasNumber;
            const std::uint64_t hash = StopWordIndex::hashOf(word);
            *candidate = {word, hash};
            candidate += hasNumber & (size >= leastSought) & filter.mayHave(hash);
        }
        packed_.add(counted);
        for (const Candidate* each = candidates_.data(); each < candidate; ++each)
            found(index_.findPacked(each->word, each->hash));
        for (const std::size_t* each = others_.data(); each < another; ++each)
            other(text_.substr(places_[2 * *each], places_[2 * *each + 1] - places_[2 * *each]));
        // A word that goes on stays.
        if (edges_ % 2) places_[0] = places_[edges_ - 1];
        edges_ %= 2;
    }

    static PackedReading packedAt(std::u16string_view text, std::size_t start, std::size_t size) {
        return text.size() - start >= MostPackedUnits ? packedWord(text.data() + start, size)
                                                      : packedWord(text.substr(start, size));
    }

    const std::u16string_view text_;
    const StopWordIndex& index_;
    const std::size_t leastCounted_, leastSought_;
    WordCount packed_;
    std::size_t edges_ = 0;
    std::array<std::size_t, MostEdges> places_;
    // One more than there are words, as each is written before it is settled whether it counts.
    std::array<Candidate, MostEdges / 2 + 1> candidates_;
    std::array<std::size_t, MostEdges / 2 + 1> others_;
};

}  // namespace velmo::detail
