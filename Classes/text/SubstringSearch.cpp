// Two ways. Where characters are units (all of Latin below the combining marks, or a literal
// search), units are compared in place. Else text and substring are rewritten character by
// character, each with its marks: decomposed, and folded as the options ask; the substring is
// sought in the rewritten text, and a hit counts if it begins and ends where characters do.
#include "text/SubstringSearch.h"

#include <algorithm>
#include <string>
#include <vector>

#include "platform/Unicode.h"
#include "text/PatternScan.h"
#include "platform/Surrogates.h"
#include "text/UnitFold.h"

namespace velmo::detail {
namespace {

using View = std::u16string_view;

constexpr char16_t FirstMark = 0x300;
constexpr char16_t FirstWidthForm = 0xFF00, LastWidthForm = 0xFFEE;

bool isMark(char16_t unit) {
    return unit >= FirstMark && (unicode::categoriesOf(unit) & unicode::Mark);
}
bool isBelowMarks(View text) {
    return std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < FirstMark; });
}

std::size_t lengthOfCharacter(View text, bool literal) {
    std::size_t length = 1;
    if (literal) return length;
    if (isHighSurrogate(text[0]) && text.size() > 1) ++length;
    while (length < text.size() && isMark(text[length])) ++length;
    return length;
}

std::u16string withUsualWidths(View character) {
    std::u16string result;
    for (const char16_t unit : character)
        if (unit >= FirstWidthForm && unit <= LastWidthForm)
            result += unicode::normalized(View(&unit, 1), unicode::Form::KC);
        else
            result += unit;
    return result;
}

std::u16string folded(View character, SearchOptions options) {
    if (character.size() == 1 && character[0] < 0x80) {
        std::u16string result(character);
        if (options & CaseInsensitiveSearch) result[0] = CaseFold{}(result[0]);
        return result;
    }
    std::u16string result(character);
    if (options & WidthInsensitiveSearch) result = withUsualWidths(result);
    if (!(options & LiteralSearch) || (options & DiacriticInsensitiveSearch))
        result = unicode::normalized(result, unicode::Form::D);
    if (options & DiacriticInsensitiveSearch) std::erase_if(result, isMark);
    if (options & CaseInsensitiveSearch)
        std::transform(result.begin(), result.end(), result.begin(), CaseFold{});
    return result;
}

/// A text rewritten, and where each of its characters begins in both forms; the ends are the
/// last entries.
struct Rewritten {
    std::u16string text;
    std::vector<std::size_t> starts, sources;

    Rewritten(View source, SearchOptions options) {
        for (std::size_t i = 0; i < source.size();) {
            const std::size_t length = lengthOfCharacter(source.substr(i), options & LiteralSearch);
            starts.push_back(text.size());
            sources.push_back(i);
            text += folded(source.substr(i, length), options);
            i += length;
        }
        starts.push_back(text.size());
        sources.push_back(source.size());
    }

    /// The place in the source of one in the text at which a character begins, or NotFound. A
    /// character of which nothing was left belongs to the one before it.
    std::uint64_t sourceOf(std::size_t place) const {
        const auto entry = std::upper_bound(starts.begin(), starts.end(), place) - 1;
        return *entry == place ? sources[static_cast<std::size_t>(entry - starts.begin())]
                               : NotFound;
    }
};

Range searchCharacters(View text, View sought, SearchOptions options) {
    const Rewritten haystack(text, options);
    const std::u16string needle = Rewritten(sought, options).text;
    if (needle.empty()) return Range::none();
    const bool backwards = options & BackwardsSearch;
    const View whole = haystack.text;
    std::size_t hit = backwards ? whole.rfind(needle) : whole.find(needle);
    while (hit != View::npos) {
        const std::uint64_t start = haystack.sourceOf(hit);
        const std::uint64_t end = haystack.sourceOf(hit + needle.size());
        if (start != NotFound && end != NotFound) return {start, end - start};
        if (backwards && hit == 0) break;
        hit = backwards ? whole.rfind(needle, hit - 1) : whole.find(needle, hit + 1);
    }
    return Range::none();
}

Range searchUnits(View text, View sought, SearchOptions options) {
    return withFold(!(options & CaseInsensitiveSearch), [&](const auto& fold) {
        const std::uint64_t hit = options & BackwardsSearch ? lastOccurrence(text, sought, fold)
                                                            : firstOccurrence(text, sought, fold);
        return hit == NotFound ? Range::none() : Range{hit, sought.size()};
    });
}

}  // namespace

Range rangeOfString(View text, View sought, Range range, SearchOptions options) {
    const View part = text.substr(range.location, range.length);
    if (sought.empty() || part.empty()) return Range::none();
    const bool foldsMore = options & (DiacriticInsensitiveSearch | WidthInsensitiveSearch);
    const bool unitsSuffice =
        !foldsMore && ((options & LiteralSearch) || (isBelowMarks(part) && isBelowMarks(sought)));
    Range hit =
        unitsSuffice ? searchUnits(part, sought, options) : searchCharacters(part, sought, options);
    if (hit.isFound()) hit.location += range.location;
    return hit;
}

}  // namespace velmo::detail
