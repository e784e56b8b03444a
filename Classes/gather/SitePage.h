// A stored page as a page of the site: what is known of it, its text with the hits of a query, and
// where it leads to.
#pragma once

#include <string>

#include <velmocore/gather/PageRecord.h>
#include <velmocore/query/QueryTerms.h>

#include "gather/SiteTarget.h"

namespace velmo::detail {

struct ShownPage {
    const PageRecord& page;
    const SiteTarget& target;
    const QueryTerms& query;  ///< may be absent
    bool images = false;
};
std::string sitePageOf(const ShownPage& shown);

}  // namespace velmo::detail
