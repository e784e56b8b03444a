// Tests of a text by the class of its units. Each is a set and one of four loops over it; what
// compares texts looks only at the units of the set on both sides.
#include <velmocore/text/CharacterTests.h>

#include <algorithm>

#include "platform/Ascii.h"
#include "text/PatternScan.h"
#include "text/Remove.h"

namespace velmo {
namespace {

using View = std::u16string_view;

/// Compares the units of the set. For a prefix, the first text may go on when the second is
/// used up.
template <class Fold>
bool equalOverSet(View a, View b, const CharacterSetRep& set, bool prefix, const Fold& fold) {
    auto other = b.begin();
    const auto nextOfOther = [&] {
        return other = std::find_if(other, b.end(), [&](char16_t c) { return set.contains(c); });
    };
    for (char16_t unit : a) {
        if (!set.contains(unit)) continue;
        if (nextOfOther() == b.end()) return prefix;
        if (!detail::sameUnit(unit, *other++, fold)) return false;
    }
    return nextOfOther() == b.end();
}

}  // namespace

bool characterPartOfSet(View string, const CharacterSetRep* set) {
    return set &&
           std::any_of(string.begin(), string.end(), [=](char16_t c) { return set->contains(c); });
}

std::size_t countCharactersPartOfSet(View string, const CharacterSetRep* set) {
    std::size_t count = 0;
    if (set)
        for (char16_t unit : string) count += set->contains(unit);
    return count;
}

bool charactersPartOfSet(View string, const CharacterSetRep& set, bool emptyResult) {
    if (string.empty()) return emptyResult;
    return std::all_of(string.begin(), string.end(), [&](char16_t c) { return set.contains(c); });
}

bool containsAlphaNumCharacter(View string) {
    return characterPartOfSet(string, &alphaNumCharacterSetRep());
}
bool containsAlphaCharacter(View string) {
    return characterPartOfSet(string, &alphaCharacterSetRep());
}
bool containsWhiteCharacter(View string) {
    return characterPartOfSet(string, &whiteCharacterSetRep());
}
bool containsDigitCharacter(View string) {
    return characterPartOfSet(string, &digitCharacterSetRep());
}

std::size_t countAlphaNumCharacters(View string) {
    return countCharactersPartOfSet(string, &alphaNumCharacterSetRep());
}
std::size_t countAlphaCharacters(View string) {
    return countCharactersPartOfSet(string, &alphaCharacterSetRep());
}
std::size_t countWhiteCharacters(View string) {
    return countCharactersPartOfSet(string, &whiteCharacterSetRep());
}
std::size_t countDigitCharacters(View string) {
    return countCharactersPartOfSet(string, &digitCharacterSetRep());
}

bool isSpaceString(View string) {
    return charactersPartOfSet(string, spaceCharacterSetRep(), true);
}
bool isWhiteString(View string) {
    return charactersPartOfSet(string, whiteCharacterSetRep(), true);
}
bool isDigitString(View string) {
    return charactersPartOfSet(string, digitCharacterSetRep(), false);
}
bool isAlphaString(View string) {
    return charactersPartOfSet(string, alphaCharacterSetRep(), false);
}
bool isAlphaNumString(View string) {
    return charactersPartOfSet(string, alphaNumCharacterSetRep(), false);
}
bool onlyWhiteCharacters(View characters) { return isWhiteString(characters); }

bool isMashedWordString(View string) {
    const CharacterSetRep& upper = upperCharacterSetRep();
    const CharacterSetRep& lower = lowerCharacterSetRep();
    if (string.size() < 3 || !upper.contains(string[0])) return false;
    std::size_t i = 1;
    // Only the start is looked at: what follows the second word may be anything.
    while (i < string.size() && lower.contains(string[i])) ++i;
    return i >= 2 && i + 1 < string.size() && upper.contains(string[i]) &&
           lower.contains(string[i + 1]);
}

bool equalCharsOfCharacterSetRep(View a, View b, const CharacterSetRep& set) {
    return equalOverSet(a, b, set, false, detail::NoFold{});
}
bool equalCharsNoCaseOfCharacterSetRep(View a, View b, const CharacterSetRep& set) {
    return equalOverSet(a, b, set, false, detail::UpperFold{});
}
bool hasPrefixCharsOfCharacterSetRep(View text, View prefix, const CharacterSetRep& set) {
    return equalOverSet(text, prefix, set, true, detail::NoFold{});
}
bool hasPrefixCharsNoCaseOfCharacterSetRep(View text, View prefix, const CharacterSetRep& set) {
    return equalOverSet(text, prefix, set, true, detail::UpperFold{});
}

std::size_t countNumbers(View string) {
    std::size_t count = 0;
    bool inNumber = false;
    for (char16_t unit : string) {
        const bool digit = detail::ascii::isDigit(unit);
        count += digit && !inNumber;
        inNumber = digit;
    }
    return count;
}

bool containsNumberWithNDigits(View string, std::size_t digits) {
    if (digits == 0 || string.size() < digits) return false;
    std::size_t run = 0;
    for (char16_t unit : string) {
        // A longer run holds one of that length too, so the first place at which it is reached
        // decides.
        run = detail::ascii::isDigit(unit) ? run + 1 : 0;
        if (run == digits) return true;
    }
    return false;
}

bool containsNumber(View string, View digits) {
    if (digits.empty()) return false;
    // The search goes on behind a hit that did not stand alone.
    std::uint64_t found;
    for (std::size_t from = 0, end; (found = detail::firstOccurrence(string.substr(from), digits,
                                                                     detail::NoFold{})) != NotFound;
         from = end) {
        const std::size_t hit = from + found;
        end = hit + digits.size();
        if (hit > 0 && detail::ascii::isDigit(string[hit - 1])) continue;
        if (end < string.size() && detail::ascii::isDigit(string[end])) continue;
        return true;
    }
    return false;
}

String stringByRemovingCharactersInRep(const String& string, const CharacterSetRep* set) {
    if (!set || string.isEmpty()) return string;
    return detail::keptUnits(string, detail::NotInSet{*set});
}

String stringByRemovingWhiteSpaces(const String& string) {
    return stringByRemovingCharactersInRep(string, &whiteCharacterSetRep());
}

}  // namespace velmo
