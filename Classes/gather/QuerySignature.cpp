// From a query to what must be true of a text for which it holds. All that is negated, and all of
// which nothing is known, may always hold; so what comes out is true more often than the query, and
// never less.
//
// The edges of a term tell the most, since with them it is a whole word of the text. They are edges
// of a word only if words are what signatures take for words, and if no part of the query can make
// the evaluation look at a stretch of the text that begins or ends inside a word.
#include "gather/QuerySignature.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <ranges>
#include <string>

#include <velmocore/query/QueryEvaluation.h>
#include <velmocore/text/CharacterSets.h>

#include "platform/Surrogates.h"

namespace velmo::detail {
namespace {

/// Calls node(QueryTerms) for a query and all that is below it.
template <class Node>
void forEachNode(const QueryTerms& query, Node node) {
    std::vector<QueryTerms> pending = {query};
    while (!pending.empty()) {
        const QueryTerms next = std::move(pending.back());
        pending.pop_back();
        node(next);
        for (std::size_t i = next.numberOfChildren(); i > 0; --i)
            pending.push_back(next.child(i - 1));
    }
}

/// Whether a word without wildcards may be found inside of one, or before one's end.
bool cutsWords(const QueryTerms& node) {
    return node.isWord() &&
           (node.querySubstring() || node.word().empty() || node.word().front() == u'*');
}

/// Whether proximity may ask for a term in a stretch that cuts a word.
bool mayCutWords(const QueryTerms& query) {
    if (query.hasWildcards()) return false;
    bool hasProximity = false, cuts = false;
    forEachNode(query, [&](const QueryTerms& node) {
        hasProximity |= isProximityOperator(node.queryOperator());
        cuts |= cutsWords(node);
    });
    return hasProximity && cuts;
}

bool hasUsualTermCharacters() {
    return std::ranges::equal(queryTermCharacters().bits, alphaNumCharacterSetRep().bits);
}

/// The words that a wildcard is sought by, one after the other; see FindWildcardStringInCharacters.
SeparatedWords partsOf(std::u16string_view wildcard) {
    if (wildcard.size() < 3 || numberOfWordsUsingWildcardSeparation(wildcard) < 2)
        return {.words = {String(wildcard)}};
    return separatedWildcardWords(String(wildcard));
}

/// The literal stretches of a pattern. What a set takes is not looked at; and as one that holds
/// "-]" goes on behind its end, nothing behind such a set is.
template <class Handler>
void forEachLiteral(std::u16string_view pattern, Handler handler) {
    const bool isOpen = pattern.find(u"-]") != pattern.npos;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= pattern.size(); ++i) {
        const bool isEnd = i == pattern.size();
        if (!isEnd && pattern[i] != u'*' && pattern[i] != u'?' && pattern[i] != u'[') continue;
        if (i > start) handler(start, i);
        if (!isEnd && pattern[i] == u'[') {
            const std::size_t close = pattern.find(u']', i);
            if (isOpen || close == pattern.npos) return;
            i = close;
        }
        start = i + 1;
    }
}

}  // namespace

QuerySignature::QuerySignature(const QueryTerms& query, WildcardComparison comparison)
    : query_(query),
      comparison_(comparison),
      edgesCount_(hasUsualTermCharacters() && !mayCutWords(query)),
      tellable_(tellableUnits(comparison)) {
    if (!query_.isAbsent()) compile();
}

std::size_t QuerySignature::numberOf(const QueryTerms& word) const {
    return numbers_.at({word.word(), word.querySubstring()});
}

std::size_t QuerySignature::addWord(const QueryTerms& term) {
    const auto [known, isNew] =
        numbers_.try_emplace({term.word(), term.querySubstring()}, words_.size());
    if (!isNew) return known->second;
    Word& word = words_.emplace_back();
    if (query_.hasWildcards())
        addWildcardWord(word, term.word());
    else
        addPlainWord(word, term);
    // An alternative of which nothing is known leaves nothing to be known of the word.
    word.isTold = std::ranges::none_of(word.alternatives,
                                       [](const Needs& needs) { return needs.facts.empty(); });
    return known->second;
}

void QuerySignature::addPlainWord(Word& word, const QueryTerms& term) const {
    Needs& needs = word.alternatives.emplace_back();
    const bool hasEdges = edgesCount_ && !term.querySubstring();
    if (!term.word().starts_with(u'*')) addStretch(needs, term.word(), {hasEdges, hasEdges});
}

void QuerySignature::addWildcardWord(Word& word, std::u16string_view wildcard) const {
    // Whether a pair parts words depends on how the query was parsed.
    if (std::ranges::any_of(wildcard, isSurrogate)) {
        word.alternatives.emplace_back();
        return;
    }
    const SeparatedWords parts = partsOf(wildcard);
    Needs needs;
    std::u16string joined;
    for (const String& part : parts.words) {
        addPattern(needs, part);
        joined += part.view();
    }
    word.alternatives.push_back(std::move(needs));
    if (parts.hyphenated) addPattern(word.alternatives.emplace_back(), joined);
}

