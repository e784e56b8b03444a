// The encodings that the library converts, as data.
#pragma once

#include <cstdint>
#include <span>

#include <velmocore/platform/Export.h>

namespace velmo::detail {

/// What one byte stands for.
struct ByteUnit {
    std::uint8_t byte;
    char16_t unit;
};

/// A byte that a converter of ICU gives another unit than it means.
struct ByteRepair {
    std::uint8_t byte;
    char16_t given;
    char16_t meant;
};

enum class EncodingKind : std::uint8_t {
    ASCII,
    UTF8,
    UTF16,         ///< the byte order is found out
    LittleEndian,  ///< UTF-16
    BigEndian,     ///< UTF-16
    SingleByte,    ///< decoded through a table of 256 units
    DoubleByte,    ///< decoded through a table of pairs of bytes, the rest by ICU
    Streamed,      ///< decoded by ICU
};

struct EncodingRow {
    std::uint32_t number;
    EncodingKind kind;
    const char* iana;               ///< the name that pages and headers use, in lower case
    const char* decoder = nullptr;  ///< ICU's name
    const char* encoder = nullptr;  ///< ICU's name for the way back; null if it is the same
    /// Single-byte: the bytes whose unit is not the decoder's. Others: what a byte stands for
    /// that the decoder cannot read.
    std::span<const ByteUnit> own = {};
    std::span<const ByteRepair> repairs = {};  ///< double-byte only
};

/// All encodings in the order of their numbers.
VELMO_API std::span<const EncodingRow> encodingRows() noexcept;

/// The row of an encoding; null if there is none.
const EncodingRow* encodingRow(std::uint32_t number) noexcept;

}  // namespace velmo::detail
