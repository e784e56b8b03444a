// A wildcard with separators in it is a phrase; one joined by hyphens is sought also as one word,
// as authors differ in how they write it. The joined form is asked only where the words apart are
// not found: of two hits in a stretch this rule, and not their places, decides.
#include "query/WildcardTerm.h"

#include <algorithm>
#include <string>

namespace velmo::detail {

namespace {

/// The words of a wildcard; none if there are fewer than two.
SeparatedWords partsOf(std::u16string_view wildcard) {
    // Two words and a separator have three units at least.
    if (wildcard.size() < 3 || numberOfWordsUsingWildcardSeparation(wildcard) < 2) return {};
    return separatedWildcardWords(String(wildcard));
}

/// The same, but a pair of a script without spaces is no separator.
SeparatedWords unspacedPartsOf(std::u16string_view wildcard) {
    std::u16string masked(wildcard);
    for (std::size_t i = 0; i < masked.size(); ++i)
        if (isSurrogate(masked[i]) && unspacedScripts().hasHalfAt(wildcard, i))
            masked[i] = u'\u4E00';
    SeparatedWords parts = partsOf(masked);
    if (masked == wildcard || parts.words.empty()) return parts;
    const std::vector<Range> ranges =
        wordsOfCharacters(masked, {.separators = &defaultWildcardSeparators(), .wildcard = true});
    std::ranges::transform(ranges, parts.words.begin(), [&](Range range) {
        return String(wildcard.substr(range.location, range.length));
    });
    return parts;
}

}  // namespace

WildcardTerm::WildcardTerm(std::u16string_view wildcard, WildcardComparison comparison,
                           std::uint64_t minCharacters, bool withinRuns)
    : WildcardTerm(wildcard, withinRuns ? unspacedPartsOf(wildcard) : partsOf(wildcard), comparison,
                   minCharacters) {}

WildcardTerm::WildcardTerm(std::u16string_view wildcard, const SeparatedWords& parts,
                           WildcardComparison comparison, std::uint64_t minCharacters)
    : words_(parts.words.empty() ? WildcardSequence(wildcard, comparison, minCharacters)
                                 : WildcardSequence(parts.words, comparison, minCharacters)) {
    if (!parts.hyphenated) return;
    std::u16string joined;
    for (const String& word : parts.words) joined += word.view();
    joined_.emplace(joined, comparison, minCharacters);
}

Range WildcardTerm::find(const WordText& text, std::uint64_t start, std::uint64_t end,
                         SequenceChoice choice) const {
    const Range hit = words_.find(text, start, end, choice);
    return hit.isFound() || !joined_ ? hit : joined_->find(text, start, end, choice);
}

WildcardOccurrences::WildcardOccurrences(const WordText& text, std::u16string_view wildcard,
                                         WildcardComparison comparison, std::uint64_t minCharacters,
                                         bool acceptStar)
    : text_(text),
      term_(wildcard, comparison, minCharacters, text.unspaced != nullptr),
      words_(term_.words(), text_, acceptStar) {
    if (term_.joined()) joined_.emplace(*term_.joined(), text_, acceptStar);
}

Range WildcardOccurrences::find(std::uint64_t start, std::uint64_t end) {
    const Range hit = words_.find(start, end);
    return hit.isFound() || !joined_ ? hit : joined_->find(start, end);
}

void WildcardOccurrences::forgetBefore(std::uint64_t position) {
    words_.forgetBefore(position);
    if (joined_) joined_->forgetBefore(position);
}

bool WildcardOccurrences::isOneRun() const {
    return !term_.words().isPhrase() && !term_.hasLoneStar() && term_.findsWords(text_);
}

bool WildcardOccurrences::isApart() const {
    const WildcardSequence& words = term_.words();
    return isOneRun() || (!words.isPhrase() && !joined_ && words.findsApart(text_));
}

}  // namespace velmo::detail
