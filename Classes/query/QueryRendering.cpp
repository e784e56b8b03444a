// A query as a text again, in any of several dialects.
// One walk writes them all: a dialect is a set of flags that tell what it has words for. What it
// has none for is written as the nearest that it has, so that each dialect finds too much rather
// than too little.
#include <velmocore/query/QueryTerms.h>
#include <velmocore/text/ConversionTables.h>

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

#include "query/QueryTree.h"
#include "text/UnitFold.h"

namespace velmo {
namespace {

using detail::QueryNode;
using detail::QueryTree;

/// How a proximity operator is written.
struct ProximityRow {
    QueryOperator op;
    std::uint64_t flag;
    std::string_view word;
};
// NEXT is not among them: with a distance it is written as BEFORE.
constexpr ProximityRow ProximityRows[] = {
    {QueryOperator::Near, RenderNear, "NEAR"},
    {QueryOperator::After, RenderAfter, "AFTER"},
    {QueryOperator::Before, RenderBefore, "BEFORE"},
};

/// Walks the tree with a stack of its own, for its depth. What is written for a node depends on
/// flags and on its own fields only, but for one thing: a leading plus of a group is known to be
/// needed only when a later child is joined by AND.
class Renderer {
public:
    Renderer(const QueryTree& tree, std::uint64_t flags, const OperatorDictionary& dictionary)
        : tree_(tree), flags_(flags), dictionary_(dictionary) {}

    String render(std::size_t top) {
        begin(top, true);
        while (!open_.empty()) goOn();
        return withPlusses();
    }

private:
    /// A group whose children are not all written.
    struct OpenGroup {
        const QueryNode* node;
        std::size_t child = 0;  // the next one
        bool hasBrackets = false;
        bool owesPlus = false;
        std::size_t plus = 0;  // where it is to stand
    };

    bool has(std::uint64_t flag) const { return (flags_ & flag) != 0; }

    void begin(std::size_t index, bool isTop) {
        const QueryNode& node = tree_.nodes[index];
        if (node.negated) writeNegation();
        if (has(RenderSubstring) && node.substring) out_ += u'~';
        if (node.isWord) return writeWord(node);
        OpenGroup group{.node = &node};
        group.owesPlus = !node.negated && has(RenderPlus) && node.count > 1;
        group.plus = out_.size();
        group.hasBrackets = !isTop && has(RenderBrackets) && node.count > 1;
        if (group.hasBrackets) out_ += u'(';
        open_.push_back(group);
    }

    void goOn() {
        OpenGroup& group = open_.back();
        if (group.child == group.node->count) {
            if (group.hasBrackets) out_ += u')';
            open_.pop_back();
            return;
        }
        const bool isFirst = group.child == 0;
        const std::size_t index = tree_.childrenOf(*group.node)[group.child++];
        const QueryNode& child = tree_.nodes[index];
        if (child.negated && !has(RenderNegated)) return;
        if (isFirst || writeJoiner(child, group)) begin(index, false);
    }

    void writeNegation() {
        if (has(RenderAndNot))
            writeOperator("ANDNOT", {}, u" ");
        else if (has(RenderNotWord))
            writeOperator("NOT", {}, u" ");
        else
            writeOperator("-");
    }

    void writeWord(const QueryNode& node) {
        const bool quoted = has(RenderQuotes) && node.phrase;
        if (quoted) out_ += u'"';
        const std::size_t start = out_.size();
        out_ += tree_.wordOf(node);
        const auto fold = [&](const ConversionTable& table) {
            for (std::size_t i = start; i < out_.size(); ++i) out_[i] = table[out_[i]];
        };
        if (has(RenderUpperCase))
            fold(upperCharsTable());
        else if (has(RenderLowerCase))
            fold(lowerCharsTable());
        if (quoted) out_ += u'"';
    }

    /// What stands before a child that is not the first. False if the child is left out.
    bool writeJoiner(const QueryNode& child, OpenGroup& group) {
        QueryOperator op = child.op;
        if (op == QueryOperator::Opt && !has(RenderOptional)) return false;
        if (op == QueryOperator::Next && has(RenderNext) && child.distance == 1) {
            writeOperator("NEXT", u" ", u" ");
            return true;
        }
        if (op == QueryOperator::Next) op = QueryOperator::Before;
        const auto row = std::ranges::find(ProximityRows, op, &ProximityRow::op);
        if (row != std::end(ProximityRows) && has(row->flag)) {
            writeOperator(row->word, u" ");
            writeDistance(child, op);
        } else if (op == QueryOperator::Opt) {
            writeOperator("OPT", u" ", u" ");
        } else if (op == QueryOperator::Xor && has(RenderXor)) {
            writeOperator("XOR", u" ", u" ");
        } else if (op == QueryOperator::Or || op == QueryOperator::Xor) {
            writeOr();
        } else {
            writeAnd(child, group);
        }
        return true;
    }

