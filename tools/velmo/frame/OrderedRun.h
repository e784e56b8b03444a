// Work on several threads whose output stands in a fixed order.
#pragma once

#include <cstddef>

#include <velmocore/platform/FunctionRef.h>

#include "Report.h"

namespace velmo::tool {

/// A number of threads that fits the machine.
std::size_t defaultJobs();

/// Calls work(i, report) for each i below count, on that many threads, of which the calling one
/// is one; with fewer where no more can be made. The reports are written in the order of i while
/// the others go on; a report with much to say waits for its turn, so that little is ever kept.
/// The first exception out of the work, or out of writing, ends the run and comes out here. A
/// settled session ends it too.
void runInOrder(Session& session, std::size_t count, std::size_t jobs,
                FunctionRef<void(std::size_t i, Report& report)> work);

}  // namespace velmo::tool
