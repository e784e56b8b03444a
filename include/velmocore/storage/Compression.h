#pragma once

#include <cstddef>
#include <limits>
#include <optional>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>

namespace velmo {

// Bytes compressed and inflated in memory, in the zlib format (RFC 1950) or that of gzip
// (RFC 1952). Results are absent if something failed or there are no bytes; no message is
// written. Any thread may call these.
//
//     std::optional<Data> packed = dataByGzippingData("tea");
//     charsOf(*dataByInflatingData(*packed, 1000));    // tea
//     dataByInflatingData(*packed, 2).has_value();     // false; more than the limit
//
// The level is 1 (fast) to 9 (small); -1 is the usual middle. Others count as the nearest.

inline constexpr int DefaultCompressionLevel = -1;

/// In the format that is chosen or named.
[[nodiscard]] VELMO_API std::optional<Data> dataByCompressingBytes(Bytes bytes,
                                                                   int compressionLevel,
                                                                   bool useGzip);
[[nodiscard]] inline std::optional<Data> dataByGzippingData(
    Bytes bytes, int compressionLevel = DefaultCompressionLevel) {
    return dataByCompressingBytes(bytes, compressionLevel, true);
}
[[nodiscard]] inline std::optional<Data> dataByDeflatingData(
    Bytes bytes, int compressionLevel = DefaultCompressionLevel) {
    return dataByCompressingBytes(bytes, compressionLevel, false);
}
[[nodiscard]] inline std::optional<Data> dataByGzippingBytes(
    Bytes bytes, int compressionLevel = DefaultCompressionLevel) {
    return dataByGzippingData(bytes, compressionLevel);
}
[[nodiscard]] inline std::optional<Data> dataByDeflatingBytes(
    Bytes bytes, int compressionLevel = DefaultCompressionLevel) {
    return dataByDeflatingData(bytes, compressionLevel);
}

/// The limit that is none, in bytes.
inline constexpr std::size_t NoInflatedLimit = std::numeric_limits<std::size_t>::max();

// Inflating fails on damaged bytes, on bytes after the end of the stream, on a stream that
// breaks off, and if more than maximumLength bytes would come out: a few bytes can stand for
// gigabytes, so give a limit for bytes from outside.

[[nodiscard]] VELMO_API std::optional<Data> dataByInflatingData(
    Bytes bytes, std::size_t maximumLength = NoInflatedLimit);
/// Replaces the content of the data; true on success. After a failure it holds what came out
/// until then, or what it held before if nothing could be tried. The bytes may be its own.
VELMO_API bool setDataByInflating(Data& data, Bytes bytes,
                                  std::size_t maximumLength = NoInflatedLimit);

[[nodiscard]] inline std::optional<Data> dataByInflatingBytes(
    Bytes bytes, std::size_t maximumLength = NoInflatedLimit) {
    return dataByInflatingData(bytes, maximumLength);
}
inline bool setDataByInflatingBytes(Data& data, Bytes bytes,
                                    std::size_t maximumLength = NoInflatedLimit) {
    return setDataByInflating(data, bytes, maximumLength);
}

}  // namespace velmo
