#pragma once

#include <velmocore/platform/Export.h>
#include <velmocore/url/URL.h>

namespace velmo {

/// Whether a URL belongs to a search engine, a directory or a portal, by its host. Those of
/// Google, Yahoo and Amazon that serve other pages too are looked at as a whole: an article
/// of Yahoo's news is no search page, and of Amazon only searches are. False without a host.
/// Any thread may call this.
///
///     isSearchEngine(URL::URLWithString(u"https://www.google.com/search?q=x"));    // true
///     isSearchEngine(URL::URLWithString(u"http://code.google.com/p/x"));           // false
[[nodiscard]] VELMO_API bool isSearchEngine(const URL& url);

}  // namespace velmo
