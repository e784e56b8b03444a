#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/WebRules.h>
#include <velmocore/url/URL.h>

namespace velmo {

// The references of a page made to work elsewhere: those of all tags that getLinkAttribute()
// knows, if they resolve against the base to a URL of the web, of FTP or of a file. All else
// stays unit for unit. Mind that within its tag a reference is replaced wherever it stands: one
// of a single letter is found in words too.
//
// The page itself comes back if nothing is replaced, if there is no base, and if it is empty or
// absent. Time is linear in the page and what becomes of it; nothing fails. Any thread. The rules of
// today, where they are on, count for tags, attributes and references.
//
//     const URL base = URL::URLWithString(u"http://h.org/a/b.html");
//     resolveLinksUsingBaseURL(u"<img src='../c.png'>", base);        // <img src='http://h.org/c.png'>
//     flattenLinksUsingBaseURL(u"<img src=../c.png>", base, u"my-");  // <img src=my-c.png>

/// Each reference as a whole URL.
[[nodiscard]] VELMO_API String resolveLinksUsingBaseURL(const String& page, const URL& base,
                                                        const WebRules& web = {});

/// Each reference as the last component of its URL's path with the prefix in front, as it is in
/// a folder of saved files.
[[nodiscard]] VELMO_API String flattenLinksUsingBaseURL(const String& page, const URL& base,
                                                        std::u16string_view prefix = {},
                                                        const WebRules& web = {});

}  // namespace velmo
