// Searches for strings. Each public form settles its rule (case, direction, table) ahead of the
// loop and then runs one of two kernels, forward or backward, made for that rule.
#include <velmocore/text/Finding.h>

#include <algorithm>

#include <velmocore/text/FastSearch.h>

#include "text/PatternScan.h"

namespace velmo {
namespace {

using namespace detail;
using View = std::u16string_view;

/// Searches one part of the text, and gives the range in the whole.
template <class Fold>
Range findInPart(View text, std::size_t start, std::size_t end, View sought, Direction direction,
                 const Fold& fold) {
    const View part = text.substr(start, end - start);
    const std::uint64_t hit = direction == Direction::Forward ? firstOccurrence(part, sought, fold)
                                                              : lastOccurrence(part, sought, fold);
    return hit == NotFound ? Range::none() : Range{start + hit, sought.size()};
}

}  // namespace

bool containsSubstring(View string, View substring, Case letterCase) {
    return withFold(letterCase, [&](const auto& fold) {
        return firstOccurrence(string, substring, fold) != NotFound;
    });
}

std::size_t countSubstring(View string, View substring, Case letterCase) {
    return withFold(letterCase, [&](const auto& fold) {
        std::size_t count = 0;
        std::uint64_t hit;
        // Occurrences do not overlap, as with replacing: the count is the number of replacements.
        for (View rest = string; (hit = firstOccurrence(rest, substring, fold)) != NotFound;
             rest.remove_prefix(hit + substring.size()))
            ++count;
        return count;
    });
}

bool containsSubstrings(View string, std::span<const String> substrings, Case letterCase) {
    return std::ranges::any_of(substrings, [&](const String& substring) {
        return containsSubstring(string, substring, letterCase);
    });
}

bool containsSubCStrings(View string, std::span<const std::string_view> keywords, Case letterCase) {
    // Only the text is mapped: keywords are in lower case by contract.
    return fastContainsSubCStrings(string, keywords,
                                   letterCase == Case::Sensitive ? nullptr : &lowerCharsTable());
}

Range findString(View string, View sought, Range selection, FindOptions options) {
    const std::size_t start = std::min<std::size_t>(selection.location, string.size());
    const std::size_t end = start + std::min<std::size_t>(selection.length, string.size() - start);
    return withFold(options.letterCase, [&](const auto& fold) {
        // The selection itself is in neither part: a hit there is what the user sees already. Both
        // parts are searched in the direction of the search, so that a wrapped one goes on from
        // the far end.
        const auto before = [&] {
            return findInPart(string, 0, start, sought, options.direction, fold);
        };
        const auto behind = [&] {
            return findInPart(string, end, string.size(), sought, options.direction, fold);
        };
        const Range near = options.direction == Direction::Forward ? behind() : before();
        if (near.isFound() || !options.wrap) return near;
        return options.direction == Direction::Forward ? before() : behind();
    });
}

std::size_t indexOfStringInArray(std::span<const String> array, View string, Case letterCase) {
    if (string.empty()) return NotFound;
    return withFold(letterCase, [&](const auto& fold) -> std::uint64_t {
        for (std::size_t i = 0; i < array.size(); ++i)
            if (array[i].length() == string.size() &&
                sameUnits(array[i].characters(), string.data(), string.size(), fold))
                return i;
        return NotFound;
    });
}

bool equalStringsUsingConversionTable(View a, View b, const ConversionTable* table) {
    return a.size() == b.size() && withFold(table, [&](const auto& fold) {
               return sameUnits(a.data(), b.data(), a.size(), fold);
           });
}

}  // namespace velmo
