// Where a mirror keeps a page. The host goes first, inverted or as it stands, then path,
// parameters and query: pages that differ in any of these must not share a file. What stands in a
// URL is foreign, so nothing of it may lead out of the folder or name a folder of its own.
#include <velmocore/url/InvertedPaths.h>

#include <algorithm>
#include <vector>

#include <velmocore/text/Normalisation.h>
#include <velmocore/text/Paths.h>
#include <velmocore/url/URLHosts.h>
#include <velmocore/url/URLPaths.h>
#include <velmocore/url/URLSimplification.h>

#include "text/PathParts.h"
#include "url/LongComponents.h"

namespace velmo {
namespace {

using Units = std::u16string_view;

constexpr Units DefaultComponent = u"index.html";

std::u16string withHyphens(Units text) {
    std::u16string result(text);
    std::replace(result.begin(), result.end(), u'/', u'-');
    return result;
}

/// A part behind its mark; nothing if it is empty. A slash in it would be a folder.
std::u16string marked(char16_t mark, Units part) {
    return part.empty() ? std::u16string() : mark + withHyphens(part);
}

/// Parameters and query as they are added to the path: pages that differ in these are two files.
String additionOf(const URL& url, bool removeSessionIDs) {
    const Units query = url.part(URLPart::Query);
    const Units parameters = url.part(URLPart::Parameters);
    if (parameters.empty() && removeSessionIDs && query == u"page=main.php") return String::empty();
    const String addition = marked(u';', parameters) + marked(u'?', query);
    return removeSessionIDs ? stringURLByRemovingSessionIDs(addition) : addition;
}

void appendComponents(std::vector<String>& list, Units path, Case letterCase) {
    std::u16string text(path);
    if (letterCase == Case::Insensitive) lowercase(text);
    const std::vector<String> components = standardizedPathComponents(text);
    list.insert(list.end(), components.begin(), components.end());
}

std::vector<String> componentsOf(const URL& url, const InvertedPathOptions& options) {
    std::vector<String> list;
    if (url.isFileURL()) {
        appendComponents(list, url.path(), options.letterCase);
        return list;
    }
    list = invertedHostComponents(url, options.maxHostComponents);
    const String addition = additionOf(url, options.removeSessionIDs);
    const std::u16string path = std::u16string(url.part(URLPart::Path)).append(addition);
    appendComponents(list, path, options.letterCase);
    const bool isFolder =
        isBaseDirectory(url) || (addition.isEmpty() && Units(path).ends_with(u'/'));
    if (path.empty() || isFolder) list.push_back(DefaultComponent);
    return list;
}

/// The folder of a host, which is its name. No host is named as what stands for those that would
/// lead out of the folder or be none: two sites never share one.
Units hostFolderOf(const URL& url) {
    const Units host = url.part(URLPart::Host);
    return host.empty() || host == u"." || host == u".." ? Units(u"-") : host;
}

/// The path below the folder, which no .. leads out of.
String pathWithin(Units folder, Units path) {
    return detail::appendedComponent(standardizedPath(folder), standardizedPath(path));
}

}  // namespace

String invertedPathRelativeToDirectory(const URL& url, const String& directory,
                                       const InvertedPathOptions& options) {
    if (url.isAbsent()) return {};
    std::vector<String> list = componentsOf(url, options);
    // The parts of a host were not standardised as the path was: dots for a host would climb.
    std::erase_if(list, [](const String& component) {
        return component == u"/" || component == u"." || component == u"..";
    });
    const std::uint64_t most = options.maxPathComponents;
    if (most != 0 && list.size() > most)
        detail::joinFrom(list, static_cast<std::size_t>(most - 1), u'-');
    const String& extension = options.pathExtension;
    // For the full stop and the extension, so that the name still fits when they are appended.
    const std::size_t room = extension.isEmpty() ? 0 : extension.length() + 1;
    if (!list.empty()) list.back() = detail::fittingComponent(list.back(), room);
    String path = list.empty() ? String(directory.isAbsent() ? u"" : directory.view())
                               : detail::pathOfComponents(directory, list);
    if (room == 0 || path.isEmpty()) return path;
    return std::u16string(path).append(u".").append(extension);
}

String pathRelativeToDirectory(const URL& url, const String& directory,
                               const DirectPathOptions& options) {
    if (url.isAbsent()) return {};
    if (url.isFileURL()) return pathWithin(directory, url.path());
    const String folder = detail::appendedComponent(directory, hostFolderOf(url));
    std::u16string path = std::u16string(url.part(URLPart::Path)) +
                          marked(u';', url.part(URLPart::Parameters)) +
                          marked(u'?', url.part(URLPart::Query));
    if (options.simplified) {
        const String name =
            stringByCreatingFileSystemRepresentation(stringByCreatingFilename(path));
        return detail::appendedComponent(folder, name.isEmpty() ? DefaultComponent : name.view());
    }
    // A folder's page needs a name of its own, as the folder will hold others.
    const bool isFolder = path.empty() || (options.defaultPathComponent && isBaseDirectory(url));
    if (isFolder) path.append(u"/").append(DefaultComponent);
    return pathWithin(folder, path);
}

}  // namespace velmo
