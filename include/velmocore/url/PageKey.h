#pragma once

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/url/TrackingParameters.h>
#include <velmocore/url/URL.h>

namespace velmo {

/// Which differences between two URLs are none between their pages.
struct PageKeyOptions {
    bool foldScheme = true;   ///< https is http
    bool foldWWW = true;      ///< "www." in front of a host is left out
    bool sessionIDs = true;   ///< sessions are left out, in the path and in the query
    bool tracking = true;     ///< so is what tells where a visitor came from
    bool emptyParams = true;  ///< and what has a = but no value
    bool indexPages = true;   ///< a folder is its index page
    bool sortQuery = true;    ///< parameters are sorted by name; those of one name keep their order
    const TrackingParameters* parameters = nullptr;  ///< what counts as tracking; the common ones
};

/// The key by which a page of the web of today is known again, whatever way a link to it is
/// written. It is itself a URL, though none to load, and its own key.
///
///     const URL page = URL::URLWithString(u"https://www.H.org:443/a/./index.php?b=2&fbclid=x&a=%31");
///     pageKey(page);   // http://h.org/a?a=1&b=2
///
/// Beyond the options these never count: how a host is written (its case, letters of people or
/// ASCII, numbers of an address, dots behind it; see url/DomainNames.h), a port that is the
/// scheme's own, credentials, . and .. and doubled slashes, a slash at the end, escapes of what
/// needs none and the case of all others, a space as + or %20, empty parts of a query, an & written
/// as &amp;, and an anchor that is no address (#! or #/ and more is one). The case of path and
/// query does count.
///
/// What has no host, as mailto:, loses its anchor only and has its scheme in lower case; the path
/// of a file keeps its index page. An absent URL gives an absent key. Time linear in the URL, and
/// in a query of n parameters n log n. Any thread.
///
/// This is ours, for the web as it is; simplifiedStringURL() is the older key and lowers all
/// cases.
[[nodiscard]] VELMO_API String pageKey(const URL& url, const PageKeyOptions& options = {});

}  // namespace velmo
