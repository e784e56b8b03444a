#include "query/ManyWords.h"

#include <algorithm>
#include <array>
#include <unordered_map>

#include "query/FoldVariants.h"
#include "query/QueryTree.h"

namespace velmo::detail {
namespace {

/// From so many words on one walk for all is cheaper than one for each.
std::size_t fewestWords() { return sieveWay() == SieveWay::OneByOne ? 8 : 3; }
/// And of more the sieve by halves lets too much pass to be worth its time.
bool isWorthSieving(std::size_t words) {
    constexpr std::size_t MostByHalves = 50;
    return sieveWay() != SieveWay::Halves || words <= MostByHalves;
}
/// To make them ready takes about as long as to seek so many units for one word.
constexpr std::size_t FewestUnits = 2048;

/// The bits of all units that are the same as one in that case.
std::vector<unsigned> bitsOfVariants(char16_t unit, Case letterCase) {
    std::vector<unsigned> bits = {TripleSieve::bitsOf(unit)};
    if (letterCase == Case::Sensitive) return bits;
    const auto add = [&](char16_t variant) { bits.push_back(TripleSieve::bitsOf(variant)); };
    const ConversionTable& upper = upperCharsTable();
    // The table of variants takes its time to be made, and is not needed for ASCII.
    if (upper[unit] > 127) std::ranges::for_each(unitsFoldedTo(upper[unit], upper), add);
    if (upper[unit] <= 127) add(upper[unit]);
    if (upper[unit] == u'I') add(DotlessI);
    if (upper[unit] == u'S') add(LongS);
    std::ranges::sort(bits);
    bits.erase(std::unique(bits.begin(), bits.end()), bits.end());
    return bits;
}

void add(TripleSieve& sieve, unsigned group, std::u16string_view word, Case letterCase) {
    for (unsigned place = 0; place < TripleSieve::Places; ++place) {
        if (place + 1 >= word.size()) {
            sieve.addAll(group, place);
            continue;
        }
        for (unsigned first : bitsOfVariants(word[place], letterCase))
            for (unsigned second : bitsOfVariants(word[place + 1], letterCase))
                sieve.add(group, place, first, second);
    }
}

/// How many units of a word the sieve looks at, and which.
using Beginning = std::pair<std::size_t, std::array<char16_t, TripleSieve::Ahead + 1>>;

Beginning beginningOf(std::u16string_view word, Case letterCase) {
    const ConversionTable& upper = upperCharsTable();
    Beginning beginning = {std::min<std::size_t>(word.size(), TripleSieve::Ahead + 1), {}};
    for (std::size_t i = 0; i < beginning.first; ++i)
        beginning.second[i] = letterCase == Case::Insensitive ? upper[word[i]] : word[i];
    return beginning;
}

/// Each once, in their order.
std::vector<Beginning> beginningsOf(std::span<const WordTable::Word> words, Case letterCase) {
    std::vector<Beginning> beginnings;
    for (const WordTable::Word& word : words)
        beginnings.push_back(beginningOf(word.units, letterCase));
    std::ranges::sort(beginnings);
    beginnings.erase(std::unique(beginnings.begin(), beginnings.end()), beginnings.end());
    return beginnings;
}

/// Whether the word of a node can take part.
bool isPlain(const QueryTree& tree, const QueryNode& node, const CharacterSetRep& termCharacters) {
    const std::u16string_view word = tree.wordOf(node);
    return !word.empty() && !node.substring && word.front() != u'*' &&
           WordText{word, termCharacters}.isAllTerms();
}

bool isAlternatives(const QueryNode& node) {
    return !node.isWord && node.common == QueryOperator::Or;
}

}  // namespace

std::vector<std::size_t> firstOfSameWords(const QueryTree& tree, bool keeps) {
    std::vector<std::size_t> firsts;
    if (!keeps) return firsts;
    std::unordered_map<std::u16string_view, std::size_t> seen[2];  // without and with the mark
    firsts.reserve(tree.nodes.size());
    for (const QueryNode& node : tree.nodes)
        firsts.push_back(
            seen[node.substring].try_emplace(tree.wordOf(node), firsts.size()).first->second);
    return firsts;
}

ManyWords::ManyWords(const QueryTree& tree, Case letterCase, WordsAsked asked,
                     const CharacterSetRep& termCharacters)
    : ManyWords(tree, wordsOf(tree, asked, termCharacters), letterCase) {}

ManyWords::ManyWords(const QueryTree& tree, std::vector<WordTable::Word> words, Case letterCase)
    : table_(words, letterCase),
      isEnough_(words.size() >= fewestWords()),
      isSieved_(isWorthSieving(words.size())) {
    if (!isEnough_) return;
    nodes_.resize(tree.nodes.size());
    makeSieve(words, letterCase);
    for (const WordTable::Word& word : words) {
        nodes_[word.owner].isSought = true;
        markUnits(word.units);
    }
    std::ranges::sort(otherUnits_);
    otherUnits_.erase(std::unique(otherUnits_.begin(), otherUnits_.end()), otherUnits_.end());
    markGroups(tree);
    markForbidden(tree);
    firsts_ = firstOfSameWords(tree, true);
    markNear(tree);
}

std::vector<WordTable::Word> ManyWords::wordsOf(const QueryTree& tree, WordsAsked asked,
                                                const CharacterSetRep& termCharacters) {
    std::vector<WordTable::Word> words;
    const auto take = [&](std::size_t node) {
        if (isPlain(tree, tree.nodes[node], termCharacters))
            words.push_back({tree.wordOf(tree.nodes[node]), node});
    };
    for (std::size_t i = 0; i < tree.nodes.size(); ++i) {
        if (asked == WordsAsked::All)
            take(i);
        else if (isAlternatives(tree.nodes[i]))
            std::ranges::for_each(tree.childrenOf(tree.nodes[i]), take);
    }
    return words;
}

/// Words that begin alike share a group, as then the group has few pairs at each place; and short
/// ones do, which let everything pass at the places behind them.
void ManyWords::makeSieve(std::span<const WordTable::Word> words, Case letterCase) {
    const std::vector<Beginning> beginnings = beginningsOf(words, letterCase);
    const auto groupOf = [&](std::size_t i) {
        return static_cast<unsigned>(i * TripleSieve::Groups / beginnings.size());
    };
    for (std::size_t i = 0; i < beginnings.size(); ++i)
        add(sieve_, groupOf(i), {beginnings[i].second.data(), beginnings[i].first}, letterCase);
    for (const WordTable::Word& word : words) {
        const auto own = std::ranges::lower_bound(beginnings, beginningOf(word.units, letterCase));
        const unsigned group = groupOf(static_cast<std::size_t>(own - beginnings.begin()));
        nodes_[word.owner].sieved = group;
        ++sieved_[group];
    }
}

void ManyWords::markGroups(const QueryTree& tree) {
    for (std::size_t i = 0; i < tree.nodes.size(); ++i) {
        if (!isAlternatives(tree.nodes[i])) continue;
        const auto children = tree.childrenOf(tree.nodes[i]);
        for (std::size_t child : children) {
            if (!nodes_[child].isSought || tree.nodes[child].negated) continue;
            nodes_[child].group = i;
            ++nodes_[i].alternatives;
        }
        nodes_[i].isWhole = nodes_[i].alternatives == children.size();
    }
}

/// Up to the first word that does not take part: it may decide at less cost.
void ManyWords::markForbidden(const QueryTree& tree) {
    for (std::size_t i = 0; i < tree.nodes.size(); ++i) {
        if (tree.nodes[i].common != QueryOperator::And) continue;
        for (std::size_t child : tree.childrenOf(tree.nodes[i])) {
            if (tree.nodes[child].isWord && !nodes_[child].isSought) break;
            if (tree.nodes[child].negated && nodes_[child].isSought)
                nodes_[child].isForbidden = nodes_[i].hasForbidden = true;
        }
    }
}

void ManyWords::markUnits(std::u16string_view word) {
    for (char16_t unit : word) {
        if (unit > 127)
            otherUnits_ += unit;
        else
            asciiUnits_[unit / 8] |= static_cast<std::uint8_t>(1u << unit % 8);
    }
}

/// From the top on, as children stand before their parents.
void ManyWords::markNear(const QueryTree& tree) {
    for (std::size_t i = tree.nodes.size(); i-- > 0;) {
        const auto children = tree.childrenOf(tree.nodes[i]);
        for (std::size_t place = 0; place < children.size(); ++place) {
            const QueryNode& child = tree.nodes[children[place]];
            nodes_[children[place]].isNear |= nodes_[i].isNear;
            if (place == 0 || !isProximityOperator(child.op) || child.distance == 0) continue;
            nodes_[children[place]].isNear = nodes_[children[place - 1]].isNear = true;
        }
    }
    for (std::size_t i = 0; i < nodes_.size(); ++i) nodes_[firsts_[i]].isNear |= nodes_[i].isNear;
}

/// The set may be another one than it was when the words were made ready.
bool ManyWords::serves(const CharacterSetRep& termCharacters) const {
    bool hasAll = isEnough_;
    for (std::size_t i = 0; i < asciiUnits_.size(); ++i)
        hasAll &= (asciiUnits_[i] & ~termCharacters.bits[i]) == 0;
    return hasAll && std::ranges::all_of(
                         otherUnits_, [&](char16_t unit) { return termCharacters.contains(unit); });
}

PreparedWords::~PreparedWords() {
    for (auto& ofCase : made_)
        for (auto& words : ofCase) delete words.load();
}

const ManyWords* PreparedWords::of(const QueryTree& tree, const WordText& text, Case letterCase,
                                   WordsAsked asked) const {
    // Where words are characters, places begin inside of runs too.
    if (text.unspaced || tree.nodes.size() <= fewestWords()) return nullptr;
    auto& made = made_[letterCase == Case::Insensitive][asked == WordsAsked::All];
    const ManyWords* words = made.load(std::memory_order_acquire);
    if (!words) {
        if (text.units.size() < FewestUnits / tree.nodes.size()) return nullptr;
        auto own = std::make_unique<const ManyWords>(tree, letterCase, asked, text.termCharacters);
        // Another thread may have been faster; then its words stay.
        if (made.compare_exchange_strong(words, own.get(), std::memory_order_acq_rel))
            words = own.release();
    }
    return words->serves(text.termCharacters) ? words : nullptr;
}

namespace {

/// The next blocks, as a sieve that lets everything pass has them.
std::size_t nextBlocks(std::u16string_view text, std::size_t base, std::span<SievedBlock> found) {
    std::size_t count = 0;
    for (; base < text.size() && count < found.size(); base += UnitsInBlock)
        found[count++] = {base, ~std::uint64_t{0}};
    return count;
}

}  // namespace

/// In one block at first, as the first words that are found may decide.
bool ManyWordsScan::listRuns() {
    std::array<SievedBlock, LikelyRuns::MostBlocks> blocks;
    do {
        scanned_ = listed_;
        if (listed_ >= text_.units.size()) return false;
        room_ = std::clamp<std::size_t>(4 * room_, 1, blocks.size());
        const auto some = std::span(blocks).first(room_);
        const std::size_t count =
            words_.isSieved() ? nextSieved(text_.units, listed_, words_.sieve(), some, groups_)
                              : nextBlocks(text_.units, listed_, some);
        listed_ = count == 0 ? text_.units.size() : blocks[count - 1].base + UnitsInBlock;
        runs_.list(text_, std::span(blocks).first(count), words_.table());
        next_ = runs_.next(0);
    } while (next_ == runs_.count());
    return true;
}

}  // namespace velmo::detail
