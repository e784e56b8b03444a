#pragma once

#include <optional>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/query/QueryTerms.h>

namespace velmo {

// The rewriting operations of QueryTerms for a query that is a text. An absent text gives an
// absent string, no words, or no value. Any thread may call these.
//
//     plusString(u"tea -sugar \"two cups\"");                  // tea two cups
//     standardizedQueryTerm(u"tea and (milk or lemon)");       // tea (milk OR lemon)
//     *plusWildcards(u"well-known");    // wellknown, well known, well-known

[[nodiscard]] inline String plusString(const String& query, std::uint32_t kinds = AllWords) {
    return QueryTerms::queryTermsWithString(query).plusString(kinds);
}
[[nodiscard]] inline std::vector<String> plusParts(const String& query,
                                                   std::uint32_t kinds = AllWords) {
    return QueryTerms::queryTermsWithString(query).plusParts(kinds);
}
[[nodiscard]] inline std::vector<QueryTerms> plusTerms(const String& query,
                                                       std::uint32_t kinds = AllWords) {
    return QueryTerms::queryTermsWithString(query).plusTerms(kinds);
}
[[nodiscard]] inline std::vector<String> plusWords(const String& query,
                                                   std::uint32_t kinds = AllWords) {
    return QueryTerms::queryTermsWithString(query).plusWords(kinds);
}
[[nodiscard]] inline std::vector<String> queryTermsForOperators(
    const String& query, std::uint64_t flags, const OperatorDictionary& dictionary = {}) {
    return QueryTerms::queryTermsWithString(query).queryTermsForOperators(flags, dictionary);
}
[[nodiscard]] inline String standardizedQueryTerm(const String& query) {
    return QueryTerms::queryTermsWithString(query).standardizedQueryTerm();
}
[[nodiscard]] inline String normalizedQueryTerm(const String& query) {
    return QueryTerms::queryTermsWithString(query).normalizedQueryTerm();
}

// The same with wildcards in the terms.

[[nodiscard]] inline String plusWildcardString(const String& query,
                                               std::uint32_t kinds = AllWords) {
    return QueryTerms::queryTermsWithWildcard(query).plusString(kinds);
}
[[nodiscard]] inline std::vector<String> plusWildcardParts(const String& query,
                                                           std::uint32_t kinds = AllWords) {
    return QueryTerms::queryTermsWithWildcard(query).plusParts(kinds);
}
[[nodiscard]] inline std::vector<QueryTerms> plusWildcardTerms(const String& query,
                                                               std::uint32_t kinds = AllWords) {
    return QueryTerms::queryTermsWithWildcard(query).plusTerms(kinds);
}
[[nodiscard]] inline std::vector<String> plusWildcardWords(const String& query,
                                                           std::uint32_t kinds = AllWords) {
    return QueryTerms::queryTermsWithWildcard(query).plusWords(kinds);
}
[[nodiscard]] inline std::optional<std::vector<String>> plusWildcards(const String& query) {
    return QueryTerms::queryTermsWithWildcard(query).plusWildcards();
}
[[nodiscard]] inline std::optional<std::vector<String>> extendedPlusWildcards(const String& query) {
    return QueryTerms::queryTermsWithWildcard(query).extendedPlusWildcards();
}
[[nodiscard]] inline std::vector<String> wildcardQueryTermsForOperators(
    const String& query, std::uint64_t flags, const OperatorDictionary& dictionary = {}) {
    return QueryTerms::queryTermsWithWildcard(query).queryTermsForOperators(flags, dictionary);
}
[[nodiscard]] inline String standardizedWildcardQueryTerm(const String& query) {
    return QueryTerms::queryTermsWithWildcard(query).standardizedQueryTerm();
}
[[nodiscard]] inline String normalizedWildcardQueryTerm(const String& query) {
    return QueryTerms::queryTermsWithWildcard(query).normalizedQueryTerm();
}

/// The text without what limits a web search to a site: words that begin with "site:", in
/// lower case, are left out and the others joined by single spaces.
///
///     queryTermWithoutSiteOperator(u"tea site:example.org cups");    // tea cups
[[nodiscard]] VELMO_API String queryTermWithoutSiteOperator(const String& query);

}  // namespace velmo
