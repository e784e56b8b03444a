// Two families of tests, of a URL by its scheme and of a text by its first units. They differ in
// places, which is how callers know them: texts may begin with "www." where a URL needs a scheme,
// and some schemes are compared in exact case.
//
// Only isLoadableURL() asks the file system; all else goes by the text alone.
#include <velmocore/url/URLSchemes.h>

#include <sys/stat.h>

#include <algorithm>
#include <initializer_list>
#include <string>

#include <velmocore/text/CharacterTests.h>
#include <velmocore/text/Comparison.h>
#include <velmocore/text/Finding.h>

#include "platform/Ascii.h"
#include "text/Keyword.h"
#include "text/PathParts.h"
#include "text/Pieces.h"

namespace velmo {
namespace {

using Units = std::u16string_view;
using detail::concatenated;
using namespace detail::ascii;

/// Groups of schemes, as bits of a mask.
enum SchemeGroup { Web = 1, FTP = 2, Feed = 4, File = 8 };

struct Scheme {
    std::string_view name;
    SchemeGroup group;
};
constexpr Scheme Schemes[] = {
    {"HTTP", Web}, {"HTTPS", Web}, {"FTP", FTP},   {"FTPS", FTP},
    {"SFTP", FTP}, {"FEED", Feed}, {"FILE", File},
};

bool isScheme(Units scheme, int groups) {
    return std::any_of(std::begin(Schemes), std::end(Schemes), [=](const Scheme& known) {
        return (known.group & groups) && detail::keyword::equals(scheme, known.name);
    });
}
bool isScheme(const URL& url, int groups) { return isScheme(url.part(URLPart::Scheme), groups); }

bool isScheme(const URL& url, std::initializer_list<std::string_view> names) {
    const Units scheme = url.part(URLPart::Scheme);
    return std::any_of(names.begin(), names.end(), [=](std::string_view name) {
        return detail::keyword::equals(scheme, name);
    });
}

/// A text is of a kind if it is long enough and begins with one of the prefixes.
struct StringKind {
    std::size_t leastLength;
    std::initializer_list<std::string_view> prefixes;
};

bool isOfKind(Units string, const StringKind& kind) {
    return string.size() >= kind.leastLength &&
           std::any_of(kind.prefixes.begin(), kind.prefixes.end(), [=](std::string_view prefix) {
               return detail::keyword::beginsWith(string, prefix);
           });
}

/// The host of the reference manager's maker.
constexpr Units BookendsHost = u"sonnysoftware.com";

bool isMailbox(Units name) {
    return isLetterOrDigit(name.back()) && std::all_of(name.begin(), name.end(), [](char16_t unit) {
               return isLetterOrDigit(unit) || unit == u'-' || unit == u'.' || unit == u'_';
           });
}

/// The domain of a mail address and what follows it. Only the first full stop is looked at,
/// and what may stand behind it is short.
bool isMailDomain(Units text) {
    if (text.empty() || !isLetterOrDigit(text[0])) return false;
    const std::size_t dot = text.find_first_of(u":@/?.");
    if (dot == Units::npos || text[dot] != u'.') return false;
    const Units ending = text.substr(dot + 1);
    if (ending.empty() || !isLetter(ending[0])) return false;
    const std::size_t end = ending.find_first_of(u":@/?.,");
    if (end == Units::npos) return ending.size() < 5;
    return (ending[end] == u'?' || ending[end] == u'.') && end < 5;
}

/// The rest of a feed: link that is to be loaded by another scheme; null if the link stands.
Units feedTarget(Units string) {
    return string.size() > 5 && isFeedStringURL(string) ? string.substr(5) : Units();
}

bool isLoadedAsItIs(Units feedTarget) {
    return detail::keyword::beginsWith(feedTarget, "HTTP:") ||
           detail::keyword::beginsWith(feedTarget, "HTTPS:");
}

}  // namespace

bool isHTTPURL(const URL& url) { return isScheme(url, Web); }
bool isFTPURL(const URL& url) { return isScheme(url, FTP); }
bool isNewsURL(const URL& url) { return isScheme(url, {"NEWS", "NTTP"}); }
bool isFeedURL(const URL& url) { return isScheme(url, Feed); }
bool isMailURL(const URL& url) { return isScheme(url, {"MAILTO"}); }
bool isJavaScriptURL(const URL& url) { return isScheme(url, {"JAVASCRIPT"}); }
bool isAppleScriptURL(const URL& url) { return isScheme(url, {"APPLESCRIPT"}); }
bool isDataURL(const URL& url) { return isScheme(url, {"DATA"}); }
bool isAboutURL(const URL& url) { return isScheme(url, {"ABOUT"}); }
bool isSafariReaderURL(const URL& url) {
    return isScheme(url, {"SAFARI-RESOURCE", "SAFARI-READER", "READING-LIST"});
}
bool isBookendsURL(const URL& url) {
    return url.part(URLPart::Scheme) == u"bookends" && url.part(URLPart::Host) == BookendsHost;
}

bool isDownloadableURL(const URL& url) { return isScheme(url, Web | FTP); }

bool isLoadableURL(const URL& url) {
    if (!url.isFileURL()) return isScheme(url, Web | FTP | Feed);
    const std::string path = url.path().utf8();
    struct stat status;
    return path.find('\0') == path.npos && stat(path.c_str(), &status) == 0 &&
           !S_ISDIR(status.st_mode);
}

bool isRemoteWebKitURL(const URL& url) {
    const Units host = url.part(URLPart::Host);
    return isScheme(url, Web | FTP | Feed) && containsAlphaNumCharacter(host) &&
           host.find(u"...") == Units::npos;
}

bool isWebKitURL(const URL& url) { return url.isFileURL() || isRemoteWebKitURL(url); }

bool isUsableURL(const URL& url) {
    return isWebKitURL(url) || isJavaScriptURL(url) ||
           detail::keyword::beginsWith(url.part(URLPart::Scheme), "APPLE");
}

// Files have no host, or any name of this machine's: they all are of one.
bool isHostEqualTo(const URL& url, const URL& other) {
    if (other.isAbsent()) return false;
    if (url.isFileURL() || other.isFileURL()) return url.isFileURL() && other.isFileURL();
    return isEqualToStringNoCase(url.part(URLPart::Host), other.part(URLPart::Host));
}

bool isWebKitStringURL(Units string) {
    return isOfKind(string, {5,
                             {"HTTP://", "HTTPS://", "FEED://", "FTP://", "FTPS://", "SFTP://",
                              "WWW.", "FTP.", "FILE://"}});
}
bool isRemoteWebKitStringURL(Units string) {
    return isOfKind(
        string,
        {5, {"HTTP://", "HTTPS://", "FEED://", "FTP://", "FTPS://", "SFTP://", "WWW.", "FTP."}});
}
bool isDownloadableStringURL(Units string) {
    return isOfKind(string,
                    {5, {"HTTP://", "HTTPS://", "FTP://", "FTPS://", "SFTP://", "WWW.", "FTP."}});
}
bool isLoadableStringURL(Units string) {
    return isOfKind(string, {5,
                             {"HTTP://", "HTTPS://", "FTP://", "FTPS://", "SFTP://", "FEED://",
                              "WWW.", "FTP.", "FILE://"}});
}
bool isHTTPStringURL(Units string) { return isOfKind(string, {7, {"HTTP://", "HTTPS://"}}); }
bool isFTPStringURL(Units string) {
    return isOfKind(string, {6, {"FTP://", "FTPS://", "SFTP://"}});
}
bool isNewsStringURL(Units string) { return isOfKind(string, {7, {"NEWS://", "NNTP://"}}); }
bool isSafariReaderStringURL(Units string) {
    return isOfKind(string, {13, {"SAFARI-RESOURCE:", "SAFARI-READER:", "READING-LIST:"}});
}
bool isFeedStringURL(Units string) { return isOfKind(string, {0, {"FEED:"}}); }
bool isJavaScriptStringURL(Units string) { return isOfKind(string, {0, {"JAVASCRIPT:"}}); }
bool isAppleScriptStringURL(Units string) { return isOfKind(string, {0, {"APPLESCRIPT:"}}); }
bool isDataStringURL(Units string) { return string.starts_with(u"data:"); }
bool isAboutStringURL(Units string) { return string.starts_with(u"about:"); }
bool isBookendsStringURL(Units string) {
    constexpr Units Scheme = u"bookends://";
    return string.starts_with(Scheme) && string.substr(Scheme.size()).starts_with(BookendsHost);
}
bool isFileStringURL(Units string) {
    return string.starts_with(u'/') || string.starts_with(u'~') ||
           detail::keyword::beginsWith(string, "FILE://");
}

bool isMailStringURL(Units string) {
    if (string.size() < 5) return false;
    if (detail::keyword::beginsWith(string, "MAILTO:")) return string.size() > 11;
    if (!isLetterOrDigit(string[0])) return false;
    const std::size_t at = string.find_first_of(u":@/?");
    if (at == Units::npos || at == 0 || string[at] != u'@') return false;
    return isMailbox(string.substr(0, at)) && isMailDomain(string.substr(at + 1));
}

String stringURLScheme(Units string) {
    const std::size_t end = string.find_first_of(u":/;?");
    return end == Units::npos || string[end] != u':' ? String() : String(string.substr(0, end));
}

String stringURLPathExtension(Units string) {
    if (string.size() < 2) return {};
    // The full stops of a host are no extensions.
    // A text that begins so has no host.
    if (string[0] != u'.' && string[0] != u'/') {
        if (const std::size_t scheme = string.find(u"://"); scheme != Units::npos) {
            const std::size_t path = string.find_first_of(u"/?", scheme + 3);
            if (path == Units::npos) return {};
            string = string.substr(path);
        }
    }
    Units extension = detail::extensionOfComponent(detail::lastComponentOf(string));
    extension = extension.substr(0, extension.find_first_of(u"?&;=#"));
    return extension.empty() ? String() : String(extension);
}

bool stringURLMatchingExtensions(Units string, std::span<const String> extensions) {
    return containsStringNoCase(extensions, stringURLPathExtension(string));
}

String validFeedStringURL(const String& string) {
    const Units target = feedTarget(string);
    if (target.empty() || target[0] == u'/') return string;
    return isLoadedAsItIs(target) ? String(target) : concatenated(u"http://", target);
}

String WebKitStringURL(const String& string) {
    const Units target = feedTarget(string);
    if (target.empty()) return string;
    return isLoadedAsItIs(target) ? String(target) : concatenated(u"http:", target);
}

}  // namespace velmo
