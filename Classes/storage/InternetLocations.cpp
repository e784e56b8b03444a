// Location files. Reading goes by the name first, as nothing else tells a text apart from a
// shortcut; then each form is tried in its turn on the bytes, wherever they come from.
#include <velmocore/storage/InternetLocations.h>

#include <algorithm>

#include <velmocore/platform/PropertyList.h>
#include <velmocore/storage/KeyedData.h>
#include <velmocore/text/Comparison.h>
#include <velmocore/text/StringFiles.h>
#include <velmocore/text/Trimming.h>
#include <velmocore/url/URLSchemes.h>

#include "platform/Files.h"
#include "storage/AppleDouble.h"
#include "storage/InternetLocationTables.h"
#include "storage/ResourceFork.h"
#include "text/Keyword.h"
#include "text/LineScan.h"
#include "text/PathParts.h"

namespace velmo {
namespace {

namespace keyword = detail::keyword;

/// A location has a few thousand bytes; what is called so and is larger is something else.
constexpr std::size_t MaxFileSize = 1 << 24;
constexpr std::u16string_view LinkType = u"'LINK'";

bool isShortcutExtension(std::u16string_view extension) {
    return keyword::equals(extension, "URL");
}

std::u16string_view firstLineOf(std::u16string_view text) {
    const char16_t *const from = text.data(), *const to = from + text.size();
    const char16_t* const feed = detail::Feeds{}.find(from, to);
    return {from, feed == to ? to : detail::behindLineEnd(feed, to)};
}

/// The URL in the text of a shortcut: in the first line that names it, or all of a text that is
/// one line, if that may be.
String shortcutURL(const String& text, bool mayBeBare) {
    std::u16string_view rest = text;
    std::size_t lines = 0;
    for (; !rest.empty(); ++lines) {
        const std::u16string_view line = firstLineOf(rest);
        if (hasPrefixNoCase(line, u"URL=")) return stringByTrimmingWhiteSpaces(line.substr(4));
        rest.remove_prefix(line.size());
    }
    if (!mayBeBare || lines != 1) return {};
    const String line = stringByTrimmingWhiteSpaces(text);
    return line.isEmpty() ? String() : line;
}

/// A property list as XML that other programs wrote: the reader of lists takes no mark of byte
/// order, and no text but UTF-8.
std::optional<PropertyList> markedList(Bytes content) {
    const std::string_view bytes = charsOf(content);
    if (bytes.starts_with("\xEF\xBB\xBF")) return propertyListFromData(content.subspan(3));
    if (!bytes.starts_with("\xFF\xFE") && !bytes.starts_with("\xFE\xFF")) return std::nullopt;
    return propertyListFromData(stringWithData(content, UTF16StringEncoding).utf8());
}

InternetLocation listedLocation(Bytes content) {
    std::optional<PropertyList> list = propertyListFromData(content);
    if (!list) list = markedList(content);
    const String* const url = list ? list->string(u"URL") : nullptr;
    if (!url) return {};
    const String* const name = list->string(u"Name");
    return {*url, name ? *name : String()};
}

String resourceURL(Bytes fork) {
    std::optional<Bytes> bytes = detail::firstResource(fork, keyOfCode("url "));
    if (!bytes) bytes = detail::firstResource(fork, keyOfCode("TEXT"));
    return bytes ? stringWithData(*bytes, UTF8StringEncoding) : String();
}

InternetLocation resolved(Bytes content, std::u16string_view extension,
                          const detail::AppleDouble& beside) {
    const String type = detail::typeOfFinderInfo(beside.finderInfo);
    if (!isInternetLocationExtension(extension, type)) return {};
    // The resources of a shortcut are not looked at, whatever it lacks.
    const bool isShortcut = isShortcutExtension(extension);
    if (isShortcut || type == LinkType)
        return {shortcutURL(stringWithData(content, UTF8StringEncoding), isShortcut), {}};
    const InternetLocation listed = listedLocation(content);
    return listed ? listed : InternetLocation{resourceURL(beside.resourceFork), {}};
}

String extensionOf(const Path& path) { return detail::extensionOfPath(path.string()); }

/// The scheme's extension; "inetloc" of any other.
String extensionOfScheme(std::u16string_view scheme) {
    for (const detail::LocationScheme& row : detail::locationSchemes())
        if (keyword::equals(scheme, row.scheme)) return row.extension;
    return u"inetloc";
}

bool isVNCStringURL(std::u16string_view string) { return hasPrefixNoCase(string, u"vnc://"); }

/// What a string is asked in turn.
/// Not by the scheme: strings that name none, as www.h.org and /path, are told too.
constexpr struct {
    bool (*isOf)(std::u16string_view);
    std::u16string_view extension;
} StringExtensions[] = {
    {isFileStringURL, u"fileloc"}, {isHTTPStringURL, u"webloc"},  {isFTPStringURL, u"ftploc"},
    {isNewsStringURL, u"newsloc"}, {isMailStringURL, u"mailloc"}, {isVNCStringURL, u"vncloc"},
};

/// Whether there is a file name to write to.
bool isUsable(const Path& path) { return !path.isAbsent() && !path.bytes().empty(); }

}  // namespace

std::span<const std::string_view> InternetLocationTypes() noexcept {
    return detail::locationTypes();
}

bool isInternetLocationExtension(std::u16string_view extension, std::u16string_view type) {
    const std::uint32_t code = detail::codeOfTypeString(type);
    return std::ranges::count(detail::locationTypeCodes(), code) > 0 ||
           std::ranges::any_of(detail::locationExtensions(), [&](std::string_view known) {
               return keyword::equals(extension, known);
           });
}

bool isInternetLocationFile(const Path& path) {
    const Data beside = detail::appleDoubleBeside(path);
    return isInternetLocationExtension(
        extensionOf(path), detail::typeOfFinderInfo(detail::appleDouble(beside).finderInfo));
}

InternetLocation resolveInternetLocation(const Path& path) {
    const Data beside = detail::appleDoubleBeside(path);
    const detail::AppleDouble parts = detail::appleDouble(beside);
    const String extension = extensionOf(path);
    // A file that is no location is not read. One that cannot be read may have its URL beside it.
    if (!isInternetLocationExtension(extension, detail::typeOfFinderInfo(parts.finderInfo)))
        return {};
    const auto content = detail::readRegularFile(path.bytes(), MaxFileSize);
    return resolved(content ? Bytes(*content) : Bytes(), extension, parts);
}

InternetLocation resolveInternetLocationData(const InternetLocationData& file) {
    return resolved(file.content, file.extension, detail::appleDouble(file.appleDouble));
}

String pathExtensionForInternetLocation(const URL& location) {
    if (location.isAbsent()) return {};
    return location.isFileURL() ? u"fileloc" : extensionOfScheme(location.part(URLPart::Scheme));
}

String pathExtensionForInternetLocation(const String& location) {
    if (location.isEmpty()) return {};
    for (const auto& [isOf, extension] : StringExtensions)
        if (isOf(location)) return extension;
    return u"inetloc";
}

bool createInternetLocation(const URL& location, const Path& path) {
    return createInternetLocation(location.absoluteString(), path);
}

bool createInternetLocation(const String& location, const Path& path) {
    if (location.isEmpty() || !isUsable(path)) return false;
    // A lone surrogate would be another unit in the file.
    if (String::fromUTF8(location.utf8()) != location) return false;
    const auto list = dataFromPropertyList({PropertyListDictionary{{u"URL", {location}}}},
                                           PropertyListFormat::XML);
    return list && detail::writeFile(path.bytes(), *list, false);
}

bool createURL(const URL& location, const Path& path) {
    return createURL(location.absoluteString(), path);
}

bool createURL(const String& location, const Path& path) {
    if (location.isAbsent() || !isUsable(path)) return false;
    std::u16string text = u"[InternetShortCut]\nURL=";
    text.append(location.view()).append(u"\n");
    return writeToFile(text, path, true, UTF8StringEncoding);
}

}  // namespace velmo
