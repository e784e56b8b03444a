// ISO-2022-JP, in which escapes switch between ASCII and pairs of bytes.
#pragma once

#include <optional>
#include <span>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>

#include "platform/Converter.h"
#include "platform/EncodingTables.h"

namespace velmo::detail {

/// Whether the row is decoded as ISO-2022-JP.
bool hasEscapedPairs(const EncodingRow& row) noexcept;

/// Decodes text of ASCII and JIS X 0208 alone, which nearly all is, without ICU, which is asked for
/// each pair once. Nothing if there is anything else in it, or not room for a unit a byte: then all
/// of it is ICU's.
VELMO_API std::optional<Decoding> decodeEscapedPairs(const EncodingRow& row, Bytes bytes,
                                                     std::span<char16_t> out);

}  // namespace velmo::detail
