#pragma once

#include <cstddef>

#include <velmocore/platform/Export.h>

namespace velmo {

/// Gives memory that is owned but not needed any more back to the system, whole pages of it: what
/// it holds is lost, and it can be freed or written as before. So a large text that is made from
/// one buffer into another takes little more than one of them. Any thread.
///
///     Data bytes(1 << 20);
///     giveBack(bytes.data(), bytes.size());    // (all but its first and last bytes may be 0 now)
VELMO_API void giveBack(const void* memory, std::size_t bytes);

}  // namespace velmo
