// Comparing without a copy: each rule is a folding of single units, so that texts of different
// length are never equal and nothing is allocated. An absent string equals nothing, not even
// another absent one; an absent part of a range likewise.
#include <velmocore/text/Comparison.h>

#include "text/UnitFold.h"

namespace velmo {
namespace {

using namespace detail;
using View = std::u16string_view;

TableFold plainFold() { return {upperUmlautsCharsTable()}; }

template <class Fold>
bool equal(View a, View b, const Fold& fold) {
    return a.size() == b.size() && sameUnits(a.data(), b.data(), a.size(), fold);
}

bool bothPresent(View a, View b) { return a.data() && b.data(); }

/// The length is compared with what is left, as a sum of both could pass 64 bits.
bool liesIn(Range range, View string) {
    return range.location <= string.size() && range.length <= string.size() - range.location;
}

/// The range as a view that is never absent, unless it does not lie in the string.
View part(View string, Range range) {
    if (!liesIn(range, string)) return {};
    return range.length ? string.substr(range.location, range.length) : View(u"");
}

/// An absent string as an empty one.
View orEmpty(View string) { return string.data() ? string : View(u""); }

}  // namespace

bool isEqualToStringNoCase(View string, View other) {
    return bothPresent(string, other) && equal(string, other, CaseFold{});
}

bool isAsciiEqualToStringNoCase(View string, View other) {
    return bothPresent(string, other) && equal(string, other, UpperAsciiFold{});
}

bool isNonUmlautedEqualToStringNoCase(View string, View other) {
    return bothPresent(string, other) && equal(string, other, plainFold());
}

bool rangeIsEqualTo(View string, Range range, View other) {
    return liesIn(range, string) && part(string, range) == other;
}

bool rangeIsEqualToNoCase(View string, Range range, View other) {
    // Absent counts as empty here, as it does in rangeIsEqualTo(), which compares plain views.
    return isEqualToStringNoCase(part(string, range), orEmpty(other));
}

bool rangeIsAsciiEqualToNoCase(View string, Range range, View other) {
    return isAsciiEqualToStringNoCase(part(string, range), other);
}

bool rangeIsNonUmlautedEqualToNoCase(View string, Range range, View other) {
    return isNonUmlautedEqualToStringNoCase(part(string, range), other);
}

bool hasPrefixNoCase(View string, View prefix) {
    return !prefix.empty() && prefix.size() <= string.size() &&
           equal(string.substr(0, prefix.size()), prefix, CaseFold{});
}

bool hasSuffixNoCase(View string, View suffix) {
    return !suffix.empty() && suffix.size() <= string.size() &&
           equal(string.substr(string.size() - suffix.size()), suffix, CaseFold{});
}

}  // namespace velmo
