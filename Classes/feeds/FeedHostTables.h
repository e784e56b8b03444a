// Services that stand between feeds and what their items are about. 3 hosts, 2 prefixes.
#pragma once

#include <string_view>

namespace velmo::detail {

/// Hosts of short links: as an id these say nothing that the item's own link does not say better.
inline constexpr std::string_view ShortLinkHosts[] = {
    "DIGG.COM",
    "WWW.DIGG.COM",
    "DI.GG",
};

/// How links of the redirecting news service begin, in capitals.
inline constexpr std::string_view NewsRedirectors[] = {
    "HTTP://NEWS.GOOGLE.COM/NEWS/URL?",
    "HTTPS://NEWS.GOOGLE.COM/NEWS/URL?",
};

}  // namespace velmo::detail
