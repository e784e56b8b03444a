// The links of a page: resolved for people and programs, and as a gatherer would look at them.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <vector>

#include <velmocore/platform/String.h>
#include <velmocore/text/WebRules.h>
#include <velmocore/url/URL.h>

namespace velmo::tool {

/// The URL of a link on a page, with what people get wrong put right. A link that leads to no
/// page, as one to a mail address, is resolved plainly. Absent if it is no URL even so.
URL urlOfLink(const String& link, const URL& base, bool keepAnchor, WebRules web = {});

struct PageLinkOptions {
    /// Those too that lead to no page, and advertisements.
    bool all = false;
    /// The FollowMode by which links are picked; without one none is.
    std::optional<std::int64_t> follow;
    WebRules web = {};  ///< how links are resolved
};

struct PageLinks {
    std::size_t number = 0;          ///< as they stand on the page
    std::map<String, URL> distinct;  ///< by the key of the page they lead to
    std::vector<URL> followed;       ///< of the distinct ones, sorted by their keys
};

/// The links of a page or feed that stands at a URL, resolved against a base, or else against that
/// URL.
PageLinks linksOfPage(std::span<const String> links, const URL& base, const URL& url,
                      const PageLinkOptions& options);

}  // namespace velmo::tool
