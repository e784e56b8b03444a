// Compression and its reverse of what is in memory as a whole, which takes a third and less of the
// time of a stream.
#pragma once

#include <cstddef>
#include <optional>

#include <velmocore/platform/Bytes.h>

namespace velmo::detail {

/// None if there are too few bytes or too many, or no memory; the level is one of 1 to 9.
std::optional<Data> deflatedWhole(Bytes bytes, int level, bool useGzip);
/// None if the bytes are damaged in any way, or if what comes out is too much: why, only a stream
/// tells.
std::optional<Data> inflatedWhole(Bytes bytes, std::size_t maximumLength);

}  // namespace velmo::detail
