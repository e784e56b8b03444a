// Whether a text is an IPv6 address, by the grammar of RFC 3986. It is read once from left to
// right; only the number of groups and whether a :: stood for some need to be known at the end.
#include "url/IPv6.h"

#include "platform/Ascii.h"

namespace velmo::detail {
namespace {

constexpr int AllGroups = 8;

/// Takes the unit from the start of a text, if it stands there.
bool take(std::u16string_view& rest, char16_t unit) {
    if (!rest.starts_with(unit)) return false;
    rest.remove_prefix(1);
    return true;
}

/// Takes a number up to 255 without leading zeros.
bool takeByte(std::u16string_view& rest) {
    unsigned value = 0;
    std::size_t digits = 0;
    for (; digits < rest.size() && digits < 3; ++digits) {
        const char16_t unit = rest[digits];
        if (!ascii::isDigit(unit)) break;
        value = value * 10 + (unit - u'0');
    }
    // A leading zero is octal to some readers, so the same text would be two addresses.
    if (digits == 0 || value > 255 || (digits > 1 && rest[0] == u'0')) return false;
    rest.remove_prefix(digits);
    return true;
}

bool isIPv4Address(std::u16string_view rest) {
    for (int byte = 0; byte < 4; ++byte)
        if ((byte > 0 && !take(rest, u'.')) || !takeByte(rest)) return false;
    return rest.empty();
}

/// How many hexadecimal digits the text begins with, up to four.
std::size_t lengthOfGroup(std::u16string_view text) {
    std::size_t length = 0;
    while (length < text.size() && length < 4 && ascii::hexValue(text[length]) < 16) ++length;
    return length;
}

}  // namespace

bool isIPv6Address(std::u16string_view text) noexcept {
    std::u16string_view rest = text;
    int groups = 0;
    bool isShortened = rest.starts_with(u"::");
    if (isShortened) rest.remove_prefix(2);
    // Each round takes a group and the colons after it; a single colon must have a group to follow.
    for (bool needsGroup = !isShortened; needsGroup || !rest.empty();) {
        const std::size_t length = lengthOfGroup(rest);
        if (length < rest.size() && rest[length] == u'.') {
            if (!isIPv4Address(rest)) return false;
            // An IPv4 address at the end takes the place of two groups.
            groups += 2;
            break;
        }
        if (length == 0) return false;
        rest.remove_prefix(length);
        ++groups;
        needsGroup = take(rest, u':');
        if (!needsGroup) {
            if (!rest.empty()) return false;
        } else if (take(rest, u':')) {
            if (isShortened) return false;
            isShortened = true;
            needsGroup = false;
        }
    }
    return isShortened ? groups < AllGroups : groups == AllGroups;
}

}  // namespace velmo::detail
