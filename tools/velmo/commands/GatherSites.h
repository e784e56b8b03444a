// The sites among what "velmo gather --store" is given: all addresses of the web are the starts of
// one crawl.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <velmocore/gather/SiteSource.h>

#include "frame/Command.h"

namespace velmo::tool {

struct GatherSites {
    std::vector<std::string> starts = {};
    SiteOptions options = {};
    std::string contact = {};
    bool isAsked = false;    ///< whether an option was given that makes sense for sites alone
    SiteCounts counts = {};  ///< when the crawl has ended
};

std::vector<Option> siteOptions(GatherSites& sites);

/// The crawl. What is given must outlive it; its counts are set when it goes.
std::unique_ptr<PageSource> sourceOf(GatherSites& sites, PageStore* store);

/// What it came by besides pages: on a line for people, and for programs the member "sites" of the
/// summary.
std::string wordsOf(const SiteCounts& counts);
JsonObject objectOf(const SiteCounts& counts);

}  // namespace velmo::tool
