// What is told of a page that matches.
#pragma once

#include <velmocore/gather/PageSearch.h>

#include "gather/SearchQuery.h"

namespace velmo::detail {

/// All but its score and its store.
SearchHit hitOfPage(const StoredPage& page, const SearchQuery& query, std::size_t excerptLength);

}  // namespace velmo::detail
