// The charset of a page of which only the head is there.
#pragma once

#include <string_view>

#include <velmocore/platform/String.h>

namespace velmo::detail {

/// What markupCharset() gives for every page that begins with this head, in UTF-8; absent if the
/// head does not tell.
String markupCharsetOfHead(std::string_view head);

}  // namespace velmo::detail
