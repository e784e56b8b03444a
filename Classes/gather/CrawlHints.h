// What a page says to programs that gather: where they may go on from it, and whether it is theirs.
#pragma once

#include <string_view>
#include <vector>

#include <velmocore/gather/PageSource.h>
#include <velmocore/platform/Export.h>
#include <velmocore/text/WebRules.h>
#include <velmocore/url/URL.h>

namespace velmo::detail {

/// What robots directives forbid, in a header or a meta tag.
struct RobotsDirectives {
    bool noIndex = false;   ///< to keep the page
    bool noFollow = false;  ///< to follow its links

    /// Takes over what a list says to all programs, or to the one of that name, in lower case: as
    /// "noindex, other: nofollow".
    VELMO_API void take(std::u16string_view list, std::u16string_view agent);
};

struct CrawlHints {
    RobotsDirectives robots = {};
    bool isRateNotice = false;  ///< it is none, but says that too many were asked for
    /// Whether these are others than the links of the record: fewer by the wish of the page, or
    /// frames and feeds besides.
    bool hasOtherLinks = false;
    std::vector<URL> links = {};  ///< those that may be followed, resolved; frames too
    std::vector<URL> feeds = {};  ///< that it names as its own
};

/// Reads a page that was loaded. The directives of its header are given.
[[nodiscard]] VELMO_API CrawlHints readCrawlHints(const SourcePage& source,
                                                  const RobotsDirectives& header,
                                                  std::u16string_view agent,
                                                  const WebRules& web = WebRules::today());

}  // namespace velmo::detail
