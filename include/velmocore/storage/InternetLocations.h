#pragma once

#include <span>
#include <string_view>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>
#include <velmocore/platform/String.h>
#include <velmocore/url/URL.h>

namespace velmo {

// Internet location files: a URL that lives in a folder as a small file of its own. There are three
// forms: a property list with the key "URL"; the text of a shortcut, with a line "URL="; and one
// whose URL lies in a resource of the file. Resources and type codes are read where archives leave
// them, in an AppleDouble file "._name" beside the file, and never written.
//
//     createInternetLocation(u"https://example.org/", "example.webloc");
//     resolveInternetLocation("example.webloc").url;           // https://example.org/
//     pathExtensionForInternetLocation(u"ftp://example.org");  // ftploc
//
// Files of more than 16 MB, pipes and devices are none. No operation tells why it failed: reading
// gives what is absent, writing false. Any thread may call these.

/// All types and extensions of such files, types between apostrophes: 'ilht' and its like.
[[nodiscard]] VELMO_API std::span<const std::string_view> InternetLocationTypes() noexcept;

/// Whether files with that extension (in any case) or type (in exact case) are locations. Either
/// may be absent. The type 'ilvn' alone makes none.
[[nodiscard]] VELMO_API bool isInternetLocationExtension(std::u16string_view extension,
                                                         std::u16string_view type);
/// The same by the name of a file and what stands beside it; its content is not looked at.
[[nodiscard]] VELMO_API bool isInternetLocationFile(const Path& path);

/// What a location file says.
struct InternetLocation {
    String url;   ///< absent if there is none
    String name;  ///< only a property list has one, and not each
    /// Whether there is a URL.
    explicit operator bool() const noexcept { return !url.isAbsent(); }
};

/// What a location file leads to.
[[nodiscard]] VELMO_API InternetLocation resolveInternetLocation(const Path& path);

/// A location file in memory, as it comes out of an archive.
struct InternetLocationData {
    Bytes content;           ///< not owned
    String extension;        ///< of its name
    Bytes appleDouble = {};  ///< the file beside it, if there is one
};
/// The same without touching files; ours.
[[nodiscard]] VELMO_API InternetLocation
resolveInternetLocationData(const InternetLocationData& file);

/// The extension that a location file for this is to have; "inetloc" for what has none of its own.
/// Absent for an absent location and for an empty string.
[[nodiscard]] VELMO_API String pathExtensionForInternetLocation(const URL& location);
[[nodiscard]] VELMO_API String pathExtensionForInternetLocation(const String& location);

/// Writes a property list, in place. False for an absent or empty location, one that UTF-8 cannot
/// hold, and an absent or empty path.
VELMO_API bool createInternetLocation(const URL& location, const Path& path);
VELMO_API bool createInternetLocation(const String& location, const Path& path);

/// Writes the text of a shortcut, atomically. An empty location is written too.
VELMO_API bool createURL(const URL& location, const Path& path);
VELMO_API bool createURL(const String& location, const Path& path);

}  // namespace velmo
