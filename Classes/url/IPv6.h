// Addresses of IPv6 as they stand between the brackets of a URL's host.
#pragma once

#include <string_view>

namespace velmo::detail {

/// Whether the text is an address by RFC 3986, 3.2.2: eight groups of one to four hexadecimal
/// digits, of which the last two may be an address of IPv4, and one run of groups may be ::.
bool isIPv6Address(std::u16string_view text) noexcept;

}  // namespace velmo::detail
