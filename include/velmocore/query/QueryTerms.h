#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Matching.h>
#include <velmocore/platform/String.h>
#include <velmocore/query/QueryRendering.h>
#include <velmocore/query/Wildcards.h>

namespace velmo {

/// How a term joins the siblings before it.
enum class QueryOperator : std::int32_t {
    And = 0,     ///< AND, BUT, &
    Or = 1,      ///< OR, |
    Xor = 2,     ///< XOR, EOR, ^
    Near = 3,    ///< NEAR, NEAR/5
    Before = 4,  ///< BEFORE, BEFORE/5
    After = 5,   ///< AFTER, AFTER/5
    Next = 6,    ///< NEXT, NEXT/5
    Opt = 7,     ///< OPT
    None = 8,    ///< not written: the common operator of a group where there is none
};

/// NEAR, BEFORE, AFTER and NEXT.
[[nodiscard]] constexpr bool isProximityOperator(QueryOperator op) {
    return op >= QueryOperator::Near && op <= QueryOperator::Next;
}

/// The distance, in words, that stands for any distance.
inline constexpr std::size_t UnboundedDistance = 0x7FFFFFFFFFFFFFFF;

/// What a query's terms get that does not say otherwise.
struct QueryOptions {
    QueryOperator defaultOperator = QueryOperator::And;  ///< None is And
    std::size_t defaultDistance = 10;                    ///< in words
    /// Terms are wildcard patterns: a [ begins a set of characters and not a comment, and a
    /// term marked with ~ gets a star at both ends.
    bool wildcard = false;
    /// Han, Kana, Thai, Lao, Burmese and Khmer put no spaces between words. With this, which is
    /// ours, each character of theirs counts as a word, so that a term is found inside a run of
    /// them, as is what other words stand beside them; and distances count characters there.
    ///
    ///     QueryTerms(u"\u6771\u4EAC", {.withinRuns = true})
    ///         .matchesString(u"\u79C1\u306F\u6771\u4EAC\u3078", Case::Sensitive);     // true
    bool withinRuns = false;
};

/// What a node says of itself, apart from its text or children.
struct QueryTermFields {
    QueryOperator queryOperator = QueryOperator::And;  ///< how it joins the siblings before it
    std::size_t proximityDistance = 10;                ///< in words
    bool queryNot = false;                             ///< it must not match
    bool querySubstring = false;                       ///< it may stand inside a longer word
};

namespace detail {
struct QueryNode;
struct QueryTree;
}  // namespace detail

/// A search query as a tree of words and groups, parsed from what a user types. There is no
/// precedence: operators join their terms from left to right. Every text is a query, if
/// perhaps an empty one; nothing fails.
///
///     QueryTerms query(u"(tea OR coffee) NEAR/5 \"two cups\" -sugar");
///     query.matchesString(u"Two cups of tea, please", Case::Insensitive);     // true
///     query.numberOfChildren();                                    // 3
///
/// A word stands for itself. What else has a meaning: quotes for a phrase, parentheses, -
/// or ! or NOT for a term that must not match, ~ for one that may stand inside a longer
/// word, + for none of these, [comments], and the operators of QueryOperator, in any case.
///
/// A QueryTerms is one node with all that is below it. The tree is immutable and shared by
/// its nodes, so that copies and children cost no more than a counter; any thread may read
/// it. Parsing takes time in proportion to the text, however deep its parentheses go. A
/// default-made QueryTerms is absent: it has no word and no children and matches nothing.
class VELMO_API QueryTerms {
public:
    /// The absent query.
    QueryTerms() noexcept = default;
    /// Parses a text; an empty or absent one makes a group without children, which is not valid.
    explicit QueryTerms(std::u16string_view query, const QueryOptions& options = {});
    /// The top node gets these fields, instead of the default operator and distance.
    QueryTerms(std::u16string_view query, const QueryOptions& options,
               const QueryTermFields& fields);

    /// Absent for an absent string.
    [[nodiscard]] static QueryTerms queryTermsWithString(const String& query);
    [[nodiscard]] static QueryTerms queryTermsWithWildcard(const String& query);
    /// A single word node; the text is taken as it is.
    [[nodiscard]] static QueryTerms queryTermsWithWord(std::u16string_view word,
                                                       const QueryTermFields& fields,
                                                       bool phrase = false);

    /// Whether it was default-made, or made of an absent string.
    [[nodiscard]] bool isAbsent() const noexcept { return tree_ == nullptr; }
    /// Whether there is something to look for: true for a word, and for a group with children.
    [[nodiscard]] bool isValid() const noexcept;
    /// Whether it is a word or a phrase, and no group.
    [[nodiscard]] bool isWord() const noexcept;
    /// Whether its words were parsed as patterns.
    [[nodiscard]] bool hasWildcards() const noexcept;

