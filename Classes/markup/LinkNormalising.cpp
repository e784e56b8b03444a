// Nearly all references of a page are normal already, which one look for a suspect unit tells, and
// are then given back where they stand. The others are copied once, without the units that are
// removed everywhere; every later step only shortens the copy, at its ends or in its place.
//
// The order of the steps is part of the result: what one of them uncovers, a later one may remove.
#include <velmocore/markup/LinkNormalising.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

#include <velmocore/markup/Entities.h>
#include <velmocore/text/CharacterSets.h>
#include <velmocore/text/Trimming.h>
#include <velmocore/url/PercentEscapes.h>

#include "markup/NormalizedLink.h"
#include "text/ByteScan.h"
#include "text/Keyword.h"
#include "url/Escapes.h"

namespace velmo {
namespace {

using namespace detail;

using Units = std::u16string_view;

/// The first unit that normalising may touch: all but printable ASCII, and " & and \ of that.
const char16_t* findSuspect(const char16_t* from, const char16_t* to) {
    const auto isSuspect = [](char16_t unit) {
        return unit <= u' ' || unit > u'~' || unit == u'"' || unit == u'&' || unit == u'\\';
    };
#if defined(__SSE2__)
    const auto mark = [](__m128i block) {
        const __m128i plain = scan::inRange(block, u'!', u'~');
        const __m128i special =
            _mm_or_si128(_mm_or_si128(scan::equalTo(block, u'"'), scan::equalTo(block, u'&')),
                         scan::equalTo(block, u'\\'));
        return _mm_or_si128(special, _mm_xor_si128(plain, _mm_set1_epi16(-1)));
    };
    return scan::findWhere(from, to, mark, isSuspect);
#else
    return std::find_if(from, to, isSuspect);
#endif
}

const char* findSuspect(const char* from, const char* to) {
    const auto isSuspect = [](char byte) {
        return byte <= ' ' || byte > '~' || byte == '"' || byte == '&' || byte == '\\';
    };
#if defined(__SSE2__)
    const auto mark = [](__m128i block) {
        const auto equalTo = [block](char byte) {
            return _mm_cmpeq_epi8(block, _mm_set1_epi8(byte));
        };
        // Bytes are signed, so that those outside ASCII are low too.
        const __m128i low = _mm_cmplt_epi8(block, _mm_set1_epi8('!'));
        const __m128i special = _mm_or_si128(_mm_or_si128(equalTo('"'), equalTo('&')),
                                             _mm_or_si128(equalTo('\\'), equalTo('\x7F')));
        return _mm_or_si128(special, low);
    };
    return scan::findWhere(from, to, mark, isSuspect);
#else
    return std::find_if(from, to, isSuspect);
#endif
}

/// Whether an escape ends the link that no link means to end with.
template <class Unit>
bool endsWithStrayEscape(std::basic_string_view<Unit> link) {
    if (link.size() < 3 || link[link.size() - 3] != '%') return false;
    const char16_t last[] = {u'%', static_cast<char16_t>(link[link.size() - 2]),
                             static_cast<char16_t>(link[link.size() - 1])};
    switch (escapes::escapeAt(Units(last, 3), 0)) {
        case u'\t':
        case u'\n':
        case u'\r':
        case u' ':
        case u'"':
        case u'\'':
        case u'>':
        case u'\\':
        case u']':
            return true;
        default:
            return false;
    }
}

template <class Unit>
bool isNormal(std::basic_string_view<Unit> value, LinkReading reading) {
    const Unit* const end = value.data() + value.size();
    if (findSuspect(value.data(), end) != end) return false;
    // With decoding each escape may change the link; without it only one at the end may.
    if (reading.decodePercentEscapes) return value.find(Unit('%')) == value.npos;
    return reading.web.linkEscapes || !endsWithStrayEscape(value);
}

/// Cuts what stands at both ends, as often as it does, while at least two of it are left.
Units withoutPairs(Units link, Units end) {
    while (link.size() >= 2 * end.size() && link.starts_with(end) && link.ends_with(end))
        link = link.substr(end.size(), link.size() - 2 * end.size());
    return link;
}

Units withoutWhiteEnds(Units link, const CharacterSetRep& white) {
    while (!link.empty() && white.contains(link.back())) link.remove_suffix(1);
    while (!link.empty() && white.contains(link.front())) link.remove_prefix(1);
    return link;
}

/// A number at the start of a text, as "1.5e3"; 0 if there is none.
double leadingNumber(Units text) {
    const CharacterSetRep& white = whiteCharacterSetRep();
    std::size_t i = 0;
    while (i < text.size() && white.contains(text[i])) ++i;
    if (i < text.size() && text[i] == u'+') ++i;
    std::string digits;
    for (; i < text.size() && Units(u"0123456789.eE+-").find(text[i]) != Units::npos; ++i)
        digits += static_cast<char>(text[i]);
    double value = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return result.ec == std::errc() ? value : 0;
}

}  // namespace

NormalizedLink::NormalizedLink(Units value, LinkReading reading) {
    if (value.empty()) return;
    link_ = isNormal(value, reading) ? value : normalized(value, reading);
    if (link_.empty()) link_ = {};
}

bool detail::isNormalLink(std::string_view ascii, LinkReading reading) {
    return !ascii.empty() && isNormal(ascii, reading);
}

Units NormalizedLink::normalized(Units value, LinkReading reading) {
    // Room for the whole value, as every step after the copy only shortens.
    if (value.size() > SmallSize) large_ = std::make_unique_for_overwrite<char16_t[]>(value.size());
    char16_t* const units = large_ ? large_.get() : small_;
    const CharacterSetRep& white = whiteCharacterSetRep();

    char16_t* end = units;
    bool hasBackslash = false, hasQuery = false, hasText = false;
    for (char16_t unit : value) {
        if (unit == u'\t' || isFeedUnit(unit)) continue;
        hasBackslash |= unit == u'\\';
        hasQuery |= unit == u'?';
        hasText = hasText || !white.contains(unit);
        *end++ = unit;
    }
    if (!hasText) return {};

    // All that follows shortens the link in its place.
    Units link(units, static_cast<std::size_t>(end - units));
    const auto writable = [&] { return units + (link.data() - units); };
    if (hasBackslash) {
        link = withoutPairs(link, u"\\\"");
        if (!hasQuery) std::replace(writable(), writable() + link.size(), u'\\', u'/');
    }
    if (link.size() >= 4 && link.find(u'&') != link.npos) {
        const std::size_t length =
            convertEntities2Characters(writable(), writable(), 0, link.size(),
                                       {.onlyNumericEntities = !reading.web.references,
                                        .inAttribute = true,
                                        .web = reading.web});
        link = link.substr(0, length);
    }
    // After the entities: one of them may stand for the % of an escape.
    while (!reading.web.linkEscapes && endsWithStrayEscape(link)) link.remove_suffix(3);
    if (reading.decodePercentEscapes)
        link = link.substr(0, convertPercentEscapesOfURL(writable(), link.size(), true));
    // White space goes first, as it may stand outside the quote marks.
    return withoutPairs(withoutWhiteEnds(link, white), u"\"");
}

String normalizedStringURL(Units value, bool decodePercentEscapes) {
    return NormalizedLink(value, {.decodePercentEscapes = decodePercentEscapes}).view();
}

String normalizedStringURL(Units value, const WebRules& web) {
    return NormalizedLink(value, {.web = web}).view();
}

String normalizedRelLink(Units value, const WebRules& web) {
    const NormalizedLink normalized(value, {.web = web});
    const Units link = normalized.view();
    if (link.empty() || web.linkTags || link[0] == u'.' || link[0] == u'/' ||
        link.find(u"://") != link.npos)
        return link;
    StringBuilder out(link.size() + 1);
    out.append(u'/');
    out.append(link);
    return out.finish();
}

String normalizedHtmlString(const String& string, const WebRules& web) {
    return stringByTrimmingWhiteSpaces(
        stringByConvertingEntitiesToCharacters(string, {.web = web}));
}

double revisitAfter(Units value) {
    const double number = leadingNumber(value);
    if (!(number > 0)) return 0;
    if (keyword::contains(value, "HOUR")) return number * 3600;
    if (keyword::contains(value, "DAY")) return number * 86400;
    return keyword::contains(value, "WEEK") ? number * 604800 : number;
}

}  // namespace velmo
