// Paths of URLs, for people, for folders and for requests. There is no asking the server: what is
// a folder is told by the looks of the path, with the rule of directoryOf().
#include <velmocore/url/URLPaths.h>

#include <velmocore/text/HomeFolder.h>
#include <velmocore/text/Normalisation.h>
#include <velmocore/text/Paths.h>
#include <velmocore/url/URLSchemes.h>

#include "text/Keyword.h"
#include "text/PathParts.h"
#include "text/Trim.h"

namespace velmo {
namespace {

using Units = std::u16string_view;
using detail::Ends;

/// Appends a part behind its mark, unless it is empty.
void appendPart(StringBuilder& out, char16_t mark, Units part) {
    if (part.empty()) return;
    out.append(mark);
    out.append(part);
}

String assembledPath(const URL& url, bool withFragment) {
    if (url.isAbsent() || url.isFileURL()) return url.path();
    StringBuilder out(url.absoluteString().length());
    out.append(url.part(URLPart::Path));
    appendPart(out, u';', url.part(URLPart::Parameters));
    appendPart(out, u'?', url.part(URLPart::Query));
    if (withFragment) appendPart(out, u'#', url.part(URLPart::Fragment));
    return out.finish();
}

bool hasCredentials(const URL& url) {
    return url.part(URLPart::User).data() || url.part(URLPart::Password).data();
}

/// What has them is made by a program, and no folder, whatever its path looks like.
bool hasParamsOrQuery(const URL& url) {
    return !url.part(URLPart::Parameters).empty() || !url.part(URLPart::Query).empty();
}

/// Without the slashes at the given ends and, if one stood in front, the credentials.
Units withoutSlashes(Units specifier, Ends ends) {
    const Units rest = detail::trimmedView(specifier, ends, detail::OneUnit{u'/'});
    if (!specifier.starts_with(u'/')) return rest;
    const std::size_t mark = rest.find_first_of(u"/@");
    return mark != Units::npos && rest[mark] == u'@' ? rest.substr(mark + 1) : rest;
}

/// Without a listing of the server's folders, a path with an extension counts as a file and one
/// without as a folder, unless a query asks for something in it.
Units directoryOf(const URL& url, Units path) {
    if (url.isFileURL())
        return path.ends_with(u'/') ? path.substr(0, path.size() - 1) : detail::parentOfPath(path);
    if (path.ends_with(u'/')) return path.substr(0, path.size() - 1);
    return url.pathExtension().isEmpty() && !hasParamsOrQuery(url) ? path
                                                                   : detail::parentOfPath(path);
}

String orRoot(const String& path) { return path.isEmpty() ? String(u"/") : path; }

/// The path with ~ for the home folder.
String abbreviated(const String& path) {
    const Units home = homeDirectory(), units = path;
    // A home folder of one unit is the root, which every path begins with.
    if (home.size() < 2 || !units.starts_with(home)) return path;
    const Units rest = units.substr(home.size());
    if (!rest.empty() && rest[0] != u'/') return path;
    return u"~" + std::u16string(rest);
}

}  // namespace

String fullPath(const URL& url) { return url.isFileURL() ? url.path() : url.rawPath(); }
String pathWithParamsAndQuery(const URL& url) { return assembledPath(url, false); }
String pathWithParamsAndQueryAndFragment(const URL& url) { return assembledPath(url, true); }

String absoluteStringOrPath(const URL& url) {
    return url.isFileURL() ? url.path() : url.absoluteString();
}

String absoluteStringWithoutUserAndPassword(const URL& url) {
    if (url.isFileURL() || !hasCredentials(url)) return absoluteStringOrPath(url);
    StringBuilder out(url.absoluteString().length());
    out.append(url.part(URLPart::Scheme));
    if (!out.isEmpty()) out.append(u"://");
    out.append(url.part(URLPart::Host));
    out.append(pathWithParamsAndQueryAndFragment(url));
    return out.finish();
}

String absoluteStringWithHostAndPath(const URL& url) {
    if (url.isAbsent() || url.isFileURL()) return url.path();
    return withoutSlashes(url.part(URLPart::ResourceSpecifier), Ends::Left);
}

bool isBaseDirectory(const URL& url) {
    if (url.isAbsent() || url.isFileURL()) return false;
    const Units path = url.part(URLPart::Path);
    if (path.empty()) return true;
    if (!path.ends_with(u'/') && !url.pathExtension().isEmpty()) return false;
    return !hasParamsOrQuery(url);
}

String baseDirectory(const URL& url) {
    if (url.isAbsent()) return {};
    const String path = fullPath(url);
    return orRoot(directoryOf(url, path));
}

String standardizedBaseDirectory(const URL& url) {
    if (url.isAbsent()) return {};
    const String path = fullPath(url);
    return orRoot(standardizedPath(directoryOf(url, path)));
}

String normalizedPath(const URL& url) { return normalizedString(url.path()); }

String proposedFilename(const URL& url) {
    if (isDataURL(url)) return u"data";
    const Units specifier = url.part(URLPart::ResourceSpecifier);
    if (!url.isAbsent() && !url.isFileURL() && !specifier.starts_with(u'/'))
        return detail::trimmedView(specifier, Ends::Both, detail::OneUnit{u'/'});
    const String name = url.lastPathComponent();
    return name.isEmpty() || name == u"/" ? url.host() : name;
}

String displayString(const URL& url) {
    if (url.isFileURL()) return abbreviated(url.path());
    if (!isWebKitURL(url) && !isMailURL(url)) return url.absoluteString();
    Units shown = withoutSlashes(url.part(URLPart::ResourceSpecifier), Ends::Both);
    if (detail::keyword::beginsWith(shown, "WWW.")) shown.remove_prefix(4);
    return shown;
}

}  // namespace velmo
