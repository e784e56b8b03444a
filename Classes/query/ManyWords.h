// The plain words of a query, made ready to be sought all at once.
//
// To seek one word after the other costs a walk over the text for each. From a few words on it is
// cheaper to walk once: a sieve tells the few places at which any of them may begin, and the run of
// term units there is looked up in a table. Only words that are such a run take part; others, and
// texts of scripts without spaces, go the usual way.
#pragma once

#include <array>
#include <atomic>
#include <bit>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include <velmocore/platform/Matching.h>

#include "query/WordTable.h"
#include "text/MemberScan.h"
#include "text/TripleScan.h"
#include "words/WordText.h"

namespace velmo::detail {

struct QueryTree;

/// For each word node the first one with the same word and mark: what is known of the one
/// holds for the other. Empty if nothing is to be known.
std::vector<std::size_t> firstOfSameWords(const QueryTree& tree, bool keeps);

/// What a question to a query needs of its words.
enum class WordsAsked {
    Alternatives,  // those in groups joined by OR: of others, the first missing one decides
    All
};

/// Made once for a query, and then shared by all threads that ask it.
class ManyWords {
public:
    static constexpr std::size_t NoNode = static_cast<std::size_t>(-1);

    ManyWords(const QueryTree& tree, Case letterCase, WordsAsked asked,
              const CharacterSetRep& termCharacters);

    /// Whether there are words enough to be sought so, in texts with these term units.
    bool serves(const CharacterSetRep& termCharacters) const;

    /// Whether the word of a node takes part.
    bool has(std::size_t node) const { return nodes_[node].isSought; }
    /// The group that the word of a node makes true; or none.
    std::size_t groupOf(std::size_t node) const { return nodes_[node].group; }
    /// Whether words that take part make a group true, and whether nothing else can.
    bool hasAlternatives(std::size_t group) const { return nodes_[group].alternatives > 0; }
    bool hasAllOf(std::size_t group) const { return nodes_[group].isWhole; }

    /// See firstOfSameWords().
    std::span<const std::size_t> firsts() const { return firsts_; }
    const WordTable& table() const { return table_; }
    const TripleSieve& sieve() const { return sieve_; }

private:
    struct Node {
        bool isSought = false;
        bool isWhole = false;
        std::size_t group = NoNode;
        std::size_t alternatives = 0;
    };

    ManyWords(const QueryTree& tree, std::vector<WordTable::Word> words, Case letterCase);
    static std::vector<WordTable::Word> wordsOf(const QueryTree& tree, WordsAsked asked,
                                                const CharacterSetRep& termCharacters);
    void markGroups(const QueryTree& tree);

    WordTable table_;
    TripleSieve sieve_;
    std::u16string units_;  // each unit of the words once
    std::vector<Node> nodes_;
    std::vector<std::size_t> firsts_;
    bool isEnough_ = false;
};

/// The many words of a query, made when a text is first worth it. Any number of threads may ask.
class PreparedWords {
public:
    PreparedWords() = default;
    /// A query that is moved is not in use yet.
    PreparedWords(PreparedWords&&) noexcept {}
    ~PreparedWords();

    /// Those of the tree that this belongs to, or null.
    const ManyWords* of(const QueryTree& tree, const WordText& text, Case letterCase,
                        WordsAsked asked) const;

private:
    mutable std::atomic<const ManyWords*> made_[2][2] = {};  // by case and by what is asked
};

/// Goes once through a text for many words. Not to be shared between threads.
class ManyWordsScan {
public:
    ManyWordsScan(const ManyWords& words, const WordText& text) : words_(words), text_(text) {}

    /// All words that begin before it have been told.
    std::uint64_t scanned() const { return scanned_; }

    /// Goes on by some units and calls found(node, position) for the nodes of the words there, in
    /// the order of the positions. False at the end of the text.
    template <class Found>
    bool goOn(Found found) {
        if (next_ == count_ && !sieveOn()) return false;
        const SievedBlock block = blocks_[next_++];
        scanned_ = block.base + BlockSize;
        const std::u16string_view rest = text_.units.substr(block.base);
        const std::uint64_t members =
            membersOf(rest.data(), std::min(rest.size(), BlockSize), text_.termCharacters);
        const std::uint64_t before =
            block.base > 0 && text_.termCharacters.contains(text_.units[block.base - 1]);
        for (std::uint64_t starts = block.places & members & ~(members << 1 | before); starts;
             starts &= starts - 1) {
            const auto start = static_cast<unsigned>(std::countr_zero(starts));
            words_.table().find(rest.substr(start), endOfRun(rest, start, members) - start,
                                [&](std::size_t node) { found(node, block.base + start); });
        }
        return true;
    }

private:
    static constexpr std::size_t BlockSize = 64, MostBlocks = 16;

    /// Sieves the next blocks: few at first, as the first words that are found may decide.
    bool sieveOn() {
        if (scanned_ >= text_.units.size()) return false;
        room_ = std::min(2 * room_, MostBlocks);
        count_ = nextSieved(text_.units, scanned_, words_.sieve(), std::span(blocks_).first(room_));
        next_ = 0;
        if (count_ == 0) scanned_ = text_.units.size();
        return count_ > 0;
    }

    /// Where the run ends; of a run longer than all words, no more than that.
    std::size_t endOfRun(std::u16string_view rest, unsigned start, std::uint64_t members) const {
        if (const std::uint64_t others = ~members >> start)
            return start + static_cast<unsigned>(std::countr_zero(others));
        const std::size_t limit = std::min(rest.size(), start + words_.table().longest() + 1);
        std::size_t end = BlockSize;
        while (end < limit && text_.termCharacters.contains(rest[end])) ++end;
        return end;
    }

    const ManyWords& words_;
    const WordText text_;
    std::uint64_t scanned_ = 0;
    std::size_t room_ = 1, next_ = 0, count_ = 0;
    std::array<SievedBlock, MostBlocks> blocks_;
};

}  // namespace velmo::detail
