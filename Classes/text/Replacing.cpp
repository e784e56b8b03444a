// Every replacement of strings is a walk from hit to hit that copies what lies between in one
// piece, into a new text. In place each change of length would move all that follows, and the time
// would grow with the square of the number of hits.
#include <velmocore/text/Replacing.h>

#include <algorithm>

#include "platform/Ascii.h"
#include "text/Format.h"
#include "text/PatternScan.h"

namespace velmo {
namespace {

using namespace detail;
using View = std::u16string_view;

/// Appends the text to out, which may be a StringBuilder or a std::u16string, with all
/// occurrences replaced. Gives their number; if there are none, nothing is appended.
template <class Out, class Fold>
std::size_t appendReplacing(Out& out, View text, View sought, View replacement, const Fold& fold) {
    std::size_t count = 0;
    for (std::uint64_t hit; (hit = firstOccurrence(text, sought, fold)) != NotFound; ++count) {
        out.append(text.substr(0, hit));
        out.append(replacement);
        text.remove_prefix(hit + sought.size());
    }
    if (count) out.append(text);
    return count;
}

}  // namespace

String stringByReplacingCharacter(const String& string, char16_t from, char16_t to,
                                  Case letterCase) {
    if (from == to) return string;
    const char16_t upper = toUpper(from);
    // A unit of two cases is replaced as it stands under either rule, on purpose; see the header.
    const bool literal = letterCase == Case::Sensitive || upper != toLower(from);
    const UpperFold fold;
    const auto isHit = [&](char16_t c) { return literal ? c == from : fold(c) == upper; };
    // Looked for first, as the string itself comes back if nothing changes.
    if (std::none_of(string.begin(), string.end(), isHit)) return string;
    StringBuilder out;
    std::replace_copy_if(string.begin(), string.end(), out.prepare(string.length()), isHit, to);
    out.commit(string.length());
    return out.finish();
}

String stringByReplacingString(const String& string, View sought, const String& replacement,
                               Case letterCase) {
    if (replacement.isAbsent()) return string;
    return withFold(letterCase, [&](const auto& fold) {
        StringBuilder out;
        return appendReplacing(out, string, sought, replacement, fold) ? out.finish() : string;
    });
}

String stringByRotating(const String& string, std::int64_t places) {
    // The remainder of a negative number is negative, and this makes it count from the other end.
    const int shift = static_cast<int>((places % 26 + 26) % 26);
    if (string.isEmpty() || shift == 0) return string;
    const auto rotated = [shift](char16_t unit) {
        if (!ascii::isLetter(unit)) return unit;
        const char16_t first = ascii::isLower(unit) ? u'a' : u'A';
        return static_cast<char16_t>(first + (unit - first + shift) % 26);
    };
    StringBuilder out;
    std::transform(string.begin(), string.end(), out.prepare(string.length()), rotated);
    out.commit(string.length());
    return out.finish();
}

std::size_t replaceString(std::u16string& text, View sought, View replacement, Case letterCase) {
    std::u16string out;
    const std::size_t count = withFold(letterCase, [&](const auto& fold) {
        return appendReplacing(out, text, sought, replacement, fold);
    });
    if (count) text = std::move(out);
    return count;
}

std::size_t replaceCharacter(std::u16string& text, char16_t from, char16_t to, Case letterCase) {
    return withFold(letterCase, [&](const auto& fold) {
        std::size_t count = 0;
        for (char16_t& unit : text) {
            if (!sameUnit(unit, from, fold)) continue;
            unit = to;
            ++count;
        }
        return count;
    });
}

std::size_t replaceStringWithFormat(std::u16string& text, View sought, View format,
                                    std::initializer_list<FormatArgument> arguments) {
    if (!format.data()) return 0;
    return replaceString(text, sought, formatted(format, arguments));
}

}  // namespace velmo
