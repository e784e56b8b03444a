// The query parser: one pass from left to right, without precedence and without a separate
// tokeniser. Parentheses open a group on a stack of its own, so that the depth of a query
// costs no recursion.
//
// Every text is a query: nothing fails, and what is missing or too much is passed over. What is
// set for the next term (an operator, a negation) is kept beside the terms and used up by the
// first one that comes, so that operators in a row need no rule of their own: the last one counts.
#include <algorithm>

#include <velmocore/text/CharacterSets.h>

#include "query/QueryOperators.h"
#include "query/QueryTree.h"
#include "query/QueryUnits.h"
#include "text/LeadingInteger.h"
#include "text/Trim.h"

namespace velmo::detail {
namespace {

/// Finds the closing parenthesis of each opening one, ahead of the parser and in one pass;
/// to look for it anew at each level would cost the square of the depth. Quotes and
/// brackets hide no parenthesis here.
class Parentheses {
public:
    explicit Parentheses(std::u16string_view query) {
        std::vector<std::size_t> open;  // indexes of pairs_
        for (std::size_t i = 0; i < query.size(); ++i) {
            if (query[i] == u'(') {
                open.push_back(pairs_.size());
                pairs_.push_back({i, query.size()});
            } else if (query[i] == u')' && !open.empty()) {
                pairs_[open.back()].close = i;
                open.pop_back();
            }
        }
    }

    /// Where the group of an opening parenthesis ends: at the closing one, or at the end of
    /// the query. To be asked from left to right.
    std::size_t closeOf(std::size_t open) {
        // Parentheses in quotes and brackets are in the list but are never asked for, and are
        // passed.
        while (pairs_[next_].open < open) ++next_;
        return pairs_[next_].close;
    }

private:
    struct Pair {
        std::size_t open, close;
    };
    std::vector<Pair> pairs_;
    std::size_t next_ = 0;
};

class Parser {
public:
    Parser(std::u16string_view query, const QueryOptions& options)
        : query_(query), options_(options), parentheses_(query) {
        reset();
    }

    QueryTree parse(const QueryTermFields& fields) {
        tree_.wildcard = options_.wildcard;
        tree_.withinRuns = options_.withinRuns;
        // The query itself is the outermost group, which no parenthesis closes.
        groups_.push_back({fields, query_.size(), 0, QueryOperator::None});
        for (;;) {
            if (index_ < groups_.back().end) {
                scanUnit(query_[index_]);
            } else {
                endPart();
                if (groups_.size() == 1) break;
                closeGroup();
            }
        }
        addGroup();
        return std::move(tree_);
    }

private:
    /// A group whose end has not been reached.
    struct OpenGroup {
        QueryTermFields fields;
        std::size_t end;         // of its text
        std::size_t firstChild;  // in children_
        QueryOperator common;
    };

    void reset() {
        const QueryOperator op = options_.defaultOperator;
        next_ = {op == QueryOperator::None ? QueryOperator::And : op, options_.defaultDistance,
                 false, false};
    }

    /// Ends the part before the present unit: a term, which uses up what was set for it, an
    /// operator word, or nothing.
    void endPart() {
        if (addPart(query_.substr(partStart_, index_ - partStart_), false)) reset();
    }

    void goOnAt(std::size_t index) { partStart_ = index_ = index; }

    /// The position after the next unit of a kind, or the end of the group.
    template <class Test>
    std::size_t skipPast(std::size_t from, Test test) const {
        const std::size_t end = groups_.back().end;
        while (from < end && !test(query_[from])) ++from;
        return std::min(from + 1, end);
    }
    std::size_t skipPastBracket() const {
        return skipPast(index_ + 1, [](char16_t unit) { return unit == u']'; });
    }

    void scanUnit(char16_t unit) {
        const bool startsPart = index_ == partStart_;
        if (isDoubleQuote(unit)) {
            endPart();
            addPhrase();
        } else if (unit == u'(') {
            endPart();
            openGroup();
        } else if (unit == u'[' && options_.wildcard) {
            index_ = skipPastBracket();
        } else if (unit == u'[') {
            endPart();
            goOnAt(skipPastBracket());
        } else if (unit == u'&' || unit == u'^' || unit == u'|') {
            mark();
            next_.queryOperator = unit == u'&'   ? QueryOperator::And
                                  : unit == u'^' ? QueryOperator::Xor
                                                 : QueryOperator::Or;
        } else if (unit == u'!' || (startsPart && (unit == u'-' || unit == u'+'))) {
            mark();
            next_.queryNot = unit != u'+';
        } else if (unit == u'~') {
            mark();
            next_.querySubstring = true;
        } else if (unit == u')' || (unit == u']' && !options_.wildcard) || white_.contains(unit)) {
            mark();
        } else {
            ++index_;
        }
    }

    /// The present unit ends a part and is none itself.
    void mark() {
        endPart();
        goOnAt(index_ + 1);
    }

