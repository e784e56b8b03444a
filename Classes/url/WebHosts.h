// Hosts as the URL standard reads and writes them: domains in their ASCII form, addresses as numbers
// in their one form, and what other schemes have in the place of a host.
#pragma once

#include <string_view>

#include <velmocore/platform/String.h>

namespace velmo::detail {

/// Appends the host of a special URL. False if it is none; then nothing is appended.
bool appendDomainHost(StringBuilder& out, std::u16string_view host);

/// Whether a host of units that may stand for themselves in a URL is its own ASCII form but for its
/// case: no address, no label that says it is encoded, no dots at its end. Not all such hosts are told.
bool isPlainDomain(std::u16string_view host) noexcept;
/// The same of any host, of which only letters, digits, dots and hyphens are plain.
bool isPlainName(std::u16string_view host) noexcept;

/// Appends the host of any other URL, which may be empty. False if it is none.
bool appendOpaqueHost(StringBuilder& out, std::u16string_view host);

}  // namespace velmo::detail
