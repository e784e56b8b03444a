// Everything that a page points at, one by one, with what is said of it there.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include <velmocore/platform/String.h>
#include <velmocore/text/WebRules.h>

namespace velmo::tool {

enum class LinkKind : std::uint8_t { A, Area, Frame, Image, Script, Media };

std::string_view nameOf(LinkKind kind);

struct LinkDetails {
    LinkKind kind;
    String raw;    ///< the reference as it stands
    String link;   ///< normalised
    String text;   ///< of a link, or of an image in its place; absent if there is none
    String title;  ///< absent if there is none, as is
    String rel;
};

/// In page order; what is pointed at twice stands here twice. The time is linear in the page.
std::vector<LinkDetails> linkDetails(std::u16string_view page, const WebRules& web);

}  // namespace velmo::tool
