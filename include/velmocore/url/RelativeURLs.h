#pragma once

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/Encodings.h>
#include <velmocore/text/WebRules.h>
#include <velmocore/url/URL.h>

namespace velmo {

// Links of pages resolved against the URL of their page, with what people get wrong put
// right. Any thread may call these.
//
//     const URL page = URL::URLWithString(u"http://me:pw@h.org/a/b.html");
//     URLRelativeTo(page, u"../c//d.html#x");      // http://me:pw@h.org/c/d.html
//     URLRelativeTo(page, u"hhttp://i.org/a b");   // http://i.org/a%20b

/// How links are resolved.
struct RelativeURLOptions {
    /// The anchor is removed, unless the base is a file.
    bool trimAnchor = true;
    /// Of the escapes for what a URL may not hold.
    StringEncoding encoding = UTF8StringEncoding;
    /// Runs of slashes become one and dot segments are resolved.
    bool standardize = true;
    /// With WebRules::resolution links are read as the URL standard says, and as nothing else does:
    /// see below.
    WebRules web = {};
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

// With WebRules::resolution the result is what browsers make of a link: the serialization of the
// URL standard. No scheme is put right and no link is filtered; mail links, scripts and data are
// URLs; credentials of the base go to relative links alone; on a file base links are URLs as on any
// other. Slashes stay as many as they are, hosts are in their ASCII form (see url/DomainNames.h),
// and the encoding is that of queries. Such a URL may hold what RFC 3986 does not allow, as "|" or
// a lone "%"; url/URLVariants.h keeps that. Its anchor is removed on a file base too, and what is
// only an anchor, or empty, is absent then and else the base.
//
//     const WebRules web = {.resolution = true};
//     const URL page = URL::URLWithString(u"https://h.org/a/b");
//     URLRelativeTo(page, u"https:c|d\\%2E./e", {.web = web});                  // https://h.org/a/e
//     URLRelativeTo(page, u"//0x7f.1:443/#x", {.trimAnchor = false, .web = web});  // https://127.0.0.1/#x

/// The same, with URLWithNormalizedStringURL() for an absent base, or with WebRules::resolution the
/// text alone as the standard reads it. An empty text is absent.
[[nodiscard]] VELMO_API URL URLWithStringRelativeTo(const String& string, const URL& base,
                                                    const RelativeURLOptions& options = {});

}  // namespace velmo
