// The encodings that ICU converts as streams of bytes.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include <velmocore/platform/Bytes.h>

#include "platform/Converter.h"
#include "platform/EncodingTables.h"

namespace velmo::detail {

/// Through the decoder of the row, with its own bytes and repairs.
VELMO_API Decoding decodeWithIcu(const EncodingRow& row, Bytes bytes, std::span<char16_t> out);

/// Through the encoder of the row.
std::optional<Data> encodeWithIcu(const EncodingRow& row, std::u16string_view text, bool lossy);

}  // namespace velmo::detail
