// From bytes to a record. A page is decoded and scanned once (markup/Page.h); a feed is read as the
// page of its items, since what is sought in it are their texts and links.
#include <velmocore/gather/PageReading.h>

#include <velmocore/feeds/FeedItems.h>
#include <velmocore/feeds/FeedRendering.h>
#include <velmocore/markup/LinkNormalising.h>
#include <velmocore/markup/Page.h>
#include <velmocore/markup/PlainText.h>
#include <velmocore/readers/Dates.h>
#include <velmocore/text/Collapsing.h>
#include <velmocore/text/Encodings.h>
#include <velmocore/text/Trimming.h>
#include <velmocore/url/RelativeURLs.h>
#include <velmocore/words/Words.h>

namespace velmo {
namespace {

/// Of a text for people; absent for nothing.
String onOneLine(const String& text) {
    const String line = stringByRemovingMultipleWhiteSpaces(stringByTrimmingWhiteSpaces(text));
    return line.isEmpty() ? String() : line;
}

const String& firstThatIs(const String& one, const String& other) {
    return one.isEmpty() ? other : one;
}

const String* valueOf(const LinkThumbnails::Strings& strings, const String& link) {
    const auto found = strings.find(link);
    return found == strings.end() ? nullptr : &found->second;
}

std::vector<PageLink> linksOf(const Page& page) {
    const LinkThumbnails& known = page.linkThumbnails();
    std::vector<PageLink> links;
    links.reserve(page.links().size());
    for (const URL& url : page.links()) {
        const String& address = url.absoluteString();
        const String* text = valueOf(known.texts, address);
        if (text == nullptr) text = valueOf(known.titles, address);
        const String* thumbnail = valueOf(known.thumbnails, address);
        links.push_back({.url = url,
                         .text = text ? onOneLine(*text) : String(),
                         .thumbnail = thumbnail ? URL::URLWithString(*thumbnail) : URL()});
    }
    return links;
}

void readPageInto(PageRecord& record, const Page& page, const PageReadingOptions& options) {
    const HtmlMetadata& metadata = page.metadata();
    record.title = onOneLine(page.title());
    record.author = onOneLine(normalizedHtmlString(metadata.author));
    record.description = onOneLine(normalizedHtmlString(metadata.description));
    if (!metadata.date.isEmpty()) record.date = date(metadata.date, {.offsets = true});
    record.isErrorPage = page.isErrorPage();
    record.text = page.plainText();
    if (options.links) record.links = linksOf(page);
}

void readFeedInto(PageRecord& record, const Page& page, const PageReadingOptions& options) {
    const Feed feed = readFeed(page.markup(), {.baseURL = page.url(), .boundCData = true});
    record.kind = PageKind::Feed;
    record.title = onOneLine(feed.title);
    record.text = stringByConvertingHtml2PlainText(
        stringByConvertingItemsToSearchableHTML(feed.items), {.web = options.web});
    if (!options.links) return;
    for (const FeedItem& item : feed.items)
        if (const URL link = URLRelativeTo(page.url(), item.link); !link.isAbsent())
            record.links.push_back({.url = link, .text = onOneLine(item.title), .thumbnail = {}});
}

/// What the source knew counts where the page does not tell.
void takeFromSource(PageRecord& record, const SourcePage& source) {
    record.url = source.url;
    record.status = source.status;
    record.fetched = source.fetched;
    record.title = firstThatIs(record.title, source.title);
    record.author = firstThatIs(record.author, source.author);
    if (!record.date && !source.date.isEmpty()) record.date = date(source.date, {.offsets = true});
}

void takeFromText(PageRecord& record, const PageReadingOptions& options) {
    record.words = static_cast<std::uint32_t>(numberOfWordsUsingDefaultSeparation(record.text));
    if (options.languages != nullptr)
        record.language = options.languages->languageOfText(record.text);
}

}  // namespace

PageRecord readPage(SourcePage&& source, const PageReadingOptions& options) {
    PageRecord record;
    const Page page(source.bytes,
                    {.url = source.url, .contentType = source.contentType, .web = options.web});
    if (page.isFeed())
        readFeedInto(record, page, options);
    else
        readPageInto(record, page, options);
    takeFromSource(record, source);
    takeFromText(record, options);
    record.charset = String::fromUTF8(ianaName(page.encoding()));
    record.key = pageKey(source.url, options.keys);
    if (options.keepBytes) record.bytes = std::move(source.bytes);
    return record;
}

}  // namespace velmo
