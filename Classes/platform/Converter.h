// Conversion between the encodings of EncodingTables.h and UTF-16 units. Encodings go by
// the platform's text-encoding numbers. No operation fails on bad bytes: what has no
// meaning becomes U+FFFD. Any thread; nothing is shared that could change.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo::detail {

inline constexpr char16_t ReplacementUnit = 0xFFFD;

VELMO_API bool hasConverter(std::uint32_t encoding) noexcept;

/// The name that pages and headers use, in lower case; empty without a converter.
VELMO_API std::string_view converterName(std::uint32_t encoding) noexcept;

struct Decoding {
    std::size_t written = 0;  ///< units
    bool complete = true;     ///< false: the room did not do, or there is no converter
    bool broken = false;      ///< some bytes had no meaning; told for a strict decoding only
};

/// Decodes into out, as far as its room goes; never half of a surrogate pair. A byte-order
/// mark at the start is not part of the text.
VELMO_API Decoding decode(std::uint32_t encoding, Bytes bytes, std::span<char16_t> out,
                          bool strict = false);

enum class Decode {
    Lenient,  ///< absent if no unit results
    Strict,   ///< absent if some bytes have no meaning
};

/// Decodes into a new string of at most as many units as there are bytes, or 32. Absent
/// without a converter.
VELMO_API String decodedString(std::uint32_t encoding, Bytes bytes, Decode how);

/// Encodes. A character that the encoding does not have makes the result absent, or with
/// lossy becomes "?" (in UTF-8 U+FFFD). UTF-16 and UTF-32 of no named byte order begin with a
/// byte-order mark. Absent without a converter.
VELMO_API std::optional<Data> encode(std::uint32_t encoding, std::u16string_view text,
                                     bool lossy = false);

}  // namespace velmo::detail
