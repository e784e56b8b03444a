#pragma once

#include <cstddef>
#include <random>
#include <string>

namespace velmo {

/// Kills writers of a store of pages so many times; gives how many pages were looked at. Ends the
/// program if anything is lost or wrong.
std::size_t killGatherers(const std::string& folder, std::size_t rounds, std::mt19937& random);

}  // namespace velmo
