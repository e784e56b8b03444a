// Memory of large texts.
#pragma once

#include <cstddef>

namespace velmo::tool {

/// Gives memory that is owned but not needed any more back to the system, whole pages of it: what
/// it holds is lost, and it can be freed or written as before. So a text that is read from one
/// buffer and written to another takes little more than one of them.
void giveBack(const void* memory, std::size_t bytes);

}  // namespace velmo::tool