    void addPhrase() {
        const std::size_t behind = skipPast(index_ + 1, isDoubleQuote);
        const bool closed = behind > index_ + 1 && isDoubleQuote(query_[behind - 1]);
        addPart(query_.substr(index_ + 1, behind - closed - (index_ + 1)), true);
        reset();
        goOnAt(behind);
    }

    void openGroup() {
        // Parentheses in quotes may pair across those of a group; a group never reaches beyond the
        // one around it.
        const std::size_t end = std::min(parentheses_.closeOf(index_), groups_.back().end);
        groups_.push_back({next_, end, children_.size(), QueryOperator::None});
        reset();
        goOnAt(index_ + 1);
    }

    void closeGroup() {
        const OpenGroup group = groups_.back();
        const std::size_t count = children_.size() - group.firstChild;
        if (count == 1) {
            // Parentheses around one term cost nothing. Its distance stays as it was parsed.
            QueryNode& only = tree_.nodes[children_.back()];
            only.op = group.fields.queryOperator;
            only.negated ^= group.fields.queryNot;
            only.substring |= group.fields.querySubstring;
        } else if (count > 1) {
            addGroup();
        }
        groups_.pop_back();
        // Only now the term that was adopted or made counts as a child of the group around.
        if (count > 0) join(group.fields.queryOperator, children_.size() - 1);
        reset();
        goOnAt(std::min(group.end + 1, groups_.back().end));
    }

    /// Makes a node of the innermost group. Its children leave children_, and it enters.
    void addGroup() {
        const OpenGroup& group = groups_.back();
        QueryNode node = nodeWith(group.fields);
        node.common = group.common;
        node.first = tree_.children.size();
        node.count = children_.size() - group.firstChild;
        for (std::size_t i = group.firstChild; i < children_.size(); ++i) {
            const QueryNode& child = tree_.nodes[children_[i]];
            const bool joins = i > group.firstChild;
            node.hasProximity |= child.hasProximity ||
                                 (joins && isProximityOperator(child.op) && child.distance != 0);
            node.isPositive &=
                child.isPositive && !child.negated && !(joins && child.op == QueryOperator::Xor);
            tree_.children.push_back(children_[i]);
        }
        children_.resize(group.firstChild);
        children_.push_back(tree_.nodes.size());
        tree_.nodes.push_back(node);
    }

    /// The part as a term or an operator word; true if it was a term.
    bool addPart(std::u16string_view part, bool phrase) {
        part = trimmedView(part, Ends::Both, InSet{white_});
        if (part.empty() || (!phrase && takeOperator(part))) return false;
        QueryNode node = nodeWith(next_);
        node.isWord = true;
        node.phrase = phrase;
        node.first = tree_.text.size();
        const bool hasStars = part.front() == u'*' && part.back() == u'*';
        if (options_.wildcard && next_.querySubstring && !hasStars)
            tree_.text.append(1, u'*').append(part).append(1, u'*');
        else
            tree_.text.append(part);
        node.count = tree_.text.size() - node.first;
        join(next_.queryOperator, children_.size());
        children_.push_back(tree_.nodes.size());
        tree_.nodes.push_back(node);
        return true;
    }

    bool takeOperator(std::u16string_view part) {
        const OperatorWord* row = operatorWordOf(part);
        if (!row) return false;
        if (row->op == QueryOperator::None) {
            next_.queryNot = !next_.queryNot;
            return true;
        }
        next_.queryOperator = row->op;
        if (part.size() > row->word.size())
            next_.proximityDistance = static_cast<std::uint64_t>(
                detail::leadingInteger(part.substr(row->word.size() + 1)));
        else if (row->distance)
            next_.proximityDistance = row->distance;
        return true;
    }

    /// A child with this operator comes in at the place given.
    void join(QueryOperator op, std::size_t place) {
        OpenGroup& group = groups_.back();
        const std::size_t before = place - group.firstChild;
        if (before == 1)
            group.common = op;
        else if (before > 1 && group.common != op)
            group.common = QueryOperator::None;
    }

    static QueryNode nodeWith(const QueryTermFields& fields) {
        QueryNode node;
        node.op = fields.queryOperator;
        node.distance = fields.proximityDistance;
        node.negated = fields.queryNot;
        node.substring = fields.querySubstring;
        return node;
    }

    const std::u16string_view query_;
    const QueryOptions& options_;
    const CharacterSetRep& white_ = whiteCharacterSetRep();
    Parentheses parentheses_;
    QueryTree tree_;
    std::vector<OpenGroup> groups_;
    std::vector<std::size_t> children_;  // of all open groups, the innermost one's last
    QueryTermFields next_;               // what has been set for the next term
    std::size_t index_ = 0;
    std::size_t partStart_ = 0;
};

}  // namespace

QueryTree parseQuery(std::u16string_view query, const QueryOptions& options,
                     const QueryTermFields& fields) {
    return Parser(query, options).parse(fields);
}

}  // namespace velmo::detail