    void writeDistance(const QueryNode& child, QueryOperator op) {
        std::string digits = " ";
        if (!has(RenderWholeDistances))
            digits = fmt::format("/{} ", static_cast<std::int32_t>(child.distance));
        else if (op == QueryOperator::Near || child.distance != UnboundedDistance)
            digits = fmt::format("/{} ", static_cast<std::int64_t>(child.distance));
        out_.append(digits.begin(), digits.end());
    }

    void writeOr() {
        if (!has(RenderOr) || has(RenderPlus))
            out_ += u' ';
        else if (has(RenderOrSign))
            writeOperator("|");
        else
            writeOperator("OR", u" ", u" ");
    }

    void writeAnd(const QueryNode& child, OpenGroup& group) {
        if (has(RenderAnd) && has(RenderNotWord)) {
            if (child.negated)
                out_ += u' ';
            else
                writeOperator("AND", u" ", u" ");
            return;
        }
        if (std::exchange(group.owesPlus, false)) plusses_.push_back(group.plus);
        out_ += has(RenderPlus) && !child.negated ? u" +" : u" ";
    }

    void writeOperator(std::string_view word, std::u16string_view before = {},
                       std::u16string_view behind = {}) {
        const std::u16string key(word.begin(), word.end());
        const auto found = dictionary_.find(key);
        out_ += before;
        out_ += found == dictionary_.end() ? std::u16string_view(key) : found->second.view();
        out_ += behind;
    }

    /// What was written, with the plusses that belong before what stood there already. To
    /// insert each when it is known would move the rest of the text each time.
    String withPlusses() {
        std::ranges::sort(plusses_);
        StringBuilder result(out_.size() + plusses_.size());
        std::size_t done = 0;
        for (std::size_t plus : plusses_) {
            result.append(std::u16string_view(out_).substr(done, plus - done));
            result.append(u'+');
            done = plus;
        }
        result.append(std::u16string_view(out_).substr(done));
        return result.finish();
    }

    const QueryTree& tree_;
    const std::uint64_t flags_;
    const OperatorDictionary& dictionary_;
    std::u16string out_;
    std::vector<std::size_t> plusses_;
    std::vector<OpenGroup> open_;
};

// A flag that is added must not slip into one of these.
constexpr std::uint64_t StandardizedFlags = RenderAnd | RenderOr | RenderXor | RenderNegated |
                                            RenderQuotes | RenderBrackets | RenderOptional;
constexpr std::uint64_t NormalizedFlags = StandardizedFlags | RenderNear | RenderAfter |
                                          RenderBefore | RenderSubstring | RenderLowerCase |
                                          RenderOrSign;
constexpr std::uint64_t DescriptionFlags = StandardizedFlags | RenderNear | RenderAfter |
                                           RenderBefore | RenderSubstring | RenderNext |
                                           RenderNotWord;
static_assert(StandardizedFlags == 0x2003F && NormalizedFlags == 0x313FF &&
              DescriptionFlags == 0x287FF);

String rendering(const QueryTerms& terms, std::uint64_t flags,
                 const OperatorDictionary& dictionary = {}) {
    if (terms.isAbsent()) return {};
    return Renderer(QueryTree::of(terms), flags, dictionary).render(QueryTree::indexOf(terms));
}

}  // namespace

std::vector<String> QueryTerms::queryTermsForOperators(std::uint64_t flags,
                                                       const OperatorDictionary& dictionary) const {
    if (isAbsent()) return {};
    return {rendering(*this, flags, dictionary)};
}

String QueryTerms::standardizedQueryTerm() const { return rendering(*this, StandardizedFlags); }
String QueryTerms::normalizedQueryTerm() const { return rendering(*this, NormalizedFlags); }
String QueryTerms::parsableDescription() const {
    return rendering(*this, DescriptionFlags | RenderWholeDistances);
}
String QueryTerms::description() const { return rendering(*this, DescriptionFlags); }

}  // namespace velmo
