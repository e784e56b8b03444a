// The wildcard language written down as plainly as can be: recursive matchers, and searches
// that look at one unit after the other. The tests compare the library with it on random
// patterns and texts.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <velmocore/platform/Range.h>

namespace velmo::test {

/// Bits 0 and 1: without regard to case and to diacritics, of ASCII and a with diaeresis;
/// bit 2: fuzzy.
using RefComparison = unsigned;

char16_t refFold(char16_t unit, RefComparison comparison);
/// ASCII letters and digits, and a with diaeresis.
bool refIsTerm(char16_t unit);

bool refMatchesPlain(std::u16string_view string, std::u16string_view wildcard, RefComparison comparison);
bool refMatchesUnix(std::u16string_view string, std::u16string_view wildcard, RefComparison comparison);

struct RefOptimized {
    int type = 10;
    std::u16string wildcard;  // compacted
    Range core = Range::none();
};
RefOptimized refOptimize(std::u16string_view wildcard, std::uint64_t minCharacters);

double refAnalogy(std::u16string_view first, std::u16string_view second, RefComparison comparison);

/// A stretch of a text and how it is searched.
struct RefSearch {
    std::u16string text;
    std::uint64_t start = 0, end = 0;
    RefComparison comparison = 0;
    std::uint64_t minCharacters = 1;
    double minAnalogy = 0.75;
    bool anchored = false, forward = true, acceptStar = false, starIsWord = false;
    bool withinRuns = false;
};

Range refFind(const RefSearch& search, std::u16string_view wildcard);
Range refFindString(const RefSearch& search, std::u16string_view wildcard);
Range refNearest(const RefSearch& search, const std::vector<std::u16string>& wildcards, bool firstHit);

}  // namespace velmo::test
