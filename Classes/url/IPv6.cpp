// A text as an IPv6 address, by the grammar of RFC 3986. It is read once from left to right; the
// groups behind a :: move to the end when it is known how many there are.
#include "url/IPv6.h"

#include <algorithm>

#include "platform/Ascii.h"

namespace velmo::detail {
namespace {

constexpr std::size_t AllGroups = IPv6Groups().size();

/// Takes the unit from the start of a text, if it stands there.
bool take(std::u16string_view& rest, char16_t unit) {
    if (!rest.starts_with(unit)) return false;
    rest.remove_prefix(1);
    return true;
}

/// Takes a number up to 255 without leading zeros.
std::optional<unsigned> takeByte(std::u16string_view& rest) {
    unsigned value = 0;
    std::size_t digits = 0;
    for (; digits < rest.size() && digits < 3; ++digits) {
        const char16_t unit = rest[digits];
        if (!ascii::isDigit(unit)) break;
        value = value * 10 + (unit - u'0');
    }
    // A leading zero is octal to some readers, so the same text would be two addresses.
    if (digits == 0 || value > 255 || (digits > 1 && rest[0] == u'0')) return std::nullopt;
    rest.remove_prefix(digits);
    return value;
}

std::optional<std::uint32_t> valueOfIPv4(std::u16string_view rest) {
    std::uint32_t value = 0;
    for (int byte = 0; byte < 4; ++byte) {
        if (byte > 0 && !take(rest, u'.')) return std::nullopt;
        const auto taken = takeByte(rest);
        if (!taken) return std::nullopt;
        value = value << 8 | *taken;
    }
    return rest.empty() ? std::optional(value) : std::nullopt;
}

/// How many hexadecimal digits the text begins with, up to four.
std::size_t lengthOfGroup(std::u16string_view text) {
    std::size_t length = 0;
    while (length < text.size() && length < 4 && ascii::hexValue(text[length]) < 16) ++length;
    return length;
}

class Reader {
public:
    explicit Reader(std::u16string_view text) : rest_(text) {}

    std::optional<IPv6Groups> read() {
        bool needsGroup = !takeGap(2);
        // Each round takes a group and the colons after it; a single colon must have a group to
        // follow.
        while (needsGroup || !rest_.empty()) {
            const std::size_t length = lengthOfGroup(rest_);
            if (length < rest_.size() && rest_[length] == u'.') {
                if (!addIPv4()) return std::nullopt;
                break;
            }
            if (length == 0 || !addGroup(length)) return std::nullopt;
            if (rest_.empty()) break;
            if (!take(rest_, u':')) return std::nullopt;
            needsGroup = !(rest_.starts_with(u':') && gap_ == None && takeGap(1));
        }
        return finished();
    }

private:
    static constexpr std::size_t None = AllGroups + 1;

    /// Takes the colons that stand for groups of zero.
    bool takeGap(std::size_t colons) {
        if (!rest_.starts_with(std::u16string_view(u"::").substr(0, colons))) return false;
        rest_.remove_prefix(colons);
        gap_ = count_;
        return true;
    }
    bool add(std::uint32_t group) {
        if (count_ == AllGroups) return false;
        groups_[count_++] = static_cast<std::uint16_t>(group);
        return true;
    }
    bool addGroup(std::size_t length) {
        std::uint32_t value = 0;
        for (const char16_t digit : rest_.substr(0, length))
            value = value << 4 | ascii::hexValue(digit);
        rest_.remove_prefix(length);
        return add(value);
    }
    /// An IPv4 address at the end takes the place of two groups.
    bool addIPv4() {
        const auto value = valueOfIPv4(rest_);
        return value && add(*value >> 16) && add(*value & 0xFFFF);
    }
    std::optional<IPv6Groups> finished() {
        if (gap_ == None) return count_ == AllGroups ? std::optional(groups_) : std::nullopt;
        if (count_ == AllGroups) return std::nullopt;
        // Those behind the last group are zero.
        const auto gap = groups_.begin() + static_cast<std::ptrdiff_t>(gap_);
        std::rotate(gap, groups_.begin() + static_cast<std::ptrdiff_t>(count_), groups_.end());
        return groups_;
    }

    std::u16string_view rest_;
    IPv6Groups groups_{};
    std::size_t count_ = 0, gap_ = None;
};

}  // namespace

std::optional<IPv6Groups> groupsOfIPv6(std::u16string_view text) noexcept {
    return Reader(text).read();
}

}  // namespace velmo::detail
