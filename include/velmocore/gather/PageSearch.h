#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <vector>

#include <velmocore/gather/PageStore.h>
#include <velmocore/platform/Date.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>
#include <velmocore/query/QueryTerms.h>
#include <velmocore/query/Wildcards.h>
#include <velmocore/url/URL.h>

namespace velmo {

/// What comes first.
enum class SearchOrder : std::uint8_t {
    Relevance,  ///< the highest score; see docs/gather.md for the formula
    Newest,     ///< by their dates; pages without a date come last
    Address,    ///< in the order of their keys
    Hits,       ///< the most hits
    Stored,     ///< as they were stored
};

/// Which pages are searched, and what is told of them.
struct PageSearchOptions {
    SearchOrder order = SearchOrder::Relevance;  ///< what comes first
    std::size_t first = 0;   ///< how many of the pages that match are passed over
    std::size_t limit = 10;  ///< how many are told; 0 for all
    // Only pages that are so; an absent string and no date leave all.
    String language = {};  ///< a key, in any case
    String host = {};      ///< this one and those below it
    std::optional<Date> since = {},
                        before = {};  ///< of their own date, else of when they were fetched
    /// Of a query without wildcards it tells of case only.
    WildcardComparison comparison = DefaultComparison;
    std::size_t excerptLength = 300;  ///< in UTF-16 units; 0 for none
    bool facets = false;              ///< count what matches; see SearchResult
    bool useSignatures = true;        ///< false looks into each page: slower, with the same result
    std::size_t threads = 0;          ///< 0 for as many as the machine has
    /// Asked between pages, on any of the threads; true ends the search with what was found.
    std::function<bool()> shouldStop = {};
};

/// A page that matches.
struct SearchHit {
    URL url;                      ///< where it stands
    String key, title, language;  ///< absent where the page does not tell
    std::optional<Date> date;     ///< the page's own, else when it was fetched
    double score = 0;             ///< see docs/gather.md; in any order
    std::size_t hitCount = 0;     ///< in the text
    String excerpt;               ///< on one line; absent if it has none
    std::vector<Range> hits;      ///< in the excerpt, in UTF-16 units; in order, none in another
    std::size_t store = 0;        ///< the index of its store
};

/// What a search found.
struct SearchResult {
    std::vector<SearchHit> hits;  ///< those that are told, in order
    std::size_t pages = 0;        ///< in all stores
    std::size_t matching = 0;     ///< pages for which the query holds
    std::size_t scanned = 0;      ///< pages whose text was looked at
    bool isComplete = true;       ///< false if the search was stopped
    // With facets, of all pages that match: how many each has. Absent strings are "".
    std::map<String, std::size_t> languages, hosts;
    std::map<int, std::size_t> years;
};

/// The pages of stores for which a query holds. It is evaluated as for any text
/// (query/QueryEvaluation.h), as it was parsed, on the plain text of each page, whose title stands
/// at its start; there is no index, but a signature in each page tells which words it cannot hold.
///
///     const PageStore stores[] = {PageStore::openForReading("pages.store")};
///     const SearchResult found = searchPages(stores, QueryTerms(u"tea NEAR/5 cup", {.wildcard = true}));
///     for (const SearchHit& hit : found.hits) print(hit.title);
///
/// A query that is not valid matches nothing. The result is the same for any number of threads. The
/// stores must be open for reading and stay so.
[[nodiscard]] VELMO_API SearchResult searchPages(std::span<const PageStore> stores,
                                                 const QueryTerms& query,
                                                 const PageSearchOptions& options = {});

}  // namespace velmo
