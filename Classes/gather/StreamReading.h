// Whole things out of a stream.
#pragma once

#include <cstddef>
#include <optional>

#include <velmocore/gather/InputStream.h>

namespace velmo::detail {

/// All bytes that are left; none if there are more than that many.
std::optional<Data> readAll(InputStream& stream, std::size_t mostBytes);
/// So many bytes, and fewer only where the stream ends. Memory is taken as they come, whatever
/// length was announced.
Data readBytes(InputStream& stream, std::size_t count);

}  // namespace velmo::detail
