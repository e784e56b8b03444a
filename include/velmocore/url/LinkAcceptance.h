#pragma once

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/url/URL.h>

namespace velmo {

// The link filter of a gatherer. The links of a search engine's result page point at its
// redirector and carry the true target in a parameter; on pages of the engines that are
// known, the target is taken out, and what only leads to the engine's advertisements or to
// itself is refused. A refused link, like an absent or empty one, is the absent URL.
//
//     const URL page = URL::URLWithString(u"http://duckduckgo.com/html/?q=ferret");
//     acceptStringURL(u"/l/?uddg=http%3A%2F%2Fexample.org%2F", page);   // http://example.org/
//     acceptStringURL(u"/about", page);     // absent
//     resolveStringURL(u"/about", page);    // http://duckduckgo.com/about
//
// Any thread may call these.

/// The true target of a link on a page with that base. A link without one is resolved
/// against the base, as URLRelativeTo() does. Absent without a base.
[[nodiscard]] VELMO_API URL resolveStringURL(const String& link, const URL& base);

/// The true target of a link if it is a real result: an absolute URL of the web, of FTP or
/// of a feed, that is no cached or translated page, no captcha and no search engine's.
/// Without a base the link is judged as it is.
[[nodiscard]] VELMO_API URL acceptStringURL(const String& link, const URL& base);

}  // namespace velmo
