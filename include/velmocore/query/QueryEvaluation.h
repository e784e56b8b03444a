#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Matching.h>
#include <velmocore/query/QueryTerms.h>
#include <velmocore/text/CharacterSets.h>

namespace velmo {

// Whether a query holds for a text. See QueryTerms for the operations on the query itself.
//
//     QueryTerms query(u"cat NEAR/3 mat");
//     matchesQueryTerms(u"The cat sat on the mat", query, Case::Insensitive);      // false
//     containsQueryTerms(u"The cat sat on the mat", query, Case::Insensitive);     // true
//
//     QueryTerms wildcards(u"c?t BEFORE m*", {.wildcard = true});
//     matchesQueryTerms(u"The cat sat on the mat", wildcards,
//                       WildcardComparison::Exact);                    // true
//
// Operators join from left to right: a b OR c is (a AND b) OR c. A NEAR/n B holds if A holds
// within n words on either side of a B, the B itself included; BEFORE and NEXT look only
// ahead of the B, for A, and AFTER only after it. With a negated B, A must hold somewhere
// outside all of these windows. A word matches whole words, unless it is marked with ~.
//
// Evaluation reads the query only; any number of threads may share it. Time is polynomial
// in query and text whatever the query, and in proportion to the text for ordinary ones.

/// QueryTerms::matchesString(), receiver and argument exchanged. An absent query matches
/// nothing.
[[nodiscard]] inline bool matchesQueryTerms(std::u16string_view text, const QueryTerms& terms,
                                            Case letterCase) {
    return terms.matchesString(text, letterCase);
}
/// QueryTerms::containsString() in the same way.
[[nodiscard]] inline bool containsQueryTerms(std::u16string_view text, const QueryTerms& terms,
                                             Case letterCase) {
    return terms.containsString(text, letterCase);
}
// The same with wildcards.
[[nodiscard]] inline bool matchesQueryTerms(std::u16string_view text, const QueryTerms& terms,
                                            WildcardComparison comparison) {
    return terms.matchesString(text, comparison);
}
[[nodiscard]] inline bool containsQueryTerms(std::u16string_view text, const QueryTerms& terms,
                                             WildcardComparison comparison) {
    return terms.containsString(text, comparison);
}

/// What belongs to a word in searches and evaluations: alphaNumCharacterSetRep(), unless
/// another set has been given.
[[nodiscard]] VELMO_API const CharacterSetRep& queryTermCharacters();

/// Sets it for the whole process; null goes back to the default. The set stays the caller's
/// and must outlive its use. Meant for the start of a program; the pointer is stored
/// atomically, and an evaluation takes it once.
VELMO_API void setQueryTermCharacters(const CharacterSetRep* set) noexcept;

}  // namespace velmo
