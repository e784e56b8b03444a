// The wildcard language for single strings: the operations are thin, the matchers stand in
// WildcardMatch.h and the normalising pass in WildcardShape.cpp.
//
// Two languages share one matcher. The plain one has * and ? only; the other one, called Unix, has
// sets in brackets too. Which one it is, and how units are folded, are template arguments, so that
// the loop over the units has no branch for either.
#include <velmocore/query/Wildcards.h>

#include <algorithm>

#include <velmocore/words/Separators.h>
#include <velmocore/words/Words.h>

#include "query/WildcardMatch.h"
#include "query/WildcardShape.h"
#include "text/SmallBuffer.h"
#include "text/UnitFold.h"

namespace velmo {
namespace {

using detail::NoFold;
using detail::PlainLanguage;
using detail::TableFold;
using detail::UnixLanguage;

template <class Language>
bool isLike(std::u16string_view string, std::u16string_view wildcard) {
    if (string.empty() || wildcard.empty()) return false;
    return wildcard == u"*" || detail::matchesWildcard<Language>(string, wildcard, NoFold{});
}

template <class Language>
bool isCaseInsensitiveLike(std::u16string_view string, std::u16string_view wildcard) {
    if (string.empty() || wildcard.empty()) return false;
    const ConversionTable& upper = upperCharsTable();
    detail::SmallBuffer<char16_t> folded(wildcard.size());
    for (std::size_t i = 0; i < wildcard.size(); ++i) folded[i] = upper[wildcard[i]];
    return detail::matchesWildcard<Language>(string, {folded.data(), folded.size()},
                                             TableFold{upper});
}

/// The units of the language must not cut a wildcard in two.
CharacterSetRep makeWildcardSeparators() {
    CharacterSetRep set = defaultWordSeparators();
    for (char16_t unit : {u'*', u'?', u'[', u']'}) set.remove(unit);
    return set;
}

}  // namespace

bool stringMatchesWildcard(std::u16string_view string, std::u16string_view wildcard) {
    return detail::matchesWildcard<PlainLanguage>(string, wildcard, NoFold{});
}

bool stringMatchesWildcardUsingUnicharTable(std::u16string_view string,
                                            std::u16string_view wildcard,
                                            const ConversionTable& table) {
    return detail::matchesWildcard<PlainLanguage>(string, wildcard, TableFold{table});
}

bool stringMatchesUnixWildcard(std::u16string_view string, std::u16string_view wildcard) {
    return detail::matchesWildcard<UnixLanguage>(string, wildcard, NoFold{});
}

bool stringMatchesUnixWildcardUsingUnicharTable(std::u16string_view string,
                                                std::u16string_view wildcard,
                                                const ConversionTable& table) {
    return detail::matchesWildcard<UnixLanguage>(string, wildcard, TableFold{table});
}

bool isLikeWildcard(std::u16string_view string, std::u16string_view wildcard) {
    return isLike<PlainLanguage>(string, wildcard);
}

bool isCaseInsensitiveLikeWildcard(std::u16string_view string, std::u16string_view wildcard) {
    return isCaseInsensitiveLike<PlainLanguage>(string, wildcard);
}

bool isLikeUnixWildcard(std::u16string_view string, std::u16string_view wildcard) {
    return isLike<UnixLanguage>(string, wildcard);
}

bool isCaseInsensitiveLikeUnixWildcard(std::u16string_view string, std::u16string_view wildcard) {
    return isCaseInsensitiveLike<UnixLanguage>(string, wildcard);
}

void prepareWildcardUsingUnicharTable(std::u16string& wildcard, const ConversionTable& table) {
    for (char16_t& unit : wildcard) unit = table[unit];
}

OptimizedWildcard optimizeWildcard(std::u16string& wildcard, std::size_t minCharacters) {
    const detail::WildcardShape shape =
        detail::shapeWildcard(wildcard.data(), wildcard.size(), minCharacters);
    wildcard.resize(shape.length);
    return shape.optimized;
}

WildcardType wildcardType(std::u16string_view wildcard) {
    if (wildcard.empty()) return WildcardType::Plain;
    detail::SmallBuffer<char16_t> units(wildcard.size());
    std::ranges::copy(wildcard, units.data());
    return detail::shapeWildcard(units.data(), units.size(), 1).optimized.type;
}

std::size_t wildcardLength(std::u16string_view wildcard) { return minWildcardLen(wildcard); }

std::size_t minWildcardLen(std::u16string_view wildcard) {
    std::uint64_t elements = 0;
    for (std::size_t at = 0; at < wildcard.size(); at = detail::afterElement(wildcard, at))
        elements += wildcard[at] != u'*';
    return elements;
}

std::size_t maxWildcardLen(std::u16string_view wildcard) {
    std::uint64_t elements = 0;
    for (std::size_t at = 0; at < wildcard.size(); at = detail::afterElement(wildcard, at)) {
        if (wildcard[at] == u'*') return UnboundedWildcardLength;
        ++elements;
    }
    return elements;
}

const ConversionTable* unicharTableForWildcardComparison(WildcardComparison comparison) {
    switch (comparison & WildcardComparison::Insensitive) {
        case WildcardComparison::CaseInsensitive:
            return &upperCharsTable();
        case WildcardComparison::DiacriticsInsensitive:
            return &umlautsCharsTable();
        case WildcardComparison::Insensitive:
            return &upperUmlautsCharsTable();
        default:
            return nullptr;
    }
}

bool isUnicharTablePartOfConversionTable(const ConversionTable* table,
                                         const ConversionTable* conversion) {
    if (!table || !conversion) return false;
    if (table == conversion) return true;
    // Told by the tables' addresses: each is one object for the whole process.
    const bool isLower = conversion == &lowerUmlautsCharsTable();
    const bool isUpper = conversion == &upperUmlautsCharsTable();
    if (table == &lowerCharsTable()) return isLower;
    if (table == &upperCharsTable()) return isUpper;
    return table == &umlautsCharsTable() && (isLower || isUpper);
}

const CharacterSetRep& defaultWildcardSeparators() {
    static const CharacterSetRep set = makeWildcardSeparators();
    return set;
}

std::vector<String> wordsUsingWildcardSeparation(const String& text) {
    return separatedWildcardWords(text).words;
}

SeparatedWords separatedWildcardWords(const String& text) {
    return separatedWords(text, {.separators = &defaultWildcardSeparators(), .wildcard = true});
}

std::size_t numberOfWordsUsingWildcardSeparation(std::u16string_view text) {
    return numberOfWordsUsingSeparators(text, &defaultWildcardSeparators(), 1, true);
}

void initWildcardSeparators() { (void)defaultWildcardSeparators(); }

void initWildcardTables() { initUpperUmlautsCharsTable(); }

void initSeparatorsAndTables() {
    initSeparators();
    initWildcardSeparators();
    initWildcardTables();
    (void)defaultSentenceSeparators();
    for (const CharacterSetRep& (*set)() :
         {emptyCharacterSetRep, spaceCharacterSetRep, whiteCharacterSetRep, alphaCharacterSetRep,
          alphaNumCharacterSetRep, digitCharacterSetRep, lowerCharacterSetRep,
          upperCharacterSetRep})
        set();
    for (const ConversionTable& (*table)() :
         {lowerCharsTable, upperCharsTable, umlautsCharsTable, lowerUmlautsCharsTable})
        table();
}

}  // namespace velmo
