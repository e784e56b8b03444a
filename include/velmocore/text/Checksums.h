#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/text/CharacterSets.h>
#include <velmocore/text/ConversionTables.h>

namespace velmo {

// CRC-32 with the reflected polynomial of IEEE 802.3, in the library's own variant: the
// register starts at 0 and is not inverted at the end. The values differ from those of zlib;
// stored data holds them. No data gives 0. Any thread may call these; nothing is allocated.
//
//     CRC32("123456789");    // 771566984; that is 0x2DFD2D88

/// The table of the polynomial: the CRC-32 of each byte alone.
inline constexpr std::array<std::uint32_t, 256> CRC32_TAB = [] {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t byte = 0; byte < table.size(); ++byte) {
        std::uint32_t value = byte;
        for (int bit = 0; bit < 8; ++bit) value = value >> 1 ^ (value & 1 ? 0xEDB88320 : 0);
        table[byte] = value;
    }
    return table;
}();

/// Of bytes, in order.
[[nodiscard]] VELMO_API std::uint32_t CRC32(Bytes bytes);
[[nodiscard]] inline std::uint32_t crc32(Bytes data) { return CRC32(data); }

/// Of units, each as two bytes, the high one first: the same on every machine. With a table,
/// each unit is mapped through it first; null means as it is.
[[nodiscard]] VELMO_API std::uint32_t CRC32UniCharsUsingConversionTable(
    std::u16string_view units, const ConversionTable* table);
[[nodiscard]] inline std::uint32_t CRC32UniChars(std::u16string_view units) {
    return CRC32UniCharsUsingConversionTable(units, nullptr);
}
[[nodiscard]] inline std::uint32_t stringCRC32UsingConversionTable(std::u16string_view string,
                                                                   const ConversionTable* table) {
    return CRC32UniCharsUsingConversionTable(string, table);
}
[[nodiscard]] inline std::uint32_t crc32(std::u16string_view string) {
    return CRC32UniChars(string);
}
[[nodiscard]] inline std::uint32_t crc32UsingConversionTable(std::u16string_view string,
                                                             const ConversionTable* table) {
    return CRC32UniCharsUsingConversionTable(string, table);
}

// Fingerprints of a text that survive changes of case, and of all units outside the set: the
// CRC-32 of the units in the set, in upper case.

/// 0 for a null set.
[[nodiscard]] VELMO_API std::uint32_t caseInsensitiveCrc32UsingCharactersPartOfCharacterSetRep(
    std::u16string_view string, const CharacterSetRep* set);
/// Letters and marks only.
[[nodiscard]] VELMO_API std::uint32_t caseInsensitiveCrc32ByRemovingNonAlphaCharacters(
    std::u16string_view string);
/// Letters, marks and numbers only.
[[nodiscard]] VELMO_API std::uint32_t caseInsensitiveCrc32ByRemovingNonAlphaNumericCharacters(
    std::u16string_view string);

}  // namespace velmo
