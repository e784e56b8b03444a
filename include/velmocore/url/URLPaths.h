#pragma once

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/url/URL.h>

namespace velmo {

// Views of a URL that are put together from its parts, for lists, comparison and names. They
// hold the parts as they stand, escapes and all; of a file URL they hold the decoded path.
// An absent URL gives the absent string. Any thread may call these.
//
//     const URL url = URL::URLWithString(u"http://me:pw@www.h.org/a/b.html;v?q=1#x");
//     baseDirectory(url);                        // /a
//     pathWithParamsAndQuery(url);               // /a/b.html;v?q=1
//     absoluteStringWithHostAndPath(url);        // www.h.org/a/b.html;v?q=1#x
//     displayString(url);                        // h.org/a/b.html;v?q=1#x

/// The path without parameters; empty if there is none.
[[nodiscard]] VELMO_API String fullPath(const URL& url);
/// The path with what follows it, up to the fragment or with it.
[[nodiscard]] VELMO_API String pathWithParamsAndQuery(const URL& url);
[[nodiscard]] VELMO_API String pathWithParamsAndQueryAndFragment(const URL& url);
/// The whole URL; of a file URL the path.
[[nodiscard]] VELMO_API String absoluteStringOrPath(const URL& url);
/// The whole URL if it has no credentials; else without them and without the port.
[[nodiscard]] VELMO_API String absoluteStringWithoutUserAndPassword(const URL& url);
/// What follows the scheme, without leading slashes and credentials.
[[nodiscard]] VELMO_API String absoluteStringWithHostAndPath(const URL& url);

/// Whether the URL names a folder: a path with a slash at its end or without an extension,
/// no query and no parameters. A file URL does not.
[[nodiscard]] VELMO_API bool isBaseDirectory(const URL& url);
/// The path of the folder that holds what the URL names, or that it names; never empty.
[[nodiscard]] VELMO_API String baseDirectory(const URL& url);
/// The same with its . and .. resolved.
[[nodiscard]] VELMO_API String standardizedBaseDirectory(const URL& url);

/// The decoded path in normalisation form C.
[[nodiscard]] VELMO_API String normalizedPath(const URL& url);
/// A name to save it under: the last component of the path, else the host. "data" for a
/// data: URL, and what follows the scheme if that is no path.
[[nodiscard]] VELMO_API String proposedFilename(const URL& url);
/// Short and for people: no scheme, credentials, "www." and slashes at the ends, and a ~ for
/// the home folder. A URL that is neither of the web nor of mail stands as it is.
[[nodiscard]] VELMO_API String displayString(const URL& url);

}  // namespace velmo
