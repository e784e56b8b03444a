// A list that takes each link once, in the order of their coming.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include <velmocore/platform/String.h>

#include "platform/PlaceTable.h"

namespace velmo::detail {

/// Keeps a table of hashes beside the list. A String is made only for a link that is new.
class UniqueLinks {
public:
    explicit UniqueLinks(std::vector<String>& links);

    /// Appends the link unless it is in the list, and gives its place there.
    std::size_t add(std::u16string_view link);
    /// The same of a link that is ASCII.
    std::size_t add(std::string_view ascii);

private:
    std::vector<String>& links_;
    PlaceTable places_;
    const std::uint64_t seed_;  ///< differs from run to run
};

}  // namespace velmo::detail
