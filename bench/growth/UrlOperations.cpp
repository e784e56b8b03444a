// URLs: reading, resolving, escapes, parameters, judging, simplification, hosts and paths.
#include <velmocore/url/AdvertisementFilter.h>
#include <velmocore/url/DomainNames.h>
#include <velmocore/url/FileKinds.h>
#include <velmocore/url/InvertedPaths.h>
#include <velmocore/url/LinkAcceptance.h>
#include <velmocore/url/LinkFilter.h>
#include <velmocore/url/LinkFollowing.h>
#include <velmocore/url/MIMETypes.h>
#include <velmocore/url/PageKey.h>
#include <velmocore/url/PercentEscapes.h>
#include <velmocore/url/QueryParameters.h>
#include <velmocore/url/RelativeURLs.h>
#include <velmocore/url/SearchEngines.h>
#include <velmocore/url/URLClassification.h>
#include <velmocore/url/URLConstruction.h>
#include <velmocore/url/URLHosts.h>
#include <velmocore/url/URLPaths.h>
#include <velmocore/url/URLRepair.h>
#include <velmocore/url/URLSchemes.h>
#include <velmocore/url/URLSimplification.h>
#include <velmocore/url/URLVariants.h>

#include "Growth.h"

namespace velmo::growth {

namespace {

const URL& base() {
    static const URL Base = URL::URLWithString(u"http://h.org/a/b/c.html?d#e");
    return Base;
}

/// The text as the path, the query and the host of a URL that is one.
std::vector<URL> placedIn(const Input& in) {
    const String escaped = stringByAddingPercentEscapesToURL(in.text);
    return {in.url, URL::URLWithString(u"http://h.org/" + escaped),
            URL::URLWithString(u"http://h.org/a?" + escaped),
            URL::URLWithString(u"http://" + in.text + u"/")};
}

constexpr Operation Rows[] = {
    {"reading a URL",
     [](const Input& in) {
         use(URL::URLWithString(in.text));
         use(URL::URLWithString(in.text, base()));
         use(URL::fileURLWithPath(in.text));
         use(URLWithStringOrPath(in.text));
         use(URLWithNormalizedStringURL(in.text));
         use(URLWithUserTypedString(in.text));
     }},
    {"format of a URL",
     [](const Input& in) {
         use(URLWithFormat(in.text, {u"a", 1, 2.5}));
     }},
    {"parts of a URL",
     [](const Input& in) {
         for (const URL& url : placedIn(in)) {
             use(url.path());
             use(url.lastPathComponent());
             use(url.pathExtension());
             use(url.standardizedURL());
         }
     }},
    {"resolving",
     [](const Input& in) {
         use(URLRelativeTo(base(), in.text));
         use(URLRelativeTo(base(), in.text, {.trimAnchor = false, .standardize = false}));
         for (const URL& url : placedIn(in)) use(URLRelativeTo(url, u"../../x/./y.html"));
     }},
    {"resolving as browsers do",
     [](const Input& in) {
         const RelativeURLOptions options = {.trimAnchor = false, .web = {.resolution = true}};
         for (const std::u16string_view start :
              {u"", u"//", u"http://h.org/", u"//u:", u"?", u"foo:"})
             use(URLRelativeTo(base(), start + in.text, options));
         for (const URL& url : placedIn(in)) use(URLRelativeTo(url, u"../../x/./y.html", options));
         use(pageKey(URLRelativeTo(base(), in.text, options)));
     }},
    {"domain names",
     [](const Input& in) {
         for (const std::u16string_view start : {u"", u"xn--", u"1.", u"["}) {
             use(domainToASCII(start + in.text));
             use(displayDomain(start + in.text));
         }
     }},
    {"escapes away",
     [](const Input& in) {
         useEach<String, const String&>(in.text, {stringByReplacingStandardPercentEscapesOfURL,
                                                  stringByReplacingASCIIPercentEscapesOfURL});
         use(stringByReplacingPercentEscapesOfURL(in.text));
         use(stringByReplacingPercentEscapesOfURL(in.text, ShiftJISStringEncoding));
     }},
    {"escapes added",
     [](const Input& in) {
         useEach<String, const String&>(in.text, {stringByAddingStandardPercentEscapesToURL,
                                                  stringByAddingASCIIPercentEscapesToURL});
         use(stringByAddingPercentEscapesToURL(in.text, {.toBeEscaped = u"%&?"}));
         use(stringByFormattingQueryTerm(in.text, UTF8StringEncoding));
     }},
    {"escapes set by the text",
     [](const Input& in) {
         use(stringByAddingPercentEscapesToURL(
             in.text, {.leaveUnescaped = in.almost, .toBeEscaped = in.text}));
     }},
    {"parameters",
     [](const Input& in) {
         use(queryParamNamed(in.text, u"zz"));
         use(paramNamed(in.text, u"b"));
         use(containsQueryParamNamed(in.text, u"zz"));
         use(queryParams(in.text));
         use(numberOfQueryParams(in.text));
     }},
    {"parameters changed",
     [](const Input& in) {
         use(stringByReplacingQueryParamNamed(in.text, u"p", u"longer"));
         use(stringByReplacingQueryParamNamed(in.text, u"zz", u"longer"));
         use(stringURLByRemovingQueryParam(in.text, u"p="));
         std::u16string location(in.text);
         appendParameter(location, u"n", in.text);
         use(location);
     }},
    {"session ids", [](const Input& in) { use(stringURLByRemovingSessionIDs(in.text)); }},
    {"analytics", [](const Input& in) { use(stringURLByRemovingAnalytics(in.text)); }},
    {"index pages", [](const Input& in) { use(stringURLByRemovingIndexPages(in.text)); }},
    {"empty parameters removed",
     [](const Input& in) { use(stringURLByRemovingEmptyParams(in.text)); }},
    {"standard forms",
     [](const Input& in) {
         useEach<String, const String&>(
             in.text, {standardizedStringURL, stringURLWithoutAnchor, stringURLWithoutScheme,
                       stringURLWithoutCredentials, displayStringURL});
     }},
    {"simplification",
     [](const Input& in) {
         use(simplifiedStringURL(in.text));
         use(isEqualToStringURL(in.text, in.text + u"#a"));
         for (const URL& url : placedIn(in)) use(simplifiedStringURL(url));
     }},
    {"page keys",
     [](const Input& in) {
         for (const URL& url : placedIn(in)) use(pageKey(url));
     }},
    {"tracking rows",
     [](const Input& in) { use(TrackingParameters(in.text).contains(in.text, in.text)); }},
    {"advertisement rules",
     [](const Input& in) {
         const AdvertisementFilter filter(in.text);
         for (const URL& url : placedIn(in)) use(filter.matches(url));
     }},
    {"classification",
     [](const Input& in) {
         useEach<bool, std::u16string_view>(
             in.text, {stringURLIsImageAd, stringURLIsAdSense, stringURLIsAdvertisement,
                       stringURLIsBookmarklet, stringURLIsRecaptcha, stringURLIsTranslation,
                       stringURLIsTopicOrThread, stringURLIsForum, stringURLIsCached});
         use(classesOfStringURL(in.text));
     }},
    {"acceptance",
     [](const Input& in) {
         static const URL Engine = URL::URLWithString(u"http://www.google.com/search?q=a");
         for (const URL& page : {base(), Engine, in.url}) {
             use(acceptStringURL(in.text, page));
             use(resolveStringURL(in.text, page));
         }
         use(isSearchEngine(in.url));
         use(filterLink(in.text));
     }},
    {"following",
     [](const Input& in) {
         for (const URL& url : placedIn(in))
             for (std::int64_t mode = FollowNothing; mode <= FollowLevels; ++mode) {
                 use(shouldFollowLink(url, mode, 1, base()));
                 use(shouldFollowLink(base(), mode, 1, url));
             }
     }},
    {"repair",
     [](const Input& in) {
         for (const bool joins : {false, true}) use(possibleInternetLocation(in.text, joins));
         use(stringByFormattingURL(in.text));
     }},
    {"schemes",
     [](const Input& in) {
         useEach<bool, std::u16string_view>(
             in.text, {isWebKitStringURL, isDownloadableStringURL, isLoadableStringURL,
                       isFeedStringURL, isDataStringURL, isMailStringURL, isFileStringURL});
         use(stringURLScheme(in.text));
         use(stringURLPathExtension(in.text));
         use(validFeedStringURL(in.text));
         use(WebKitStringURL(in.text));
     }},
    {"kinds of files",
     [](const Input& in) {
         use(isBinaryFileType(in.text));
         use(isMultimediaType(in.text));
         use(MIMETypeForExtension(in.text));
         use(extensionForMIMEType(in.text));
         use(isMultimediaMIMEType(in.text));
     }},
    {"host components",
     [](const Input& in) {
         use(hostComponents(in.text));
         use(invertedHost(in.text));
         use(invertedHostComponents(in.text));
         use(stringByAppendingInvertedHostComponents(in.text, NotFound, u"/m"));
         use(stringByAppendingInvertedHostComponents(u"a.b", NotFound, in.text));
     }},
    {"mirror paths",
     [](const Input& in) {
         for (const URL& url : placedIn(in))
             for (const bool simplified : {false, true})
                 use(pathRelativeToDirectory(url, u"/m", {.simplified = simplified}));
     }},
    {"inverted paths",
     [](const Input& in) {
         for (const URL& url : placedIn(in)) {
             use(invertedPathRelativeToDirectory(url, u"/m"));
             use(invertedPathRelativeToDirectory(url, u"/m",
                                                 {.maxHostComponents = 3, .maxPathComponents = 3}));
         }
     }},
    {"paths of URLs",
     [](const Input& in) {
         for (const URL& url : placedIn(in))
             for (String (*form)(const URL&) :
                  {fullPath, pathWithParamsAndQueryAndFragment,
                   absoluteStringWithoutUserAndPassword, absoluteStringWithHostAndPath,
                   baseDirectory, standardizedBaseDirectory, normalizedPath, proposedFilename,
                   displayString})
                 use(form(url));
     }},
    {"variants",
     [](const Input& in) {
         for (const URL& url : placedIn(in)) {
             for (URL (*form)(const URL&) :
                  {URLWithoutCredentials, URLWithoutAnchor, WebKitURL, baseURLForWebKit})
                 use(form(url));
             use(URLWithAnchor(url, in.text));
             use(URLWithUser(url, in.text, u"p"));
         }
     }},
};

}  // namespace

std::span<const Operation> urlOperations() { return Rows; }

}  // namespace velmo::growth
