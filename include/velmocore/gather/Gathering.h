#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

#include <velmocore/gather/PageReading.h>
#include <velmocore/gather/PageRecord.h>
#include <velmocore/gather/PageSource.h>
#include <velmocore/gather/PageStore.h>
#include <velmocore/platform/Error.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/FunctionRef.h>
#include <velmocore/platform/String.h>

namespace velmo {

/// A page as it was gathered.
struct GatheredPage {
    String name;                      ///< as its source called it
    std::optional<Error> error;       ///< why there is none; the record is then empty
    PageRecord record;                ///< what was read
    bool isKept = false;              ///< whether it was to be kept
    std::optional<PutResult> stored;  ///< none if there is no store, or if it was not to be kept
    String
        duplicateOf;  ///< the key of the page that has the same text; absent if it is no duplicate
};

/// How pages are gathered.
struct GatherOptions {
    PageReadingOptions reading = {};  ///< how pages are read
    PageRecordWriting writing = {};   ///< how pages are stored
    std::size_t threads = 0;          ///< 0 for as many as the machine has
    PageStore* store = nullptr;       ///< open for updating; not owned
    std::size_t limit = 0;            ///< ends after so many pages that were kept; 0 for none
    bool errorPages = false;          ///< keeps those too that only say that there is no such page
    /// Whether a page is kept; all are without it. Called on any of the threads.
    std::function<bool(const PageRecord& page)> keep = {};
    /// Asked between pages; true ends the run, and what was gathered stands in the store.
    std::function<bool()> shouldStop = {};
};

/// What a run came to, in pages.
struct GatherSummary {
    std::size_t pages = 0, failed = 0;  ///< the first without the second
    // By their PutResult; and those that were not to be kept.
    std::size_t added = 0, replaced = 0, unchanged = 0, duplicates = 0, leftOut = 0;
    bool isStored = true;  ///< false if the store could not be written; the run ended there
};

/// Reads all pages of a source, on several threads, and puts them into a store. The handler is
/// called for each, on the caller's thread, in the order in which the source gave them, whatever
/// the number of threads; false ends the run. So much is read ahead as keeps the threads busy, and
/// no more: the memory does not grow with the source.
///
///     FolderSource folder("site", {.base = URL::URLWithString(u"http://h.org/")});
///     PageStore store = PageStore::openForUpdating("site.store");
///     gatherPages(folder, {.store = &store}, [](GatheredPage& page) {
///         print(page.record.title);
///         return true;
///     });
///
/// A page whose reading throws, or for which the memory does not suffice, is one that failed, and
/// the others go on. What the source or the handler throw comes out here, and what was put until
/// then stands in the store, which is synchronized every few seconds and at the end.
VELMO_API GatherSummary gatherPages(PageSource& source, const GatherOptions& options,
                                    FunctionRef<bool(GatheredPage& page)> handler);

}  // namespace velmo
