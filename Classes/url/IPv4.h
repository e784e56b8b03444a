// Addresses of version 4 in all forms that the URL standard takes: parts may be in octal or
// hexadecimal, and the last one may stand for several bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include <velmocore/platform/String.h>

namespace velmo::detail {

/// Whether the last label, that is not an empty one at the end, is a number: then a host is an
/// address or nothing.
bool endsInNumber(std::u16string_view host) noexcept;

/// The address of a host, as 0x7f.1 or 017700000001; none if it is no address.
std::optional<std::uint32_t> addressOfIPv4(std::u16string_view host) noexcept;

/// Appends four numbers with full stops between.
void appendIPv4(StringBuilder& out, std::uint32_t address);

}  // namespace velmo::detail
