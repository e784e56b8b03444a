#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

// File paths as strings, with slashes between the components, and file names made of any text.
// The file system is not touched and no link followed. An absent path is an empty one. Any thread
// may call these.
//
//     standardizedPath(u"/a/./b/../c");                       // /a/c
//     relativePathToDirectory(u"/a/b/c", u"/a/x");            // ../b/c
//     stringByReplacingPathExtensionWith(u"a/b.txt", u"md");  // a/b.md
//     stringByCreatingFilename(u"..What? Why/How:  x");       // What- Why-How-  x
//
// The extension of a path is what stands after the last full stop of its last component, if
// something stands before it too.

/// The path from the directory to the receiver: "../" for each component of the directory that
/// they do not share, or "./" if there is none, and what is left of the receiver. Both are
/// standardised first.
[[nodiscard]] VELMO_API String relativePathToDirectory(std::u16string_view path,
                                                       std::u16string_view directory);

/// Whether the path is the directory's or lies below it. False for an absent directory, for
/// the root, and if both are the very same string and not only equal ones.
[[nodiscard]] VELMO_API bool pathIsInDirectory(const String& path, const String& directory);
/// The same for any of them.
[[nodiscard]] VELMO_API bool pathIsInDirectories(const String& path,
                                                 std::span<const String> directories);

/// What stands before the last component; a path that ends in a slash loses just that slash.
[[nodiscard]] VELMO_API String stringByDeletingFileComponent(std::u16string_view path);

/// The components without empty ones, "." and slashes, but for a slash in the first place, the
/// root. ".." is removed with the component before it, the root too, or alone at the start.
[[nodiscard]] VELMO_API std::vector<String> standardizedPathComponents(std::u16string_view path);
/// The same, joined again.
[[nodiscard]] VELMO_API String standardizedPath(std::u16string_view path);

/// Appends the extension, unless the path has it already in any case. An absent one gives the
/// path itself.
[[nodiscard]] VELMO_API String stringByAppendingPathExtensionIfNecessary(const String& path,
                                                                         const String& extension);
/// Exchanges the extension. The path itself if it has just that one, or if it is absent.
[[nodiscard]] VELMO_API String stringByReplacingPathExtensionWith(const String& path,
                                                                  const String& extension);

/// Whether the path's extension is in the array, in any case.
[[nodiscard]] VELMO_API bool pathMatchingExtensions(std::u16string_view path,
                                                    std::span<const String> extensions);
/// The same. Types of files are kept nowhere on this platform, so that none matches.
[[nodiscard]] VELMO_API bool pathMatchingExtensionsOrTypes(
    std::u16string_view path, std::span<const String> extensionsOrTypes);

/// One to 17 letters, marks and numbers.
[[nodiscard]] VELMO_API bool isValidPathExtension(std::u16string_view extension);
/// The path's extension up to the first of ?&;=#, as of a URL; empty if it is not valid.
[[nodiscard]] VELMO_API String validPathExtension(std::u16string_view path);
/// What stands after the last full stop, in lower case, which may begin its component. Absent
/// if there is none, or a slash after it, or the path has fewer than two units.
[[nodiscard]] VELMO_API String lowercasePathExtension(std::u16string_view path);

// Names for files. The first four give a name of 250 units and 250 bytes of UTF-8 at most; it
// ends before half a surrogate pair, which no file name can hold.

[[nodiscard]] VELMO_API String stringByCreatingFileSystemRepresentation(std::u16string_view name);
/// Room is kept for a full stop and the extension, which are appended unless they are there.
/// An extension that is not 1 to 17 units long is ignored.
[[nodiscard]] VELMO_API String stringByCreatingFileSystemRepresentationByAppendingExtension(
    std::u16string_view name, std::u16string_view extension);
VELMO_API void createFileSystemRepresentation(std::u16string& name);
VELMO_API void createFileSystemRepresentationAndAppendExtension(std::u16string& name,
                                                                std::u16string_view extension);

/// A legal file name of any text: in form C, without . / : and _ at its ends, of 250 units and
/// 255 bytes of UTF-8 at most, and with a hyphen for each of * / : < > ? \ | and NUL. No
/// surrogate pair is cut.
[[nodiscard]] VELMO_API String stringByCreatingFilename(std::u16string_view text);
VELMO_API void createFilename(std::u16string& text);

}  // namespace velmo
