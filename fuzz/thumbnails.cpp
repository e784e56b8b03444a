// The thumbnails, titles and texts of links, and what tells an error page.
#include <velmocore/markup/ErrorPages.h>
#include <velmocore/markup/LinkThumbnails.h>
#include <velmocore/markup/Links.h>
#include <velmocore/markup/Page.h>
#include <velmocore/platform/Log.h>
#include <velmocore/text/Comparison.h>
#include <velmocore/text/Finding.h>
#include <velmocore/words/Words.h>

#include <set>

#include "Input.h"

using namespace velmo;

namespace {

using Strings = LinkThumbnails::Strings;

/// A title or text says something, and not what its link says.
void checkWordings(const Strings& strings) {
    for (const auto& [link, value] : strings) {
        fuzz::require(numberOfWordsUsingDefaultSeparation(value) > 0);
        fuzz::require(!isEqualToStringNoCase(value, link) && !hasPrefixNoCase(value, u"https://"));
    }
}

/// All keys are links of the page, but for those that scripts hold.
void checkLinks(const String& page, const LinkThumbnails& all, const WebRules& web) {
    if (containsSubstring(page, u"script", Case::Insensitive)) return;
    const HtmlLinks found = htmlLinks(page, {.web = web});
    const std::set<String> links(found.links.begin(), found.links.end());
    for (const Strings* strings : {&all.thumbnails, &all.titles, &all.texts})
        for (const auto& [link, value] : *strings)
            fuzz::require(links.contains(link) && !value.isEmpty());
}

/// Each thing found by itself is what is found together.
void checkParts(const String& page, const LinkThumbnailOptions& options,
                const LinkThumbnails& all) {
    LinkThumbnailOptions one = options;
    one.titles = one.texts = false;
    fuzz::require(getLinkThumbnails(page, one).thumbnails == all.thumbnails);
    one.titles = !(one.thumbnails = false);
    fuzz::require(getLinkThumbnails(page, one).titles == all.titles);
    one.texts = !(one.titles = false);
    fuzz::require(getLinkThumbnails(page, one).texts == all.texts);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    setLogHandler([](std::string_view) {});
    const String page = fuzz::unitsOf(data, size);
    const WebRules web = fuzz::rulesOf(data, size);
    for (std::u16string_view base : {u"http://h.org/a/", u"http://www.google.com/search?q=x"})
        for (const bool flag : {false, true}) {
            const LinkThumbnailOptions options = {.baseURL = URL::URLWithString(base),
                                                  .resolve = flag,
                                                  .googleTags = flag,
                                                  .web = web};
            const LinkThumbnails all = getLinkThumbnails(page, options);
            checkWordings(all.titles);
            checkWordings(all.texts);
            checkParts(page, options, all);
            if (!flag) checkLinks(page, all, web);
        }
    // One more link in front changes nothing of the others.
    const String more = u"<a href=/fuzz-front><img src=f.jpg>x</a>" + page;
    LinkThumbnails with = getLinkThumbnails(more, {.web = web}),
                   without = getLinkThumbnails(page, {.web = web});
    fuzz::require(with.texts.contains(String(u"/fuzz-front")));
    for (Strings* strings : {&with.texts, &without.texts}) strings->erase(u"/fuzz-front");
    fuzz::require(with.texts == without.texts);

    const std::size_t half = page.length() / 2;
    isErrorPageTitle(page.view().substr(0, half), page.view().substr(half), page);
    exceededPageLoadFrequencyTitle({}, page);
    Page::pageWithString(page, {}, web).isErrorPage();
    return 0;
}
