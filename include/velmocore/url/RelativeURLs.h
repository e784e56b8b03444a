#pragma once

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/Encodings.h>
#include <velmocore/url/URL.h>

namespace velmo {

// Links of pages resolved against the URL of their page, with what people get wrong put
// right.
//
//     const URL page = URL::URLWithString(u"http://me:pw@h.org/a/b.html");
//     URLRelativeTo(page, u"../c//d.html#x");      // http://me:pw@h.org/c/d.html
//     URLRelativeTo(page, u"hhttp://i.org/a b");   // http://i.org/a%20b

struct RelativeURLOptions {
    /// The anchor is removed, unless the base is a file.
    bool trimAnchor = true;
    /// Of the escapes for what a URL may not hold.
    StringEncoding encoding = UTF8StringEncoding;
    /// Runs of slashes become one and dot segments are resolved.
    bool standardize = true;
};

/// The URL of a link on a page. White space around it is removed; damaged schemes as "hhttp:",
/// "ttp://", "http://http://" and "emailto:" are repaired. Mail and chat links stand alone,
/// other links that filterLink() holds are absent. What begins with // or with letters and
/// :// is a URL of its own; it gets the base's credentials if it has the same host (and
/// scheme). On a file base everything else is a path, and ~ the home folder.
///
/// Absent if the link or the base is absent, if the link is empty or only an anchor, and if it
/// is no URL even with escapes.
[[nodiscard]] VELMO_API URL URLRelativeTo(const URL& base, const String& link,
                                          const RelativeURLOptions& options = {});

/// The same, with URLWithNormalizedStringURL() for an absent base. An empty text is absent.
[[nodiscard]] VELMO_API URL URLWithStringRelativeTo(const String& string, const URL& base,
                                                    const RelativeURLOptions& options = {});

}  // namespace velmo
