#pragma once

#include <cstddef>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Matching.h>
#include <velmocore/platform/String.h>
#include <velmocore/url/URL.h>

namespace velmo {

// Where a page is kept in a file tree. No component is too long for a file system: one beyond
// 250 UTF-16 units is cut, and a checksum of the whole appended. An absent URL gives absent. No
// file is touched. Any thread may call these.
//
//     const URL url = URL::URLWithString(u"http://www.h.org/a/?sid=b&n=1");
//     invertedPathRelativeToDirectory(url, u"/mirror");   // /mirror/org/h/www/a/?n=1
//     pathRelativeToDirectory(url, u"/mirror");           // /mirror/www.h.org/a/?sid=b&n=1

/// How an inverted path is made.
struct InvertedPathOptions {
    bool removeSessionIDs = true;         ///< see stringURLByRemovingSessionIDs()
    String pathExtension = {};            ///< appended to the path
    std::size_t maxHostComponents = 0;    ///< 0 for no limit; more are joined with full stops
    std::size_t maxPathComponents = 0;    ///< host and path together; more are joined with -
    Case letterCase = Case::Insensitive;  ///< in lower case
};
/// The host parts, top-level domain first, then the components of the path with parameters
/// and query, and index.html for a folder. Those of a file URL are only its path's. An absent
/// directory gives a path without a start.
[[nodiscard]] VELMO_API String invertedPathRelativeToDirectory(
    const URL& url, const String& directory, const InvertedPathOptions& options = {});

/// How a direct path is made.
struct DirectPathOptions {
    bool simplified = false;           ///< one file name for path, parameters and query
    bool defaultPathComponent = true;  ///< index.html for a folder
};
/// The host as it stands, then path, parameters and query. What a path would climb above its
/// host is left out, so that two hosts never share a file; an empty host, . and .. become -.
[[nodiscard]] VELMO_API String pathRelativeToDirectory(const URL& url, const String& directory,
                                                       const DirectPathOptions& options = {});

}  // namespace velmo
