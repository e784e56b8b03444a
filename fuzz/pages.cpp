// A page that is read in its bytes, under every charset that it may name, tells what the decoded one
// does; and so do its tags.
#include <velmocore/markup/Links.h>
#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/markup/Page.h>
#include <velmocore/markup/PlainText.h>
#include <velmocore/platform/Log.h>

#include "Input.h"
#include "markup/TagScan.h"

using namespace velmo;
using fuzz::require;

namespace {

template <class AnyTag, class Text>
std::vector<String> tagsOf(Text text, const WebRules& web) {
    std::vector<String> tags;
    const auto stringOf = [](auto part) {
        if constexpr (sizeof(part[0]) == 1)
            return String::fromUTF8(part);
        else
            return part.empty() ? String::empty() : String(part);
    };
    const auto handler = [&](const AnyTag& tag) {
        for (const auto part : {tag.name(), tag.text(), tag.whole()})
            tags.push_back(stringOf(part));
        return false;
    };
    detail::scanTags(text, handler, web);
    return tags;
}

void compareLinks(Bytes bytes, const String& units, const LinkOptions& options) {
    const HtmlLinks ofBytes = htmlLinks(bytes, options), ofUnits = htmlLinks(units, options);
    require(ofBytes.links == ofUnits.links && ofBytes.baseURL == ofUnits.baseURL);
}

void comparePages(const Page& ofBytes, const Page& ofUnits) {
    require(ofBytes.title() == ofUnits.title());
    require(ofBytes.links() == ofUnits.links());
    require(ofBytes.plainText() == ofUnits.plainText());
    require(ofBytes.isErrorPage() == ofUnits.isErrorPage());
    require(ofBytes.images() == ofUnits.images() && ofBytes.frames() == ofUnits.frames());
    require(ofBytes.stylesheetsAndScripts() == ofUnits.stylesheetsAndScripts());
    require(ofBytes.embeddedObjects() == ofUnits.embeddedObjects());
    require(ofBytes.metadata().attributes == ofUnits.metadata().attributes);
    require(ofBytes.summary().title == ofUnits.summary().title);
    require(ofBytes.linkThumbnails().thumbnails == ofUnits.linkThumbnails().thumbnails);
    require(ofBytes.linkThumbnails().titles == ofUnits.linkThumbnails().titles);
    require(ofBytes.linkThumbnails().texts == ofUnits.linkThumbnails().texts);
    require(ofBytes.isFeed() == ofUnits.isFeed());
    require(ofBytes.markup() == ofUnits.markup());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    setLogHandler([](std::string_view) {});
    const Bytes bytes(data, size);
    const URL url = URL::URLWithString(u"http://h.org/a/b");
    WebRules web = fuzz::rulesOf(data, size);
    web.charsets = size % 2 == 1;
    require(tagsOf<detail::ByteTag>(charsOf(bytes), web) ==
            tagsOf<Tag>(String::fromUTF8(charsOf(bytes)).view(), web));
    const String units = decodeMarkup(bytes, {.web = web}).text;
    compareLinks(bytes, units, {.web = web, .url = url});
    compareLinks(bytes, units, {.containing = u"a", .useRelNoFollow = true, .web = web});
    require(plainTextOfHtml(bytes, {.removeJunk = true, .web = web}).text ==
            plainTextOfHtml(units, {.removeJunk = true, .web = web}).text);
    comparePages(Page(bytes, {.url = url, .web = web}), Page::pageWithString(units, url, web));
    return 0;
}
