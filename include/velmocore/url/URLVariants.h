#pragma once

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/url/URL.h>

namespace velmo {

// URLs made of another one by exchanging a part. A URL with nothing to change comes back as
// it is, an absent one too; what would be no URL is absent. Any thread may call these.
//
//     URLWithAnchor(URL::URLWithString(u"http://h/a#x"), u"y");        // http://h/a#y
//     URLWithUser(URL::URLWithString(u"http://h:8/a"), u"me", u"p@");  // http://me:p%40@h:8/a

/// The URL with another scheme, host and credentials, which stand as they are given. They
/// count only if neither the user nor the password is empty; a port of 0 is removed.
[[nodiscard]] VELMO_API URL URLWithSchemeHostUserPassword(const URL& url, const String& scheme,
                                                          const String& host, const String& user,
                                                          const String& password);
/// With credentials, which are escaped. Nothing changes if one of them is empty.
[[nodiscard]] VELMO_API URL URLWithUser(const URL& url, const String& user, const String& password);
[[nodiscard]] VELMO_API URL URLWithoutCredentials(const URL& url);
/// With another scheme, unless it is empty or this is a file URL.
[[nodiscard]] VELMO_API URL URLWithScheme(const URL& url, const String& scheme);

// A # with ! or / and more after it is part of the address and no anchor, as for
// stringURLWithoutAnchor().

[[nodiscard]] VELMO_API URL URLWithoutAnchor(const URL& url);
/// Exchanges the anchor. Nothing changes if it is empty.
[[nodiscard]] VELMO_API URL URLWithAnchor(const URL& url, const String& anchor);

/// What a web view can load: with 127.0.0.1 for localhost, or else with http for feed.
[[nodiscard]] VELMO_API URL WebKitURL(const URL& url);
/// The base of a page in a web view: a file that is there, or a URL of the web, with http for
/// feed; else absent.
[[nodiscard]] VELMO_API URL baseURLForWebKit(const URL& url);
[[nodiscard]] VELMO_API URL baseURLForWebKitUsingAnchor(const URL& url, const String& anchor);

}  // namespace velmo
