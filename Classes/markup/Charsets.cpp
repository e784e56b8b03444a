// What a charset's name means, however it is spelt. Names are reduced to their letters and digits,
// then the first number in them decides, and only what no number settled goes through tests of the
// name itself, in their order. So new misspellings mostly mean the right thing without a new row.
#include <velmocore/markup/Charsets.h>

#include <algorithm>
#include <optional>
#include <string>

#include <velmocore/platform/Log.h>
#include <velmocore/text/CharacterSets.h>
#include <velmocore/text/ConversionTables.h>

#include "markup/CharsetTables.h"
#include "platform/Ascii.h"
#include "platform/EncodingNumbers.h"
#include "text/Keyword.h"

namespace velmo {
namespace {

using Name = std::u16string_view;
using detail::ascii::isDigit;

std::u16string normalized(Name name) {
    const CharacterSetRep& kept = alphaNumCharacterSetRep();
    const ConversionTable& lower = lowerCharsTable();
    std::u16string result;
    // "ISO-8859-1", "iso_8859_1" and "iso 8859.1" are one name.
    for (char16_t unit : name)
        if (kept.contains(unit)) result += lower[unit];
    return result;
}

/// The first number in the name; no charset has one beyond this limit.
std::optional<std::uint32_t> firstNumber(Name name) {
    constexpr std::uint32_t Limit = 100'000'000;
    const auto start = std::ranges::find_if(name, isDigit<char16_t>);
    if (start == name.end()) return std::nullopt;
    std::uint32_t number = 0;
    for (auto digit = start; digit != name.end() && isDigit(*digit); ++digit)
        // Cut at each digit, so that no number overflows into one that means something.
        number = std::min(number * 10 + (*digit - u'0'), Limit);
    return number;
}

/// The encoding that a number decides on; UnknownTextEncoding if it does not.
TextEncoding encodingOfNumber(std::uint32_t number, Name name) {
    // More misspellings of 8859-1.
    if (number >= 885101 && number <= 885391 && number % 10 == 1) return ISOLatin1TextEncoding;
    if (number == 2022) {
        if (name == u"iso2022jp1") return detail::encoding::ISO2022JP1;
        if (name == u"iso2022jp2") return detail::encoding::ISO2022JP2;
        if (name == u"iso2022jp3") return detail::encoding::ISO2022JP3;
        return detail::encoding::ISO2022JP;
    }
    const auto numbers = detail::charsetNumbers();
    const auto hit = std::ranges::find(numbers, number, &detail::CharsetNumber::number);
    return hit != numbers.end() ? hit->encoding : UnknownTextEncoding;
}

TextEncoding firstMatch(std::span<const detail::CharsetName> tests, Name name) {
    for (const detail::CharsetName& test : tests) {
        if (!test.matches(name)) continue;
        return test.encoding == detail::MacScript ? macEncoding(name.substr(test.text.size()))
                                                  : test.encoding;
    }
    return UnknownTextEncoding;
}

/// Names that are wrong for reasons that no one need be told of.
bool isLeftOver(Name name) {
    return name.empty() || Name(u"%/0<>").find(name.front()) != Name::npos ||
           detail::keyword::equals(name, "AUTO");
}

}  // namespace

TextEncoding macEncoding(std::u16string_view rest) {
    return rest.empty() ? 0 : firstMatch(detail::macScriptNames(), rest);
}

TextEncoding charset2CFStringEncoding(std::u16string_view name) {
    // Most names hold the number of a standard or a code page, by which far more misspellings are
    // known than could be listed.
    const std::u16string normal = normalized(name);
    // No name of an encoding is shorter.
    if (normal.size() < 3) return UnknownTextEncoding;
    if (const auto number = firstNumber(normal)) {
        const TextEncoding encoding = encodingOfNumber(*number, normal);
        if (encoding != UnknownTextEncoding) return encoding;
    }
    return firstMatch(detail::charsetNames(), normal);
}

StringEncoding charset2NSStringEncoding(std::u16string_view name) {
    const TextEncoding encoding = charset2CFStringEncoding(name);
    if (encoding != UnknownTextEncoding && isEncodingAvailable(encoding))
        return stringEncodingOf(encoding);
    if (!isLeftOver(name)) log("Unknown/Unsupported encoding: " + utf8(name));
    return UnknownStringEncoding;
}

}  // namespace velmo
