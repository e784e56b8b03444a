#include "url/IPv4.h"

#include <algorithm>
#include <string>

#include "platform/Ascii.h"

namespace velmo::detail {
namespace {

using Units = std::u16string_view;

/// Above all addresses; larger numbers are as good as this one.
constexpr std::uint64_t TooLarge = std::uint64_t(1) << 32;

/// A number with 0x or 0 in front of one that is not decimal. "0x" alone is 0.
std::optional<std::uint64_t> numberOf(Units part) {
    if (part.empty()) return std::nullopt;
    unsigned base = 10;
    if (part.size() > 1 && part[0] == u'0') {
        base = (part[1] | 0x20) == u'x' ? 16 : 8;
        part.remove_prefix(base == 16 ? 2 : 1);
    }
    std::uint64_t value = 0;
    for (const char16_t unit : part) {
        const unsigned digit = ascii::hexValue(unit);
        if (digit >= base) return std::nullopt;
        value = std::min(value * base + digit, TooLarge);
    }
    return value;
}

/// The host without one full stop at its end.
Units withoutLastDot(Units host) {
    if (host.size() > 1 && host.ends_with(u'.')) host.remove_suffix(1);
    return host;
}

}  // namespace

bool endsInNumber(Units host) noexcept {
    host = withoutLastDot(host);
    const Units last = host.substr(host.rfind(u'.') + 1);
    if (last.empty() || !ascii::isDigit(last[0])) return false;
    return std::all_of(last.begin(), last.end(), ascii::isDigit<char16_t>) ||
           numberOf(last).has_value();
}

std::optional<std::uint32_t> addressOfIPv4(Units host) noexcept {
    Units rest = withoutLastDot(host);
    std::uint64_t address = 0;
    for (int part = 0; part < 4; ++part) {
        const std::size_t dot = std::min(rest.find(u'.'), rest.size());
        const auto number = numberOf(rest.substr(0, dot));
        if (!number) return std::nullopt;
        if (dot == rest.size()) {
            // The last one takes the bytes that are left.
            const int bits = 32 - 8 * part;
            if (*number >> bits) return std::nullopt;
            return static_cast<std::uint32_t>(address << bits | *number);
        }
        if (*number > 255) return std::nullopt;
        address = address << 8 | *number;
        rest.remove_prefix(dot + 1);
    }
    return std::nullopt;
}

void appendIPv4(StringBuilder& out, std::uint32_t address) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        for (const char digit : std::to_string(address >> shift & 0xFF))
            out.append(static_cast<char16_t>(digit));
        if (shift) out.append(u'.');
    }
}

}  // namespace velmo::detail