void QuerySignature::addPattern(Needs& needs, std::u16string_view pattern) const {
    std::u16string folded(pattern);
    if (const ConversionTable* table = unicharTableForWildcardComparison(comparison_))
        prepareWildcardUsingUnicharTable(folded, *table);
    const WildcardType type = optimizeWildcard(folded).type;
    const bool resembles = type == WildcardType::Plain && isFuzzy(comparison_);
    if (type == WildcardType::Unusable || resembles) return;
    forEachLiteral(folded, [&](std::size_t start, std::size_t end) {
        addStretch(needs, std::u16string_view(folded).substr(start, end - start),
                   {edgesCount_ && start == 0, edgesCount_ && end == folded.size()});
    });
}

void QuerySignature::addStretch(Needs& needs, std::u16string_view units, StretchEdges edges) const {
    addFactsOfStretch(needs.facts, units, edges);
    if (auto needle = TextNeedle::ofStretch(units, tellable_))
        needs.needles.push_back(std::move(*needle));
}

void QuerySignature::compile() {
    struct Group {
        QueryTerms node;
        std::size_t next = 0;  // child
    };
    std::vector<Group> groups;
    const auto enter = [&](const QueryTerms& node) {
        if (node.queryNot())
            steps_.push_back({Step::PushTrue});
        else if (node.isWord())
            words_[steps_.emplace_back(Step{Step::PushWord, addWord(node)}).word].isAsked = true;
        else if (node.numberOfChildren() == 0)
            steps_.push_back({Step::PushFalse});
        else
            groups.push_back({node});
    };
    // What joins a child to those before it, once its own value is there.
    const auto join = [&](const QueryTerms& child) {
        const bool isEither = child.queryOperator() == QueryOperator::Or ||
                              child.queryOperator() == QueryOperator::Xor;
        steps_.push_back({isEither ? Step::Or : Step::And});
    };
    enter(query_);
    while (!groups.empty()) {
        Group& group = groups.back();
        const std::size_t next = group.next++;
        if (next > 1 && group.node.child(next - 1).queryOperator() != QueryOperator::Opt)
            join(group.node.child(next - 1));
        if (next == group.node.numberOfChildren())
            groups.pop_back();
        else if (const QueryTerms child = group.node.child(next);
                 next == 0 || child.queryOperator() != QueryOperator::Opt)
            enter(child);
    }
    // The words that add to a score only are to be known too.
    for (const QueryTerms& word : query_.plusTerms()) addWord(word);
    findSought();
}

/// The longer what is sought, the fewer texts have it.
void QuerySignature::findSought() {
    const auto sizeOf = [](const Needs& needs) {
        std::size_t longest = 0;
        for (const TextNeedle& needle : needs.needles) longest = std::max(longest, needle.length());
        return longest;
    };
    for (std::size_t i = 0; i < words_.size(); ++i) {
        Word& word = words_[i];
        word.needleSize = sizeOf(*std::ranges::min_element(word.alternatives, {}, sizeOf));
        if (word.isAsked && word.needleSize > 0) sought_.push_back(i);
    }
    std::ranges::stable_sort(sought_, std::greater(),
                             [&](std::size_t i) { return words_[i].needleSize; });
}

void QuerySignature::findWords(const PageSignature& signature, std::vector<char>& mayStand) const {
    mayStand.resize(words_.size());
    for (std::size_t i = 0; i < words_.size(); ++i) {
        const auto mayBe = [&](const Needs& needs) { return signature.mayHave(needs.facts); };
        mayStand[i] = !words_[i].isTold || std::ranges::any_of(words_[i].alternatives, mayBe);
    }
}

double QuerySignature::shareOf(std::size_t word, const PageSignature& signature,
                               bool mayStand) const {
    double error = 0;
    for (const Needs& needs : words_[word].alternatives)
        error = std::max(error, signature.errorRate(needs.facts));
    // Of a signature that is nearly full nothing can be made out.
    error = std::min(error, 0.9);
    return ((mayStand ? 1 : 0) - error) / (1 - error);
}

bool QuerySignature::mayHold(std::span<const char> mayStand, std::vector<char>& stack) const {
    stack.clear();
    for (const Step& step : steps_) {
        if (step.kind == Step::And || step.kind == Step::Or) {
            const char last = stack.back();
            stack.pop_back();
            stack.back() = step.kind == Step::And ? stack.back() && last : stack.back() || last;
        } else {
            stack.push_back(step.kind == Step::PushWord ? mayStand[step.word]
                                                        : step.kind == Step::PushTrue);
        }
    }
    return !stack.empty() && stack.back();
}

bool QuerySignature::mayHoldFor(std::string_view utf8, std::vector<char>& mayStand,
                                std::vector<char>& stack) const {
    std::optional<bool> hasOthers;  // asked for once, if at all
    const auto isThere = [&](const TextNeedle& needle) {
        if (needle.mayStandIn(utf8)) return true;
        if (!needle.needsNoOthers()) return false;
        if (!hasOthers) hasOthers = hasOtherCases(utf8);
        return *hasOthers;
    };
    const auto mayBe = [&](const Needs& needs) {
        return std::ranges::all_of(needs.needles, isThere);
    };
    for (const std::size_t i : sought_) {
        if (!mayStand[i] || std::ranges::any_of(words_[i].alternatives, mayBe)) continue;
        // Often the first that is not there decides, and the rest need not be sought.
        mayStand[i] = false;
        if (!mayHold(mayStand, stack)) return false;
    }
    return true;
}

}  // namespace velmo::detail
