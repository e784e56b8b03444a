// Parts of foreign bytes, at offsets and of lengths that they tell themselves.
#pragma once

#include <cstdint>
#include <optional>

#include <velmocore/platform/Bytes.h>

namespace velmo::detail {

/// So many bytes from an offset on; none if they are not all there.
inline std::optional<Bytes> partOf(Bytes bytes, std::uint64_t offset, std::uint64_t count) {
    if (offset > bytes.size() || count > bytes.size() - offset) return std::nullopt;
    return bytes.subspan(offset, count);
}

}  // namespace velmo::detail
