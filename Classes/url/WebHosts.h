// Hosts as the URL standard reads and writes them: domains in their ASCII form, addresses as numbers
// in their one form, and what other schemes have in the place of a host.
#pragma once

#include <string_view>

#include <velmocore/platform/String.h>

namespace velmo::detail {

/// Appends the host of a special URL. False if it is none; then nothing is appended.
bool appendDomainHost(StringBuilder& out, std::u16string_view host);

/// Appends the host of any other URL, which may be empty. False if it is none.
bool appendOpaqueHost(StringBuilder& out, std::u16string_view host);

}  // namespace velmo::detail
