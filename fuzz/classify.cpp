// The first line is the URL of a page, the rest a link on it, which is repaired, judged and
// unwrapped by the rules of every search engine. Asking all predicates at once must answer
// as asking them one by one, and what is accepted must be a URL.
#include <velmocore/url/AdvertisementFilter.h>
#include <velmocore/url/FileKinds.h>
#include <velmocore/url/LinkAcceptance.h>
#include <velmocore/url/MIMETypes.h>
#include <velmocore/url/SearchEngines.h>
#include <velmocore/url/TrackingParameters.h>
#include <velmocore/url/URLClassification.h>
#include <velmocore/url/URLRepair.h>
#include <velmocore/url/URLSchemes.h>

#include <algorithm>

#include "Input.h"
#include "url/MIMEDatabase.h"

using namespace velmo;

namespace {

using fuzz::require;

constexpr const char16_t* EnginePages[] = {
    u"http://www.bing.com/",       u"http://www.ask.com/",  u"http://www.info.com/",
    u"http://duckduckgo.com/",     u"http://yahoo.com/",    u"http://www.google.com/",
    u"http://scholar.google.com/", u"http://lexisweb.com/", u"http://vsearch.nlm.nih.gov/",
};

void checkRepair(const String& text) {
    for (bool joins : {false, true}) {
        const String location = possibleInternetLocation(text, joins);
        require(location.isAbsent() || (location.length() >= 4 && location.length() <= 1023));
    }
    const String formatted = stringByFormattingURL(text);
    require(formatted.length() <= text.length() && formatted.isAbsent() == text.isAbsent());
}

void checkClasses(const String& link) {
    for (bool common : {false, true}) {
        const URLClasses classes = classesOfStringURL(link, common);
        require(classes == URLClasses{.imageAd = stringURLIsImageAd(link),
                                      .adSense = stringURLIsAdSense(link),
                                      .advertisement = stringURLIsAdvertisementIncludingCommonHosts(
                                          link, common),
                                      .bookmarklet = stringURLIsBookmarklet(link),
                                      .recaptcha = stringURLIsRecaptcha(link),
                                      .translation = stringURLIsTranslation(link),
                                      .topicOrThread = stringURLIsTopicOrThread(link),
                                      .forum = stringURLIsForum(link),
                                      .cached = stringURLIsCached(link)});
        require(!classes.adSense || classes.advertisement);
    }
}

void checkAcceptance(const String& link, const URL& page) {
    const URL accepted = acceptStringURL(link, page);
    if (!accepted.isAbsent()) {
        require(URL::URLWithString(accepted.absoluteString()) == accepted);
        require(isRemoteWebKitURL(accepted));
    }
    const URL resolved = resolveStringURL(link, page);
    require(resolved.isAbsent() || URL::URLWithString(resolved.absoluteString()) == resolved);
}

/// Whatever a file of globs holds, our own types stay.
void checkDatabase(std::string_view globs) {
    const detail::MIMEDatabase database(globs);
    for (const detail::MIMERow& row : detail::mimeRows())
        require(!database.typeOf(row.extension).empty() && !database.extensionOf(row.type).empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String input = fuzz::unitsOf(data, size);
    const std::u16string_view units = input;
    const std::size_t end = std::min(units.find(u'\n'), units.size());
    const URL page = URL::URLWithString(units.substr(0, end));
    const String link = units.substr(std::min(end + 1, units.size()));

    checkRepair(link);
    checkClasses(link);
    checkAcceptance(link, page);
    for (const char16_t* engine : EnginePages) checkAcceptance(link, URL::URLWithString(engine));
    isSearchEngine(page);
    (void)AdvertisementFilter(link).matches(page);
    (void)TrackingParameters(link).contains(link, units.substr(0, end));
    extensionForMIMEType(link);
    MIMETypeForExtension(link);
    isBinaryFileType(link);
    // Slow, so only for what begins as a file of globs does.
    if (size > 0 && data[0] >= '0' && data[0] <= '9')
        checkDatabase({reinterpret_cast<const char*>(data), size});
    return 0;
}
