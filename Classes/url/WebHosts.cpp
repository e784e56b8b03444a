// Nearly all hosts of links are in ASCII, and need no more than lower case: they are read once and
// copied. All others go through a string for each step of the standard: escapes, UTF-8, UTS 46.
#include "url/WebHosts.h"

#include <algorithm>
#include <array>
#include <string>

#include "platform/Ascii.h"
#include "platform/DomainNames.h"
#include "platform/Surrogates.h"
#include "text/UnitScan.h"
#include "url/Escapes.h"
#include "url/IPv4.h"
#include "url/IPv6.h"
#include "url/Reductions.h"
#include "url/WebEscapes.h"

namespace velmo::detail {
namespace {

using Units = std::u16string_view;

constexpr std::array<bool, 128> unitsOf(Units units, bool controls) {
    std::array<bool, 128> table{};
    for (char16_t unit = 0; unit < 128; ++unit)
        table[unit] =
            units.find(unit) != Units::npos || (controls && (unit < 0x20 || unit == 0x7F));
    return table;
}
constexpr Units ForbiddenUnits(u"\0\t\n\r #/:<>?@[\\]^|", 17);
constexpr auto ForbiddenInHost = unitsOf(ForbiddenUnits, false);
constexpr auto ForbiddenInDomain = unitsOf(u" #%/:<>?@[\\]^|", true);

bool has(Units units, const std::array<bool, 128>& table) {
    return std::any_of(units.begin(), units.end(),
                       [&](char16_t unit) { return unit < table.size() && table[unit]; });
}

/// Whether the domain is not its own ASCII form but for its case: it has other letters, or labels
/// that say they are encoded.
bool isForeign(Units host) {
    for (std::size_t i = 0; i < host.size(); ++i) {
        if (host[i] >= 0x80) return true;
        // Wherever it stands: what is looked at in vain is only slower.
        if (host[i] == u'-' && i >= 3 && (host[i - 3] | 0x20) == u'x' &&
            (host[i - 2] | 0x20) == u'n' && host[i - 1] == u'-')
            return true;
    }
    return false;
}

/// The host without escapes. Bytes that are no UTF-8 become U+FFFD, which no domain has.
String withoutEscapes(Units host) {
    std::string bytes;
    const std::string raw = utf8(host);
    for (std::size_t i = 0; i < raw.size(); ++i) {
        const unsigned high = i + 2 < raw.size() ? ascii::hexValue(raw[i + 1]) : 16;
        const unsigned low = high < 16 ? ascii::hexValue(raw[i + 2]) : 16;
        const bool isEscape = raw[i] == '%' && low < 16;
        bytes += isEscape ? static_cast<char>(high << 4 | low) : raw[i];
        if (isEscape) i += 2;
    }
    return String::fromUTF8(bytes);
}

void appendLower(StringBuilder& out, Units units) {
    char16_t* const write = out.prepare(units.size());
    std::transform(units.begin(), units.end(), write, ascii::toLower<char16_t>);
    out.commit(units.size());
}

/// "[", the groups with the longest run of zeros as ::, "]".
void appendIPv6(StringBuilder& out, const IPv6Groups& groups) {
    std::size_t gap = 0, gapLength = 1;  // a single zero is written
    for (std::size_t i = 0; i < groups.size(); ++i) {
        std::size_t length = 0;
        while (i + length < groups.size() && groups[i + length] == 0) ++length;
        if (length > gapLength) gap = i, gapLength = length;
        i += length;
    }
    if (gapLength == 1) gap = groups.size();
    out.append(u'[');
    for (std::size_t i = 0; i < groups.size(); ++i) {
        if (i == gap) {
            out.append(i == 0 ? Units(u"::") : Units(u":"));
            i += gapLength - 1;
            continue;
        }
        for (int shift = groups[i] > 0xFFF  ? 12
                         : groups[i] > 0xFF ? 8
                         : groups[i] > 0xF  ? 4
                                            : 0;
             shift >= 0; shift -= 4)
            out.append(u"0123456789abcdef"[groups[i] >> shift & 15]);
        if (i + 1 < groups.size()) out.append(u':');
    }
    out.append(u']');
}

/// A host that begins with a bracket.
bool appendBracketed(StringBuilder& out, Units host) {
    if (!host.ends_with(u']') || host.size() < 2) return false;
    const auto groups = groupsOfIPv6(host.substr(1, host.size() - 2));
    if (groups) appendIPv6(out, *groups);
    return groups.has_value();
}

/// A domain in ASCII, of any case.
bool appendASCII(StringBuilder& out, Units domain) {
    if (domain.empty() || has(domain, ForbiddenInDomain)) return false;
    if (!endsInNumber(domain)) {
        appendLower(out, domain);
        return true;
    }
    const auto address = addressOfIPv4(domain);
    if (address) appendIPv4(out, *address);
    return address.has_value();
}

/// Whether a host does not end in a dot, nor in a number.
bool endsAsDomain(Units host) {
    return !host.empty() && host.back() != u'.' && !ascii::isDigit(host[host.rfind(u'.') + 1]);
}

bool hasDoubledHyphen(Units host) {
    const char16_t* const end = host.data() + host.size();
    return scan::findDoubled(host.data(), end, u'-') != end;
}

/// Whether all of a host are letters, digits, dots and hyphens, and whether there are any of these.
bool areNameUnits(Units host, bool& hasHyphen) {
    // What else lies between - and 9 is the slash, which no host has.
#if defined(__SSE2__)
    constexpr std::size_t Block = scan::BlockUnits;
    if (host.size() >= Block) {
        __m128i all = _mm_set1_epi16(-1), hyphens = _mm_setzero_si128();
        const auto look = [&](std::size_t at) {
            const __m128i units = scan::loadBlock(host.data() + at);
            const __m128i lower = _mm_or_si128(units, _mm_set1_epi16(0x20));
            const __m128i names =
                _mm_or_si128(scan::inRange(lower, u'a', u'z'), scan::inRange(units, u'-', u'9'));
            all = _mm_and_si128(all, names);
            hyphens = _mm_or_si128(hyphens, scan::equalTo(units, u'-'));
        };
        for (std::size_t i = 0; i + Block < host.size(); i += Block) look(i);
        look(host.size() - Block);
        hasHyphen = _mm_movemask_epi8(hyphens) != 0;
        return _mm_movemask_epi8(all) == 0xFFFF;
    }
#endif
    for (const char16_t unit : host) {
        if (!ascii::isLetter(unit) && !(unit >= u'-' && unit <= u'9')) return false;
        hasHyphen = hasHyphen || unit == u'-';
    }
    return true;
}

}  // namespace

bool appendDomainHost(StringBuilder& out, Units host) {
    if (host.starts_with(u'[')) return appendBracketed(out, host);
    const bool hasEscapes = host.find(u'%') != Units::npos;
    if (!hasEscapes && !isForeign(host)) return appendASCII(out, host);
    const String domain = withoutEscapes(host);
    return appendASCII(out, isForeign(domain) ? domains::toASCII(domain) : domain);
}

bool isPlainName(Units host) noexcept {
    bool hasHyphen = false;
    return areNameUnits(host, hasHyphen) && endsAsDomain(host) &&
           !(hasHyphen && hasDoubledHyphen(host));
}

bool isPlainDomain(Units host) noexcept { return endsAsDomain(host) && !hasDoubledHyphen(host); }

bool appendOpaqueHost(StringBuilder& out, Units host) {
    if (host.starts_with(u'[')) return appendBracketed(out, host);
    if (has(host, ForbiddenInHost)) return false;
    appendEncoded(out, host, EncodeSet::Control);
    return true;
}

}  // namespace velmo::detail
