// What the links of the web look like: the tables that URL classification looks up.
//
// A row stands for itself, anywhere in a URL that was folded to lower case. So rows are in
// lower case; a row with a capital never matches, and the few that have one stand here
// because they always did. To add a row, put it on a line of its own beside those of its
// party, in the narrowest form that holds (a path or a query besides the host, a full stop
// in front of a short domain), and mend the count in the comment and the assertion. The
// order of rows makes no difference.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace velmo::detail {

enum class LinkTable : std::uint8_t {
    ImageAds,
    AdSense,
    AdvertiserHosts,
    AdFragments,
    AdPaths,
    QueriedBookmarklets,  ///< count in a URL with a query only
    Bookmarklets,
    Recaptchas,
    Translations,
    Topics,
    Forums,
    Caches,
};

struct LinkTableRows {
    LinkTable table;
    std::span<const std::string_view> rows;
};

// All tables, by topic.
std::span<const LinkTableRows> advertisementTables() noexcept;
std::span<const LinkTableRows> bookmarkletTables() noexcept;
std::span<const LinkTableRows> pageKindTables() noexcept;

}  // namespace velmo::detail
