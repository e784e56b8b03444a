#pragma once

#include <string_view>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/HomeFolder.h>

namespace velmo {

// The user's standard folders, found once, at first use, and kept: a later change is not seen.
// No path ends in a slash, but that of the root. That a folder exists is not looked at. Any
// thread may call these.
//
// The home folder is homeDirectory() of HomeFolder.h. Desktop and downloads are those of the
// file user-dirs.dirs in XDG_CONFIG_HOME (else ".config" of the home folder), caches are
// XDG_CACHE_HOME and application support is XDG_DATA_HOME, where these are absolute paths. What
// is not told so has its fallback below the home folder.
//
//     pathInCachesDirectory(u"thumbnails");    // (as /home/ada/Library/Caches/thumbnails)
//     pathInCachesDirectory(u"x") == cachesDirectory() + u"/x";    // true

[[nodiscard]] VELMO_API const String& desktopDirectory();    ///< else "Desktop"
[[nodiscard]] VELMO_API const String& downloadsDirectory();  ///< else "Downloads"
[[nodiscard]] VELMO_API const String& libraryDirectory();    ///< "Library"
[[nodiscard]] VELMO_API const String&
preferencesDirectory();                                   ///< "Preferences" in the library folder
[[nodiscard]] VELMO_API const String& cachesDirectory();  ///< else "Caches" in the library folder
[[nodiscard]] VELMO_API const String&
applicationSupportDirectory();  ///< else "Application Support" in it

/// A path in the folder of the name; the folder itself for nothing.
[[nodiscard]] VELMO_API String pathInHomeDirectory(std::u16string_view component);
[[nodiscard]] VELMO_API String pathInLibraryDirectory(std::u16string_view component);
[[nodiscard]] VELMO_API String pathInPreferencesDirectory(std::u16string_view component);
[[nodiscard]] VELMO_API String pathInCachesDirectory(std::u16string_view component);
[[nodiscard]] VELMO_API String pathInApplicationSupportDirectory(std::u16string_view component);

/// The home folder outside any sandbox: what stands before "/Library/Containers/" in it.
[[nodiscard]] VELMO_API const String& userHomeDirectory();
/// "Library" in the home folder outside any sandbox.
[[nodiscard]] VELMO_API const String& userLibraryDirectory();
/// Where the cloud's files would be, in that library folder.
[[nodiscard]] VELMO_API const String& iCloudFolder();
/// The folders that the client's own settings name, the personal one first; "Dropbox" in the
/// home folder if they name none.
[[nodiscard]] VELMO_API const std::vector<String>& DropboxFolders();

/// Whether the path lies in a folder that a service keeps in the cloud.
[[nodiscard]] VELMO_API bool isCloudFolder(const String& path);
/// Whether the files of the folder may be elsewhere at times: those of a cloud folder.
[[nodiscard]] VELMO_API bool isVolatileFolder(const String& path);
/// Whether the path lies where files are kept for a while only.
[[nodiscard]] VELMO_API bool isTemporaryPath(std::u16string_view path);

}  // namespace velmo
