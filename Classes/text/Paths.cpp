// Paths are taken apart into views (PathParts.h) and put together once; a component is no string
// of its own. Names for files are cut by two measures, units and bytes of UTF-8, and never within
// a surrogate pair.
//
// The file system is never asked: a path may be that of another machine, or of nothing yet.
#include <velmocore/text/Paths.h>

#include <algorithm>

#include <velmocore/text/CharacterTests.h>
#include <velmocore/text/Comparison.h>
#include <velmocore/text/ConversionTables.h>
#include <velmocore/text/Finding.h>
#include <velmocore/text/Normalisation.h>

#include "platform/Surrogates.h"
#include "text/PathParts.h"
#include "text/Trim.h"

namespace velmo {
namespace {

using View = std::u16string_view;

constexpr std::size_t LongestName = 250;      ///< in units, and in bytes of UTF-8
constexpr std::size_t LongestFilename = 255;  ///< in bytes, as file systems have it
constexpr std::size_t LongestExtension = 17;

/// The components that are left of a path when it is standardised. A .. takes the root away too:
/// a path that climbs above it becomes relative.
std::vector<View> keptComponents(View path) {
    std::vector<View> kept;
    for (const View component : detail::componentsOfPath(path)) {
        // The views lie in the path itself, so the address tells the first slash from the last.
        const bool isRoot = component.data() == path.data();  // and no slash at the end
        if (component == u"." || (component == u"/" && !isRoot)) continue;
        if (component != u"..")
            kept.push_back(component);
        else if (!kept.empty())
            kept.pop_back();
    }
    return kept;
}

std::u16string joined(std::span<const View> components) {
    std::u16string path;
    for (const View component : components) {
        if (!path.empty() && path != u"/") path += u'/';
        path += component;
    }
    return path;
}

String appendedExtension(View path, View extension) {
    if (path.empty() || path == u"/" || extension.empty()) return path;
    std::u16string result(detail::withoutTrailingSlashes(path));
    return result.append(u".").append(extension);
}

/// The units of the text's start that take no more than so many bytes of UTF-8. Pairs stay
/// whole; a lone half takes what U+FFFD does.
std::size_t unitsWithinBytes(View text, std::size_t bytes) {
    std::size_t i = 0;
    while (i < text.size()) {
        const char16_t unit = text[i];
        const bool isPair = detail::isPairAt(text, i);
        const std::size_t units = isPair ? 2 : 1;
        const std::size_t size = isPair ? 4 : unit < 0x80 ? 1 : unit < 0x800 ? 2 : 3;
        if (size > bytes) break;
        bytes -= size;
        i += units;
    }
    return i;
}

/// At most 250 units, and so many bytes.
void cutName(std::u16string& name, std::size_t bytes) {
    // Both measures hold: 250 units may be 750 bytes, and most file systems count bytes.
    const std::size_t units = detail::wholePairs(name, LongestName);
    name.resize(unitsWithinBytes(View(name).substr(0, units), bytes));
}

/// Cuts at a lone half too, which has no representation in the file system.
void cutRepresentation(std::u16string& name, std::size_t bytes) {
    name.resize(std::min(detail::findLoneSurrogate(name), name.size()));
    cutName(name, bytes);
}

}  // namespace

String relativePathToDirectory(View path, View directory) {
    const std::vector<View> own = keptComponents(path), other = keptComponents(directory);
    const auto [ownRest, otherRest] =
        std::mismatch(own.begin(), own.end(), other.begin(), other.end());
    std::u16string result = otherRest == other.end() ? u"./" : u"";
    for (auto rest = otherRest; rest != other.end(); ++rest) result += u"../";
    return result += joined({ownRest, own.end()});
}

bool pathIsInDirectory(const String& path, const String& directory) {
    if (directory.isAbsent() || path.isIdenticalTo(directory)) return false;
    // Without its slashes the root is the folder without a name, in which nothing lies.
    return detail::liesIn(path, detail::withoutSlashesAtEnd(directory));
}

bool pathIsInDirectories(const String& path, std::span<const String> directories) {
    return std::any_of(directories.begin(), directories.end(),
                       [&](const String& directory) { return pathIsInDirectory(path, directory); });
}

String stringByDeletingFileComponent(View path) {
    if (path.empty()) return String::empty();
    return path.ends_with(u'/') ? path.substr(0, path.size() - 1) : detail::parentOfPath(path);
}

std::vector<String> standardizedPathComponents(View path) {
    const std::vector<View> kept = keptComponents(path);
    return {kept.begin(), kept.end()};
}

String standardizedPath(View path) { return joined(keptComponents(path)); }

String stringByAppendingPathExtensionIfNecessary(const String& path, const String& extension) {
    if (extension.isAbsent()) return path;
    const View own = detail::extensionOfPath(path);
    if (own.size() == extension.length() && isEqualToStringNoCase(own, extension)) return path;
    return appendedExtension(path, extension);
}

String stringByReplacingPathExtensionWith(const String& path, const String& extension) {
    if (extension.isAbsent() || extension == detail::extensionOfPath(path)) return path;
    return appendedExtension(detail::withoutExtension(path), extension);
}

bool pathMatchingExtensions(View path, std::span<const String> extensions) {
    return containsStringNoCase(extensions, detail::extensionOfPath(path));
}

bool pathMatchingExtensionsOrTypes(View path, std::span<const String> extensionsOrTypes) {
    return pathMatchingExtensions(path, extensionsOrTypes);
}

bool isValidPathExtension(View extension) {
    return !extension.empty() && extension.size() <= LongestExtension &&
           isAlphaNumString(extension);
}

String validPathExtension(View path) {
    const View extension = detail::extensionOfPath(path);
    const View valid = extension.substr(0, extension.find_first_of(u"?&;=#"));
    return isValidPathExtension(valid) ? String(valid) : String::empty();
}

String lowercasePathExtension(View path) {
    if (path.size() < 2) return {};
    const std::size_t mark = path.find_last_of(u"./");
    if (mark == View::npos || path[mark] == u'/') return {};
    const ConversionTable& lower = lowerCharsTable();
    std::u16string extension(path.substr(mark + 1));
    for (char16_t& unit : extension) unit = lower[unit];
    return extension;
}

String stringByCreatingFileSystemRepresentation(View name) {
    std::u16string result(name);
    createFileSystemRepresentation(result);
    return result;
}

String stringByCreatingFileSystemRepresentationByAppendingExtension(View name, View extension) {
    std::u16string result(name);
    createFileSystemRepresentationAndAppendExtension(result, extension);
    return result;
}

void createFileSystemRepresentation(std::u16string& name) { cutRepresentation(name, LongestName); }

void createFileSystemRepresentationAndAppendExtension(std::u16string& name, View extension) {
    if (extension.empty() || extension.size() > LongestExtension)
        return createFileSystemRepresentation(name);
    const std::u16string suffix = u"." + std::u16string(extension);
    // At most 3 * 17 bytes and the full stop, so that room for a name is always left.
    cutRepresentation(name, LongestName - utf8(suffix).size());
    if (!View(name).ends_with(suffix)) name += suffix;
}

String stringByCreatingFilename(View text) {
    std::u16string result(text);
    createFilename(result);
    return result;
}

void createFilename(std::u16string& text) {
    normalizeString(text);
    detail::trimInPlace(text, detail::Ends::Both, [](char16_t unit) {
        return unit == u'.' || unit == u'/' || unit == u':' || unit == u'_';
    });
    // Cut before units are replaced, as the replacements are one byte for one.
    cutName(text, LongestFilename);
    constexpr View Illegal(u"*/:<>?\\|\0", 9);
    std::replace_if(
        text.begin(), text.end(), [&](char16_t unit) { return Illegal.find(unit) != View::npos; },
        u'-');
}

}  // namespace velmo
