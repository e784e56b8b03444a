#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Matching.h>
#include <velmocore/platform/Range.h>
#include <velmocore/text/ConversionTables.h>

namespace velmo {

// Search for a short pattern in an array of units. The result is the index of the first
// occurrence, or NotFound; an empty pattern is found nowhere. Byte patterns stand for ASCII:
// a byte above 127 is widened with its sign and equals no Latin-1 unit. "CaseInsensitive"
// compares upper-case forms. Any thread may call these; nothing is allocated.
//
//     fastCaseInsensitiveUnicharsContainChars(u"a Charset=x", "charset");    // 2

/// Mind that the last possible start is never tried: a pattern at the very end of the text,
/// or one as long as the text, is not found. Callers count on it; the others find it.
[[nodiscard]] VELMO_API std::size_t fastContainsUnichars(std::u16string_view text,
                                                         std::u16string_view pattern);
[[nodiscard]] VELMO_API std::size_t fastCaseInsensitiveContainsUnichars(
    std::u16string_view text, std::u16string_view pattern);
[[nodiscard]] VELMO_API std::size_t fastUnicharsContainChars(std::u16string_view text,
                                                             std::string_view pattern);
[[nodiscard]] VELMO_API std::size_t fastCaseInsensitiveUnicharsContainChars(
    std::u16string_view text, std::string_view pattern);

/// Takes the pattern first.
[[nodiscard]] inline std::size_t positionOfCharacters(std::string_view pattern,
                                                      std::u16string_view text, Case letterCase) {
    return letterCase == Case::Sensitive ? fastUnicharsContainChars(text, pattern)
                                         : fastCaseInsensitiveUnicharsContainChars(text, pattern);
}

/// Whether any of the keywords occurs in the text. With a table the text is mapped through
/// it and the keywords are not: for the lower-case table they must be in lower case. An
/// empty keyword occurs nowhere. Lists of hundreds of keywords are cheap on a short text.
///
///     constexpr std::string_view Hosts[] = {"doubleclick.net", "/adserver/"};
///     fastContainsSubCStrings(u"http://ad.DoubleClick.net/", Hosts, &lowerCharsTable());    // true
[[nodiscard]] VELMO_API bool fastContainsSubCStrings(std::u16string_view text,
                                                     std::span<const std::string_view> keywords,
                                                     const ConversionTable* table);

}  // namespace velmo
