// What an editor selects at a click. It looks only at the units around the index, up to the first
// that ends the word or link on either side, so that it costs the same in a text of any length.
#include <velmocore/text/TextAtIndex.h>

#include "text/UnitClasses.h"

namespace velmo {
namespace {

using View = std::u16string_view;

Range rangeBetween(std::size_t start, std::size_t end) {
    return end > start ? Range{start, end - start} : Range::none();
}

String stringOf(View string, Range range) {
    return range.isFound() ? String(string.substr(range.location, range.length)) : String::empty();
}

/// The members around the index.
template <class Member>
Range membersAround(View string, std::uint64_t index, const Member& member) {
    if (index >= string.size()) return Range::none();
    std::size_t start = index, end = index;
    // To the right first: if the unit at the index is no member, nothing to the left counts.
    while (end < string.size() && member(string[end])) ++end;
    if (end == start) return Range::none();
    while (start > 0 && member(string[start - 1])) --start;
    return rangeBetween(start, end);
}

bool isOneOf(char16_t unit, View units) { return units.find(unit) != View::npos; }

bool isDoubleQuote(char16_t unit) { return unit >= 0x201C && unit <= 0x201F; }

/// Whether the unit in front of an address cannot belong to it.
bool stopsAddress(View string, std::size_t i, const CharacterSetRep& white) {
    const char16_t unit = string[i];
    // Two full stops end a sentence; one may stand in the name of a mailbox.
    if (unit == u'.') return i > 0 && string[i - 1] == u'.';
    return white.contains(unit) || isOneOf(unit, u"<(@[\"'|") || isDoubleQuote(unit);
}

/// Whether the unit at the end of a link or address does not belong to it.
bool isTrailer(char16_t unit, bool mail) {
    return isOneOf(unit, u"!',.:;?\"") || isDoubleQuote(unit) || (mail && isOneOf(unit, u")*|]"));
}

}  // namespace

Range getWordRangeAtIndex(View string, std::size_t index) {
    if (index == NotFound && !string.empty()) index = string.size() - 1;
    return membersAround(string, index, detail::InSet{alphaNumCharacterSetRep()});
}

String getWordAtIndex(View string, std::size_t index) {
    return stringOf(string, getWordRangeAtIndex(string, index));
}

String firstWord(View string) { return getWordAtIndex(string, 0); }
String lastWord(View string) { return getWordAtIndex(string, NotFound); }

Range getSubstringRangeAtIndex(View string, std::size_t index, const CharacterSetRep& separators) {
    return membersAround(string, index, detail::NotInSet{separators});
}

String getSubstringAtIndex(View string, std::size_t index, const CharacterSetRep& separators) {
    return stringOf(string, getSubstringRangeAtIndex(string, index, separators));
}

Range getLinkRangeAtIndex(View string, std::size_t index) {
    if (index >= string.size()) return Range::none();
    const bool mail = string[index] == u'@';
    if (mail && index == 0) return Range::none();
    const CharacterSetRep& white = whiteCharacterSetRep();

    std::size_t end = index + 1;
    while (end < string.size() && !white.contains(string[end]) && string[end] != u'>' &&
           !(mail && string[end] == u'@'))
        ++end;

    // A click on white space or on a < takes what follows it.
    std::size_t start = mail ? index : index + 1;
    const auto stops = [&](std::size_t i) {
        if (mail) return stopsAddress(string, i, white);
        return white.contains(string[i]) || string[i] == u'<';
    };
    while (start > 0 && !stops(start - 1)) --start;

    // Last, as the marks of a sentence may stand within a URL but hardly at its end.
    while (end > start && isTrailer(string[end - 1], mail)) --end;
    return rangeBetween(start, end);
}

String getLinkAtIndex(View string, std::size_t index) {
    return stringOf(string, getLinkRangeAtIndex(string, index));
}

}  // namespace velmo