    /// How this node joins the siblings before it. It means nothing on a first child.
    [[nodiscard]] QueryOperator queryOperator() const noexcept;
    /// The operator that all children from the second on share, or None.
    [[nodiscard]] QueryOperator commonOperator() const noexcept;
    /// In words, for the proximity operators. 0 makes such an operator a plain AND.
    [[nodiscard]] std::size_t proximityDistance() const noexcept;
    /// Whether it must not match.
    [[nodiscard]] bool queryNot() const noexcept;
    /// Whether a word may match inside a longer one.
    [[nodiscard]] bool querySubstring() const noexcept;
    /// Whether a word came from quotes.
    [[nodiscard]] bool queryPhrase() const noexcept;

    /// The text of a word; empty for a group. It lives as long as a node of its tree.
    [[nodiscard]] std::u16string_view word() const noexcept VELMO_LIFETIME;
    /// 0 for a word and for an absent query.
    [[nodiscard]] std::size_t numberOfChildren() const noexcept;
    /// One of the children; absent if there are not so many.
    [[nodiscard]] QueryTerms child(std::size_t index) const;

    /// Whether the query holds for a text. False for an empty text.
    [[nodiscard]] bool matchesString(std::u16string_view text, Case letterCase) const;
    /// Whether a word that is not negated occurs in the text; operators and distances play
    /// no role, nor does the negation of this node itself.
    [[nodiscard]] bool containsString(std::u16string_view text, Case letterCase) const;
    /// The same with each word as a wildcard, of one word or several; see
    /// FindWildcardStringInCharacters(). A lone * is found in every stretch of text.
    [[nodiscard]] bool matchesString(std::u16string_view text, WildcardComparison comparison) const;
    [[nodiscard]] bool containsString(std::u16string_view text,
                                      WildcardComparison comparison) const;

    /// The same as the query was parsed, with wildcards or without, by DefaultComparison.
    [[nodiscard]] bool matchesString(std::u16string_view text) const;
    [[nodiscard]] bool containsString(std::u16string_view text) const;

    // The positive words, in their order: those that are under an even number of
    // negations, that of this node not counted.

    /// Their texts, with spaces between them.
    [[nodiscard]] String plusString(std::uint32_t kinds = AllWords) const;
    [[nodiscard]] std::vector<String> plusParts(std::uint32_t kinds = AllWords) const;
    /// Their nodes.
    [[nodiscard]] std::vector<QueryTerms> plusTerms(std::uint32_t kinds = AllWords) const;
    /// Their texts cut into words, as wordsUsingWildcardSeparation() cuts.
    [[nodiscard]] std::vector<String> plusWords(std::uint32_t kinds = AllWords) const;
    /// The length of the shortest positive word, in UTF-16 units; 0 if there is none. Here
    /// the negation of this node counts.
    [[nodiscard]] std::size_t minTermLen() const;

    // Patterns for the search in a text, as excerpts need them: no two are the same, and
    // the shortest come first. Without a value if the query is not valid.

    /// The positive words as they are, as words with spaces between them, and, if they are
    /// joined by hyphens or are an abbreviation with full stops, in one piece.
    [[nodiscard]] std::optional<std::vector<String>> plusWildcards() const;
    /// The positive words, not as they are but in the other forms, and pairs of neighbours
    /// that must both occur, as phrases.
    [[nodiscard]] std::optional<std::vector<String>> extendedPlusWildcards() const;

    // The query as a text again. An absent one gives nothing.

    /// One text, written as flags of QueryTermRendering say.
    [[nodiscard]] std::vector<String> queryTermsForOperators(
        std::uint64_t flags, const OperatorDictionary& dictionary = {}) const;
    /// In the most common form: OR, XOR, OPT, -, quotes and parentheses; proximity operators
    /// become spaces.
    [[nodiscard]] String standardizedQueryTerm() const;
    /// In one form for all ways to write a query: words in lower case, | for OR, BEFORE/n for
    /// NEXT.
    [[nodiscard]] String normalizedQueryTerm() const;
    /// With all that the query says, in words.
    [[nodiscard]] String description() const;
    /// The same such that distances are read again as they are; this form is ours.
    [[nodiscard]] String parsableDescription() const;

private:
    friend struct detail::QueryTree;
    QueryTerms(std::shared_ptr<const detail::QueryTree> tree, std::size_t index) noexcept
        : tree_(std::move(tree)), index_(index) {}
    [[nodiscard]] const detail::QueryNode& node() const noexcept;

    std::shared_ptr<const detail::QueryTree> tree_;
    std::size_t index_ = 0;
};

}  // namespace velmo
