// Comparing for order. The result is the difference of the first units that differ, else that of
// the lengths, in 64 bits, so that none overflows. Units are compared before they are folded, so
// that texts which are alike cost no table.
#include <velmocore/text/FastCompare.h>

#include <algorithm>
#include <cstring>

#include "text/UnitFold.h"

namespace velmo {
namespace {

using namespace detail;

std::int64_t lengthOf(std::size_t length) { return static_cast<std::int64_t>(length); }

template <class A, class B, class Fold>
std::int64_t compared(std::basic_string_view<A> a, std::basic_string_view<B> b, const Fold& fold) {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const char16_t x = widened(a[i]), y = widened(b[i]);
        if (x == y) continue;
        if (const int difference = fold(x) - fold(y)) return difference;
    }
    return lengthOf(a.size()) - lengthOf(b.size());
}

}  // namespace

std::int64_t fastCompareUnichars(std::u16string_view a, std::u16string_view b) {
    // Four units at a time up to the first that differ.
    const std::size_t common = std::min(a.size(), b.size());
    std::size_t i = 0;
    for (; i + 4 <= common; i += 4)
        if (std::memcmp(a.data() + i, b.data() + i, 4 * sizeof(char16_t)) != 0) break;
    return compared(a.substr(i), b.substr(i), NoFold{});
}

std::int64_t fastCompareUnicharsWithChars(std::u16string_view a, std::string_view b) {
    return compared(a, b, NoFold{});
}

std::int64_t fastCompareChars(std::string_view a, std::string_view b) {
    const std::size_t common = std::min(a.size(), b.size());
    const auto [x, y] = std::mismatch(a.begin(), a.begin() + lengthOf(common), b.begin());
    if (x != a.begin() + lengthOf(common))
        // Signed, whatever the machine's char is: an order that is stored must not depend on it.
        return static_cast<signed char>(*x) - static_cast<signed char>(*y);
    return lengthOf(a.size()) - lengthOf(b.size());
}

std::int64_t fastCompareUnicharsUsingConversionTable(std::u16string_view a, std::u16string_view b,
                                                     const ConversionTable* table) {
    if (!table) return fastCompareUnichars(a, b);
    return compared(a, b, TableFold{*table});
}

std::int64_t fastCaseInsensitiveCompareUnichars(std::u16string_view a, std::u16string_view b) {
    return compared(a, b, UpperFold{});
}

std::int64_t fastCaseInsensitiveCompareUnicharsWithChars(std::u16string_view a,
                                                         std::string_view b) {
    return compared(a, b, UpperFold{});
}

std::int64_t fastCaseInsensitiveCompareChars(std::string_view a, std::string_view b) {
    return compared(a, b, UpperFold{});
}

}  // namespace velmo
