// Work on a pool of threads, its results used in a fixed order.
#pragma once

#include <cstddef>
#include <functional>

namespace velmo::tool {

/// A number of threads that fits the machine.
std::size_t defaultJobs();

/// Calls work(i, slot) for each i below count, on that many threads, and use(i, slot) for
/// each on this one, in the order of i and while the others go on. A slot is a number below
/// slotsFor(jobs); work leaves its result there, and nobody else touches it until it has
/// been used, so that only so many results are ever kept. The first exception out of either
/// ends the run and comes out here.
void runInOrder(std::size_t count, std::size_t jobs,
                const std::function<void(std::size_t i, std::size_t slot)>& work,
                const std::function<void(std::size_t i, std::size_t slot)>& use);

/// How many results are kept: enough that a slow one does not hold up the others.
constexpr std::size_t slotsFor(std::size_t jobs) { return 4 * jobs; }

}  // namespace velmo::tool
