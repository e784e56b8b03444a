#pragma once

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

// Names that programs give themselves to servers. All are made once, and none is empty; any thread
// may ask.
//
//     downloadsUserAgent();    // Mozilla/5.0 (Macintosh; Intel Mac OS X) AppleWebKit (KHTML, like Gecko)

/// That of a browser, for servers that refuse all others: with the versions of the one that is
/// installed, or those of a known one.
[[nodiscard]] VELMO_API const String& WebKitUserAgent();
/// The short form of it, without versions.
[[nodiscard]] VELMO_API const String& downloadsUserAgent();

/// This library by its own name, "velmo/0.2.0". Ours: a request that names no other says so.
[[nodiscard]] VELMO_API const String& libraryUserAgent();

}  // namespace velmo
