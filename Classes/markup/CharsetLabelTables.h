// What the web of today calls its encodings.
#pragma once

#include <span>
#include <string_view>

#include <velmocore/text/Encodings.h>

namespace velmo::detail {

struct CharsetLabel {
    std::string_view label;  ///< in lower case
    TextEncoding encoding;
};

/// 222 rows, sorted by label.
std::span<const CharsetLabel> charsetLabels() noexcept;

}  // namespace velmo::detail
