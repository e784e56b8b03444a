#pragma once

#include <string>

namespace velmo::detail {

/// removePath() without a word about a failure.
void removeQuietly(const std::string& path);

}  // namespace velmo::detail
