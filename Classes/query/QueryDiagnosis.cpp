// Finds what in a query cannot mean what was written. The parser takes every text for a query
// and makes the best of it, so nothing in it knows of mistakes; this reads the query by the
// same rules once more and keeps the places. Parentheses are looked at apart, as the parser
// pairs them without regard to quotes and brackets.
#include <velmocore/query/QueryDiagnosis.h>

#include <velmocore/query/QueryEvaluation.h>
#include <velmocore/query/Wildcards.h>

#include <fmt/format.h>

#include <algorithm>
#include <string>

#include "query/QueryOperators.h"
#include "query/QueryUnits.h"
#include "query/WildcardMatch.h"
#include "text/Trim.h"
#include "text/UnitClasses.h"
#include "words/WordText.h"

namespace velmo {
namespace {

using View = std::u16string_view;

/// Why no word can match a pattern for one word; empty if one may. Units that begin or hold no
/// word cannot be found: a pattern without star and set is compared from the start of a word
/// on, and others with whole words.
std::string hopelessness(View pattern, bool withinRuns) {
    std::u16string compacted(pattern);
    const OptimizedWildcard optimized = optimizeWildcard(compacted);
    if (compacted == u"*") return {};
    if (!optimized.core.isFound()) return "a set without end, a ] without set, or a [ inside one";
    if (optimized.type == WildcardType::Unusable) return "nothing but * and ?";
    const detail::WordText units{compacted, queryTermCharacters(),
                                 withinRuns ? &detail::unspacedScripts() : nullptr};
    // A direct pattern is compared from the start of a word on, so only its first unit must begin
    // one.
    const bool isDirect =
        optimized.type == WildcardType::Plain || optimized.type == WildcardType::Marks;
    for (std::size_t at = 0; at < compacted.size() && !(isDirect && at > 0); ++at) {
        const char16_t unit = compacted[at];
        if (unit == u'[')
            at = detail::afterBracket(compacted, at) - 1;
        else if (unit != u'*' && unit != u'?' && !units.isTerm(at))
            return fmt::format("no word {} a \"{}\"", isDirect ? "begins with" : "holds",
                               utf8(View(&compacted[at], 1)));
    }
    return {};
}

class Diagnosis {
public:
    Diagnosis(View query, const QueryOptions& options) : query_(query), options_(options) {}

    std::vector<QueryProblem> ofQuery() {
        if (!QueryTerms(query_, options_).isValid())
            add(QueryProblemKind::NothingToLookFor, {0, query_.size()},
                "there is nothing to look for");
        readParentheses();
        readParts();
        std::ranges::stable_sort(problems_, {},
                                 [](const QueryProblem& p) { return p.range.location; });
        return std::move(problems_);
    }

    std::vector<QueryProblem> ofWildcard() {
        if (detail::trimmedView(query_, detail::Ends::Both, detail::InSet{white_}).empty())
            add(QueryProblemKind::NothingToLookFor, {0, query_.size()},
                "there is nothing to look for");
        else
            checkPattern({0, query_.size()});
        return std::move(problems_);
    }

private:
    void add(QueryProblemKind kind, Range range, const std::string& text) {
        problems_.push_back({kind, range, String::fromUTF8(text)});
    }
    View viewOf(Range range) const { return query_.substr(range.location, range.length); }
    std::string quoted(Range range) const { return '"' + utf8(viewOf(range)) + '"'; }

    void readParentheses() {
        std::vector<std::size_t> open;
        for (std::size_t i = 0; i < query_.size(); ++i) {
            if (query_[i] == u'(') {
                open.push_back(i);
            } else if (query_[i] == u')' && !open.empty()) {
                open.pop_back();
            } else if (query_[i] == u')') {
                add(QueryProblemKind::ClosedParenthesis, {i, 1}, "this ) closes nothing");
            }
        }
        for (const std::size_t i : open)
            add(QueryProblemKind::OpenParenthesis, {i, 1}, "this ( is not closed");
    }

