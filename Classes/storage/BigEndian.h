// Numbers of the stored formats, which have their first byte on top on every machine.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace velmo::detail {

inline std::uint32_t bigEndian32(const std::uint8_t* bytes) noexcept {
    std::uint32_t value;
    std::memcpy(&value, bytes, sizeof value);
    return std::endian::native == std::endian::little ? __builtin_bswap32(value) : value;
}

inline std::uint16_t bigEndian16(const std::uint8_t* bytes) noexcept {
    return static_cast<std::uint16_t>(bytes[0] << 8 | bytes[1]);
}

inline std::uint64_t bigEndian64(const std::uint8_t* bytes) noexcept {
    return std::uint64_t{bigEndian32(bytes)} << 32 | bigEndian32(bytes + 4);
}

/// The lowest so many bytes of the value.
inline void putBigEndian(std::uint8_t* bytes, std::uint64_t value, std::size_t count) noexcept {
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<std::uint8_t>(value >> (count - 1 - i) * 8);
}

}  // namespace velmo::detail
