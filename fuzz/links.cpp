// All link and resource operations on a page, and the normalising of single references.
#include <velmocore/markup/LinkNormalising.h>
#include <velmocore/markup/Links.h>
#include <velmocore/markup/PageResources.h>
#include <velmocore/platform/Log.h>
#include <velmocore/url/LinkFilter.h>

#include <algorithm>

#include "Input.h"

using namespace velmo;

namespace {

void checkReference(std::u16string_view value, const WebRules& web) {
    for (bool decode : {false, true}) {
        const String link = normalizedStringURL(value, decode);
        fuzz::require(link.length() <= value.size() && (link.isAbsent() || !link.isEmpty()));
    }
    fuzz::require(normalizedRelLink(value, web).length() <= value.size() + 1);
    fuzz::require(revisitAfter(value) >= 0);
    fuzz::require(normalizedStringURL(value, web).length() <= value.size());
    normalizedHtmlString(value, web);
    getLinkAttribute(value);
}

/// No link is empty or comes twice.
void checkLinks(const HtmlLinks& found) {
    const std::set<String> unique(found.links.begin(), found.links.end());
    fuzz::require(unique.size() == found.links.size());
    fuzz::require(std::none_of(unique.begin(), unique.end(),
                               [](const String& link) { return link.isEmpty(); }));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    setLogHandler([](std::string_view) {});
    const String page = fuzz::unitsOf(data, size);
    const WebRules web = fuzz::rulesOf(data, size);
    const URL url = URL::URLWithString(u"http://h.org/a/b");
    checkReference(page.view().substr(0, 600), web);

    const HtmlLinks all = htmlLinks(page, {.web = web, .url = url});
    checkLinks(all);
    std::vector<String> others = all.links;
    const HtmlLinks filtered =
        htmlLinks(page, {.useRelNoFollow = true, .filter = true, .web = web});
    checkLinks(filtered);
    fuzz::require(filtered.links.size() <= all.links.size());
    checkLinks(htmlLinksContaining(page, u"a", false));
    // One more link in front is one more link, and the others are what they were.
    HtmlLinks more = htmlLinks(u"<a href=/fuzz-front>" + page, {.web = web});
    fuzz::require(!more.links.empty() && more.links.front() == u"/fuzz-front");
    more.links.erase(more.links.begin());
    std::erase(others, String(u"/fuzz-front"));
    fuzz::require(more.links == others);

    const HtmlReferences references = htmlLinksAndFramesSet(page, {.url = url, .web = web});
    fuzz::require(references.baseURL == all.baseURL);
    fuzz::require(std::all_of(all.links.begin(), all.links.end(), [&](const String& link) {
        return references.references.contains(link);
    }));
    htmlFramesSet(page, {.web = web});
    htmlImages(page, web);
    htmlStylesheetsAndScripts(page, web);
    htmlEmbeddedObjects(page, web);
    htmlFavIcon(page, web);
    return 0;
}
