// What the address of a page of the site says, and the addresses that its links have.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <velmocore/gather/PageSearch.h>

namespace velmo::detail {

/// How many results stand on a page.
inline constexpr std::size_t ResultsAPage = 20;

struct SiteTarget {
    std::string path;
    std::string query = {};  ///< as it was typed
    SearchOrder order = SearchOrder::Relevance;
    std::string language = {}, host = {};
    std::optional<int> year = {};
    std::size_t first = 0;  ///< of the results
    std::string key = {};   ///< of the page that is shown
    std::size_t store = 0;  ///< that it is in

    /// As an address: "/?q=tea&host=h.org".
    std::string address() const;
    /// The same target elsewhere, or changed.
    template <class Change>
    std::string addressWith(Change change) const {
        SiteTarget other = *this;
        change(other);
        return other.address();
    }
};

/// None if it is no such address, or longer than anybody would type. Unknown parameters are left out,
/// and of one that comes again the last counts.
std::optional<SiteTarget> readSiteTarget(std::string_view target);

/// The name of an order, as addresses have it.
std::string_view nameOf(SearchOrder order);

}  // namespace velmo::detail
