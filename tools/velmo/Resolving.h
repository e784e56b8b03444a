// Links of pages to URLs.
#pragma once

#include <velmocore/url/PercentEscapes.h>
#include <velmocore/url/URL.h>

namespace velmo::tool {

/// The URL of a link on a page with that base; what no URL may hold is escaped. Absent if
/// the link is no URL even so.
inline URL resolve(const String& link, const URL& base) {
    const URL url = URL::URLWithString(link, base);
    return url.isAbsent() ? URL::URLWithString(stringByAddingPercentEscapesToURL(link), base) : url;
}

}  // namespace velmo::tool
