// Addresses that were kept as text. What browsers send is no URL by RFC 3986 at times, as with a | in
// its query: it is read as browsers do then.
#pragma once

#include <velmocore/url/RelativeURLs.h>
#include <velmocore/url/URL.h>

namespace velmo::detail {

inline URL urlOfStored(const String& address) {
    const URL url = URL::URLWithString(address);
    if (!url.isAbsent()) return url;
    return URLWithStringRelativeTo(address, {}, {.trimAnchor = false, .web = {.resolution = true}});
}

}  // namespace velmo::detail
