// Finding single units. Without regard to case a unit is compared through the upper-case table,
// and a unit that has no case is sought as it is, by the fastest loop; the rule is settled once,
// ahead of it.
#include <velmocore/text/CharacterFinding.h>

#include <algorithm>

#include <velmocore/text/CharacterSets.h>

#include "text/PatternScan.h"
#include "text/UnitScan.h"

namespace velmo {
namespace {

using namespace detail;
using View = std::u16string_view;

/// The start index, cut to the text.
std::size_t startIn(View string, CharacterSearch search) {
    if (search.startAt <= 0) return 0;
    return static_cast<std::size_t>(
        std::min<std::uint64_t>(static_cast<std::uint64_t>(search.startAt), string.size()));
}

/// Calls the function with the unit to look for and the folding of the text's units, by the
/// case rule.
template <class Function>
auto withCaseRule(char16_t unit, Case letterCase, Function function) {
    // A unit of two cases is sought by its upper one under either rule: case sensitive it is so
    // found only if it was given in upper case.
    const char16_t upper = toUpper(unit);
    if (upper == toLower(unit)) return function(unit, NoFold{});
    return letterCase == Case::Insensitive ? function(upper, UpperFold{})
                                           : function(upper, NoFold{});
}

std::uint64_t indexIn(View string, const char16_t* hit) {
    const auto index = static_cast<std::size_t>(hit - string.data());
    return index == string.size() ? NotFound : index;
}

/// The mask bit of a unit below 128.
constexpr auto MaskBits = [] {
    struct {
        std::uint8_t of[128] = {};
    } bits;
    const std::uint8_t units[] = {'.', '@', '/', '?', ';', '_', '*', '$'};
    for (int i = 0; i < 8; ++i) bits.of[units[i]] = static_cast<std::uint8_t>(1 << i);
    return bits;
}();

}  // namespace

std::size_t findCharacter(View string, char16_t unit, CharacterSearch search) {
    const std::size_t start = startIn(string, search);
    return withCaseRule(
        unit, search.letterCase, [&](char16_t sought, const auto& fold) -> std::uint64_t {
            const std::uint64_t hit = firstOccurrence(string.substr(start), View(&sought, 1), fold);
            return hit == NotFound ? NotFound : start + hit;
        });
}

std::size_t findLastCharacter(View string, char16_t unit, CharacterSearch search) {
    const std::size_t start = startIn(string, search);
    return withCaseRule(unit, search.letterCase,
                        [&](char16_t sought, const auto& fold) -> std::uint64_t {
                            for (std::size_t i = string.size(); i-- > start;)
                                if (fold(string[i]) == sought) return i;
                            return NotFound;
                        });
}

std::size_t countCharacter(View string, char16_t unit, CharacterSearch search) {
    const View part = string.substr(startIn(string, search));
    return withCaseRule(unit, search.letterCase, [&](char16_t sought, const auto& fold) {
        std::size_t count = 0;
        for (const char16_t c : part) count += fold(c) == sought;
        return count;
    });
}

std::size_t findOneOf(View string, View units, CharacterSearch search) {
    if (units.empty()) return NotFound;
    const auto find = [&](const auto& fold) {
        CharacterSetRep sought;
        for (const char16_t unit : units) sought.add(fold(unit));
        const char16_t* const end = string.data() + string.size();
        return indexIn(string, std::find_if(string.data() + startIn(string, search), end,
                                            [&](char16_t c) { return sought.contains(fold(c)); }));
    };
    return search.letterCase == Case::Insensitive ? find(UpperFold{}) : find(NoFold{});
}

bool containsCharacters(View string, unsigned mask) {
    if (mask == 0) return false;
    for (const char16_t unit : string) {
        if (unit < 128) mask &= ~unsigned{MaskBits.of[unit]};
        if (mask == 0) return true;
    }
    return false;
}

AngleBrackets countLTGT(View string) {
    const char16_t* const end = string.data() + string.size();
    return {scan::count(string.data(), end, u'<'), scan::count(string.data(), end, u'>')};
}

}  // namespace velmo
