// Work that is cut into pieces, on several threads.
#pragma once

#include <cstddef>

#include <velmocore/platform/FunctionRef.h>

namespace velmo::detail {

/// Calls work(i) for each i below the count, on so many threads, of which the calling one is one; 0
/// is as many as the machine has. With fewer where no more can be made. The first exception ends
/// the work and comes out here.
void workOnThreads(std::size_t count, std::size_t threads, FunctionRef<void(std::size_t i)> work);

}  // namespace velmo::detail
