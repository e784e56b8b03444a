// What "velmo gather" does with pages that it keeps: which they are, where they come from, and what
// becomes of them. Each way stands in a source of its own.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <velmocore/gather/Gathering.h>
#include <velmocore/gather/PageSource.h>
#include <velmocore/url/URL.h>

#include "GatherSites.h"
#include "QueryOptions.h"
#include "frame/FileRun.h"

namespace velmo::tool {

struct GatherRun {
    InputOptions input = {};
    URL base = {};                 ///< where folders and files stand; absent if only on the disk
    std::string store = {};        ///< the path of the store
    std::uint64_t limit = 0;       ///< of pages that are kept; 0 for none
    std::string language = {};     ///< only pages in it; empty for all
    const Query* query = nullptr;  ///< only pages for which it holds; null for all
    bool keepPages = false;        ///< keeps their bytes too
    bool compress = false;         ///< the texts too
    GatherSites sites = {};        ///< what is gathered of the web

    /// How pages are read and which are kept, on as many threads as were asked for.
    GatherOptions options(const LanguageFilter& languages) const;
};

/// All that the command line names, one after the other: folders, files by what they hold, - for
/// standard input; and behind these the sites, if there is a store. The run must outlive it.
std::unique_ptr<PageSource> sourceOf(Session& session, GatherRun& run, PageStore* store = nullptr);

/// "velmo gather --store".
void gatherIntoStore(Report& report, GatherRun& run);
/// "velmo gather --lines".
void gatherLines(Report& report, GatherRun& run);

}  // namespace velmo::tool
