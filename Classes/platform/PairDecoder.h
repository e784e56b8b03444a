// Decoding of the East Asian encodings in which a character has one or two bytes as a rule.
#pragma once

#include <span>

#include "platform/Converter.h"
#include "platform/EncodingTables.h"

namespace velmo::detail {

/// Several times as fast as ICU, of which it keeps the answers: a pair of bytes is asked for
/// once in the life of the process. Longer characters, pairs of units and broken bytes are
/// left to ICU each time.
Decoding decodePairs(const EncodingRow& row, Bytes bytes, std::span<char16_t> out);

}  // namespace velmo::detail
