// Compression and its reverse over input that is handed to zlib in pieces.
#pragma once

#include <cstddef>
#include <optional>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>

namespace velmo::detail {

/// More than zlib can count would be cut; a test takes less, so that few bytes are many pieces.
inline constexpr std::size_t LargestPiece = std::size_t{1} << 30;

/// dataByCompressingBytes() and setDataByInflating() with pieces of at most so many bytes.
VELMO_API std::optional<Data> deflated(Bytes bytes, int level, bool useGzip,
                                       std::size_t piece = LargestPiece);
VELMO_API bool inflateInto(Data& data, Bytes bytes, std::size_t maximumLength,
                           std::size_t piece = LargestPiece);

}  // namespace velmo::detail
