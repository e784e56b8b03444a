// Looking through the first bytes of a page for its charset before any encoding is known, in the
// steps of the HTML standard ("prescan a byte stream to determine its encoding").
#pragma once

#include <string>

#include <velmocore/platform/Bytes.h>

namespace velmo::detail {

/// So many bytes of a page are looked at.
inline constexpr std::size_t PrescannedBytes = 1024;

/// The first label of a meta tag that is one, as it stands; empty if there is none.
std::string labelOfMetaTags(Bytes head);

/// The label that the XML declaration at the start names; empty if there is none.
std::string labelOfXMLDeclaration(Bytes head);

}  // namespace velmo::detail
