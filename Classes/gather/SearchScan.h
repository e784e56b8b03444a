// The first pass of a search: which pages match, and what is needed to put them in order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include <velmocore/gather/PageSearch.h>

#include "gather/SearchFilter.h"
#include "gather/SearchQuery.h"

namespace velmo::detail {

/// Where a page stands.
struct PagePlace {
    std::size_t store, number;
};

/// Pages that stand side by side in a store.
struct PageStretch {
    std::size_t store, from, to;
};

/// A page that matches. Only what the order asks for is set.
struct PageMatch {
    PagePlace place;
    std::uint32_t words = 0;
    std::size_t hits = 0;
    double date = 0;  // in seconds since 1970
    std::string key = {};
};

/// What was found in a stretch.
struct StretchMatches {
    std::vector<PageMatch> matches;
    /// For each match how often each word of the query stands in it, those of the title counted
    /// several times.
    std::vector<double> counts;
    std::size_t pages = 0;    // that the filter accepts
    std::uint64_t words = 0;  // of these
    std::size_t scanned = 0;
    bool isComplete = true;
    // By word of the query: how many of the matches have it, and how many pages seem to.
    std::vector<double> matchesWithWord, pagesWithWord;
    std::map<String, std::size_t> languages, hosts;
    std::map<int, std::size_t> years;
};

/// Any number of threads may share it.
class SearchScan {
public:
    SearchScan(std::span<const PageStore> stores, const SearchQuery& query,
               const PageSearchOptions& options)
        : stores_(stores), query_(query), options_(options), filter_(options) {}

    StretchMatches scan(const PageStretch& stretch) const;

private:
    class Pass;

    std::span<const PageStore> stores_;
    const SearchQuery& query_;
    const PageSearchOptions& options_;
    SearchFilter filter_;
};

}  // namespace velmo::detail