    void readParts() {
        std::size_t partStart = 0, i = 0;
        const auto endPart = [&] { readPart({partStart, i - partStart}); };
        while (i < query_.size()) {
            const char16_t unit = query_[i];
            if (unit == u'[' && options_.wildcard) {
                i = detail::afterBracket(query_, i);
                continue;
            }
            if (!detail::endsQueryPart(unit, i == partStart, options_.wildcard) &&
                !white_.contains(unit)) {
                ++i;
                continue;
            }
            endPart();
            if (detail::isDoubleQuote(unit))
                i = readPhrase(i);
            else if (unit == u'[')
                i = readComment(i);
            else
                ++i;
            partStart = i;
        }
        endPart();
    }

    /// Where the query goes on after a quote.
    std::size_t readPhrase(std::size_t quote) {
        std::size_t close = quote + 1;
        while (close < query_.size() && !detail::isDoubleQuote(query_[close])) ++close;
        if (close == query_.size())
            add(QueryProblemKind::OpenQuote, {quote, 1}, "this quote is not closed");
        if (options_.wildcard) checkPattern({quote + 1, close - quote - 1});
        return std::min(close + 1, query_.size());
    }

    std::size_t readComment(std::size_t bracket) {
        if (query_.find(u']', bracket) == View::npos)
            add(QueryProblemKind::OpenBracket, {bracket, query_.size() - bracket},
                "this [ is not closed, so all after it is left out");
        return detail::afterBracket(query_, bracket);
    }

    void readPart(Range part) {
        if (part.length == 0) return;
        const View text = viewOf(part);
        const detail::OperatorWord* row = detail::operatorWordOf(text);
        if (!row) return options_.wildcard ? checkPattern(part) : void();
        if (text.size() == row->word.size()) return;
        View digits = text.substr(row->word.size() + 1);
        const bool negative = digits.starts_with(u'-');
        if (negative || digits.starts_with(u'+')) digits.remove_prefix(1);
        const auto isDigit = [](char16_t unit) { return unit >= u'0' && unit <= u'9'; };
        if (digits.empty() || !std::ranges::all_of(digits, isDigit))
            add(QueryProblemKind::BadDistance, part, quoted(part) + ": the distance is no number");
        else if (negative)
            add(QueryProblemKind::NegativeDistance, part,
                quoted(part) + ": the distance is negative");
    }

    /// A pattern of one word or of several.
    void checkPattern(Range range) {
        const View pattern = viewOf(range);
        const std::size_t bracket = pattern.rfind(u'[');
        if (bracket != View::npos && pattern.find(u']', bracket) == View::npos)
            return add(QueryProblemKind::OpenBracket, range, quoted(range) + ": a [ is not closed");
        const bool isPhrase =
            pattern.size() >= 3 && numberOfWordsUsingWildcardSeparation(pattern) > 1;
        const std::vector<Range> words =
            isPhrase ? wordsOfCharacters(
                           pattern, {.separators = &defaultWildcardSeparators(), .wildcard = true})
                     : std::vector<Range>{{0, pattern.size()}};
        for (const Range word : words) {
            const std::string reason =
                hopelessness(pattern.substr(word.location, word.length), options_.withinRuns);
            if (!pattern.empty() && !reason.empty())
                return add(QueryProblemKind::HopelessPattern, range, quoted(range) + ": " + reason);
        }
    }

    const View query_;
    const QueryOptions& options_;
    const CharacterSetRep& white_ = whiteCharacterSetRep();
    std::vector<QueryProblem> problems_;
};

}  // namespace

std::vector<QueryProblem> problemsOfQuery(std::u16string_view query, const QueryOptions& options) {
    return Diagnosis(query, options).ofQuery();
}

std::vector<QueryProblem> problemsOfWildcard(std::u16string_view wildcard,
                                             const QueryOptions& options) {
    return Diagnosis(wildcard, options).ofWildcard();
}

}  // namespace velmo
