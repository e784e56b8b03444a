#include <velmocore/Version.h>
#include <velmocore/net/UserAgents.h>
#include <velmocore/platform/PropertyList.h>

#include <fmt/core.h>

#include "net/BrowserVersions.h"
#include "platform/Files.h"

namespace velmo {
namespace {

constexpr std::size_t LargestVersionFile = std::size_t{1} << 20;

constexpr const char* WebKitFile =
    "/System/Library/Frameworks/WebKit.framework/Versions/A/Resources/version.plist";
constexpr const char* BrowserFile = "/Applications/Safari.app/Contents/Info.plist";

/// What a property list in a file holds under a key; absent if there is no such thing.
String stringInFile(const char* path, std::u16string_view key) {
    const auto bytes = detail::readRegularFile(path, LargestVersionFile);
    const auto list = bytes ? propertyListFromData(*bytes) : std::nullopt;
    const String* value = list ? list->string(key) : nullptr;
    return value ? *value : String();
}

}  // namespace

namespace detail {

String webKitVersionOf(const String& bundleVersion, double foundation) {
    // The prefix is the system's version, of two digits since that one.
    const bool isRecent = foundation >= 1151.16;
    const std::size_t prefix = isRecent ? 2 : 1;
    if (bundleVersion.length() > prefix) return bundleVersion.view().substr(prefix);
    return isRecent ? u"600.7.12" : u"536.30.1";
}

String browserVersionOf(const String& bundleVersion, double foundation) {
    if (!bundleVersion.isEmpty()) return bundleVersion;
    if (foundation >= 1252.0) return u"9.0";
    if (foundation >= 1153.2) return u"8.0.7";
    return foundation >= 1151.16 ? u"8.0" : u"7.0";
}

}  // namespace detail

const String& WebKitUserAgent() {
    static const String agent = [] {
        const std::string webKit =
            detail::webKitVersionOf(stringInFile(WebKitFile, u"CFBundleVersion")).utf8();
        const String browser =
            detail::browserVersionOf(stringInFile(BrowserFile, u"CFBundleShortVersionString"));
        return String::fromUTF8(
            fmt::format("Mozilla/5.0 (Macintosh; Intel Mac OS X) AppleWebKit/{0} "
                        "(KHTML, like Gecko) Version/{1} Safari/{0}",
                        webKit, browser.utf8()));
    }();
    return agent;
}

const String& downloadsUserAgent() {
    static const String agent =
        u"Mozilla/5.0 (Macintosh; Intel Mac OS X) AppleWebKit (KHTML, like Gecko)";
    return agent;
}

const String& libraryUserAgent() {
    // Never freed: the thread of the sessions asks for it to the end of the program.
    static const String& agent =
        *new String(String::fromUTF8(fmt::format("velmo/{}", linkedVersionText())));
    return agent;
}

}  // namespace velmo
