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

#include "query/LikelyRuns.h"
#include "query/WordTable.h"
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

    /// Whether a group is false where the word of a node stands, and whether one has such words.
    bool isForbidden(std::size_t node) const { return nodes_[node].isForbidden; }
    bool hasForbidden(std::size_t group) const { return nodes_[group].hasForbidden; }

    /// Whether the word of a node, or one that is the same, may be asked for in stretches of a text,
    /// as it stands below a proximity operator.
    bool isNear(std::size_t node) const { return nodes_[node].isNear; }

    /// See firstOfSameWords().
    std::span<const std::size_t> firsts() const { return firsts_; }
    const WordTable& table() const { return table_; }
    /// Whether to ask the sieve first is worth it; otherwise each run is looked up.
    bool isSieved() const { return isSieved_; }
    const TripleSieve& sieve() const { return sieve_; }
    /// The group of the sieve in which the word of a node is, and by groups how many nodes are.
    unsigned sievedOf(std::size_t node) const { return nodes_[node].sieved; }
    using Sieved = std::array<std::uint32_t, TripleSieve::Groups>;
    const Sieved& sieved() const { return sieved_; }

private:
    struct Node {
        bool isSought = false;
        bool isWhole = false;
        bool isNear = false;
        bool isForbidden = false;
        bool hasForbidden = false;
        unsigned sieved = 0;
        std::size_t group = NoNode;
        std::size_t alternatives = 0;
    };

    ManyWords(const QueryTree& tree, std::vector<WordTable::Word> words, Case letterCase);
    static std::vector<WordTable::Word> wordsOf(const QueryTree& tree, WordsAsked asked,
                                                const CharacterSetRep& termCharacters);
    void makeSieve(std::span<const WordTable::Word> words, Case letterCase);
    void markGroups(const QueryTree& tree);
    void markForbidden(const QueryTree& tree);
    void markNear(const QueryTree& tree);
    void markUnits(std::u16string_view word);

    WordTable table_;
    TripleSieve sieve_;
    Sieved sieved_ = {};
    std::array<std::uint8_t, 16> asciiUnits_ = {};  // of the words, by bits
    std::u16string otherUnits_;                     // each once
    std::vector<Node> nodes_;
    std::vector<std::size_t> firsts_;
    bool isEnough_, isSieved_;
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
    /// Both must outlive this.
    ManyWordsScan(const ManyWords& words, const WordText& text)
        : words_(words), text_(text), wanted_(words.sieved()) {}

    /// All words that begin before it have been told.
    std::uint64_t scanned() const { return scanned_; }

    /// Goes on by one run that is likely a word, and calls found(node, position) for the nodes of
    /// the word that it is, in the order of the positions. False at the end of the text.
    template <class Found>
    bool goOn(Found found) {
        if (next_ == runs_.count() && !listRuns()) return false;
        const Range range = rangeOfRun(next_);
        const RunKey key = runs_.keyOf(next_);
        next_ = runs_.next(next_ + 1);
        scanned_ = next_ == runs_.count() ? listed_ : range.location + 1;
        words_.table().find(text_.units.substr(range.location, range.length), key,
                            [&](std::size_t node) { found(node, range.location); });
        return true;
    }

    /// The word of a node, which has been found, need not be found again for that node. Once no
    /// node of its group needs one, the sieve stops no more at these words: often it is the words
    /// that a text is about.
    void drop(std::size_t node) {
        const unsigned group = words_.sievedOf(node);
        if (--wanted_[group] == 0) groups_ &= ~(1u << group);
    }

private:
    bool listRuns();

    Range rangeOfRun(std::size_t run) const {
        Range range = runs_.rangeOf(run);
        // No word is as long as what is then left.
        const std::size_t longest = words_.table().longest() + 1;
        if (range.length == LikelyRuns::Longest)
            while (range.length < longest && range.end() < text_.units.size() &&
                   text_.termCharacters.contains(text_.units[range.end()]))
                ++range.length;
        return range;
    }

    const ManyWords& words_;
    const WordText& text_;
    ManyWords::Sieved wanted_;  // nodes by groups of the sieve
    unsigned groups_ = TripleSieve::AllGroups;
    std::uint64_t scanned_ = 0, listed_ = 0;  // up to there runs have been listed
    std::size_t room_ = 0, next_ = 0;
    LikelyRuns runs_;
};

}  // namespace velmo::detail
