// The first line is a base, the rest a link: it is resolved with repairs, reduced in every way
// and mapped to files. What is resolved is a URL again, reductions end, and a mapped path has
// no component too long for a file system.
#include <velmocore/url/InvertedPaths.h>
#include <velmocore/url/PageKey.h>
#include <velmocore/url/RelativeURLs.h>
#include <velmocore/url/URLHosts.h>
#include <velmocore/url/URLPaths.h>
#include <velmocore/url/URLSimplification.h>
#include <velmocore/url/URLVariants.h>

#include <algorithm>

#include "Input.h"

using namespace velmo;

namespace {

using fuzz::require;

/// Runs a reduction until nothing changes. Each change makes the text shorter, or the same
/// length in lower case.
template <class Reduce>
void checkEnds(const String& text, Reduce reduce) {
    String url = text;
    for (std::size_t rounds = 0;; ++rounds) {
        const String next = reduce(url);
        require(next.isAbsent() == url.isAbsent());
        if (next == url) break;
        require(rounds <= 2 * text.length() + 2);
        url = next;
    }
}

void checkReductions(const String& text) {
    for (String (*reduce)(const String&) :
         {standardizedStringURL, stringURLWithoutAnchor, stringURLWithoutScheme,
          stringURLWithoutCredentials, displayStringURL, stringURLByRemovingSessionIDs,
          stringURLByRemovingAnalytics, stringURLByRemovingIndexPages,
          stringURLByRemovingEmptyParams}) {
        require(reduce(text).length() <= text.length());
        checkEnds(text, reduce);
    }
    checkEnds(text, [](const String& url) { return simplifiedStringURL(url); });
    stringURLByRemovingQueryParam(text, u"sid=");
    stringURLByRemovingQueryParam(text, text.view().substr(0, 3));
    require(isEqualToStringURL(text, text) != text.isAbsent());
}

void checkComponents(std::u16string_view path) {
    while (!path.empty()) {
        const std::size_t end = std::min(path.find(u'/'), path.size());
        require(end <= 250);
        path.remove_prefix(std::min(end + 1, path.size()));
    }
}

void checkURL(const URL& url) {
    if (url.isAbsent()) return;
    require(URL::URLWithString(url.absoluteString()) == url);
    for (const URL& variant : {URLWithoutCredentials(url), URLWithoutAnchor(url), WebKitURL(url),
                               URLWithUser(url, u"a:b", url.absoluteString())})
        require(variant.isAbsent() || URL::URLWithString(variant.absoluteString()) == variant);
    require(!baseDirectory(url).isEmpty() && !standardizedBaseDirectory(url).isEmpty());
    proposedFilename(url);
    displayString(url);
    absoluteStringWithoutUserAndPassword(url);
    absoluteStringWithHostAndPath(url);
    invertedHost(url);
    // What is joined to one component is cut.
    checkComponents(invertedPathRelativeToDirectory(
        url, u"", {.pathExtension = u"html", .maxPathComponents = 1}));
    require(!pathRelativeToDirectory(url, u"/m").view().starts_with(u"/m/../"));
    pathRelativeToDirectory(url, u"/m", {.simplified = true});
    const String key = pageKey(url);
    require(pageKey(URL::URLWithString(key)) == key);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String text = fuzz::unitsOf(data, size);
    const std::size_t line = std::min(text.view().find(u'\n'), text.length());
    const URL base = URL::URLWithString(text.view().substr(0, line));
    const String link = text.view().substr(std::min(line + 1, text.length()));
    for (const URL& page : {base, URL::URLWithString(u"http://me:pw@h.org/a/b.html"),
                            URL::URLWithString(u"file:///a/b.html")}) {
        checkURL(URLRelativeTo(page, link));
        checkURL(URLRelativeTo(page, link, {.trimAnchor = false, .standardize = false}));
    }
    checkReductions(link);
    return 0;
}
