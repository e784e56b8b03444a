// Addresses of version 6 in a URL.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace velmo::detail {

/// The eight groups of an address.
using IPv6Groups = std::array<std::uint16_t, 8>;

/// The groups of a text, which stands without brackets; none if it is no IPv6 address: RFC 3986
/// and the URL standard agree on them.
std::optional<IPv6Groups> groupsOfIPv6(std::u16string_view text) noexcept;

inline bool isIPv6Address(std::u16string_view text) noexcept {
    return groupsOfIPv6(text).has_value();
}

}  // namespace velmo::detail
