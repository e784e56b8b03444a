// The query language on one page, as "velmo help query" tells it.
#pragma once

#include <string_view>

namespace velmo::tool {

extern const std::string_view QueryHelp;

}  // namespace velmo::tool
