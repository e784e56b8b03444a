// From bytes to a record. A page is decoded and scanned once (markup/Page.h); a feed is read as the
// page of its items, since what is sought in it are their texts and links.
#include <velmocore/gather/PageReading.h>

#include <algorithm>
#include <initializer_list>
#include <unordered_set>

#include <velmocore/feeds/FeedItems.h>
#include <velmocore/feeds/FeedRendering.h>
#include <velmocore/gather/InputStream.h>
#include <velmocore/gather/SourceOpening.h>
#include <velmocore/markup/ContentDecoding.h>
#include <velmocore/markup/ErrorPages.h>
#include <velmocore/markup/LinkNormalising.h>
#include <velmocore/markup/Page.h>
#include <velmocore/markup/PlainText.h>
#include <velmocore/readers/Dates.h>
#include <velmocore/text/Collapsing.h>
#include <velmocore/text/ConversionTables.h>
#include <velmocore/text/Encodings.h>
#include <velmocore/text/Folding.h>
#include <velmocore/text/Trimming.h>
#include <velmocore/url/LinkFilter.h>
#include <velmocore/url/MIMETypes.h>
#include <velmocore/url/RelativeURLs.h>
#include <velmocore/url/URLClassification.h>
#include <velmocore/words/Words.h>

#include "gather/StoredURL.h"
#include "gather/StreamReading.h"

namespace velmo {
namespace {

/// Of a text for people; absent for nothing.
String onOneLine(const String& text) {
    const String line = stringByRemovingMultipleWhiteSpaces(stringByTrimmingWhiteSpaces(text));
    return line.isEmpty() ? String() : line;
}

/// As UTC where it names no zone: where the gatherer stands says nothing of where the page does.
std::optional<Date> dateOf(const String& text) { return date(text, {.zone = {}, .offsets = true}); }

/// Of its body alone, as an error page has it.
String bodyText(const Page& page, const PageReadingOptions& options) {
    return stringByConvertingHtml2PlainText(
        page.markup(), {.onlyBody = true, .removeJunk = true, .web = options.web});
}

const String& firstThatIs(const String& one, const String& other) {
    return one.isEmpty() ? other : one;
}

const String* valueOf(const LinkThumbnails::Strings& strings, const String& link) {
    const auto found = strings.find(link);
    return found == strings.end() ? nullptr : &found->second;
}

/// Whether a link leads to a page at all, and to none that only advertises.
bool isWorthKeeping(const URL& url) {
    return !filterLink(url.absoluteString()) && !stringURLIsAdvertisement(url);
}

/// In page order, each page that they lead to once.
std::vector<PageLink> linksOf(const Page& page, const PageKeyOptions& keys) {
    const LinkThumbnails& known = page.linkThumbnails();
    std::vector<PageLink> links;
    std::unordered_set<String, StringHash> seen;
    for (const URL& url : page.links()) {
        if (!isWorthKeeping(url) || !seen.insert(pageKey(url, keys)).second) continue;
        const String& address = url.absoluteString();
        const String* text = valueOf(known.texts, address);
        if (text == nullptr) text = valueOf(known.titles, address);
        const String* thumbnail = valueOf(known.thumbnails, address);
        links.push_back({.url = url,
                         .text = text ? onOneLine(*text) : String(),
                         .thumbnail = thumbnail ? detail::urlOfStored(*thumbnail) : URL()});
    }
    return links;
}

/// Whether it is worth to look at the body of a page for what error pages say. They are short, or
/// say so in their title or address too; all others, which are nearly all, need no second text.
bool mayBeErrorPage(const PageRecord& record, const URL& url) {
    constexpr std::size_t ShortText = 256;
    if (record.text.length() < ShortText) return true;
    const auto says = [](const String& where, std::initializer_list<std::u16string_view> what) {
        return std::ranges::any_of(what, [&](std::u16string_view each) {
            return where.view().find(each) != std::u16string_view::npos;
        });
    };
    const String title = stringByRemovingNonAlphaNumericCharactersAndApplyingConversionTable(
        record.title, &lowerCharsTable());
    return says(title, {u"403", u"404", u"notfound"}) ||
           says(stringByApplyingConversionTable(url.absoluteString(), &lowerCharsTable()),
                {u"/404", u"/403.php", u"/error.php"});
}

/// The spelling that a page wants for its own address. One of another page is not believed: many
/// sites name their first page on all of them, which would then replace each other in a store.
URL addressOf(const Page& page, const PageKeyOptions& keys) {
    const URL& canonical = page.canonicalURL();
    const bool isSamePage =
        !canonical.isAbsent() && pageKey(canonical, keys) == pageKey(page.url(), keys);
    return isSamePage ? canonical : page.url();
}

void readPageInto(PageRecord& record, const Page& page, const PageReadingOptions& options) {
    const HtmlMetadata& metadata = page.metadata();
    record.url = addressOf(page, options.keys);
    record.title = onOneLine(page.title());
    record.author = onOneLine(normalizedHtmlString(metadata.author, options.web));
    record.description = onOneLine(normalizedHtmlString(metadata.description, options.web));
    if (!metadata.date.isEmpty()) record.date = dateOf(metadata.date);
    record.text = page.plainText();
    if (mayBeErrorPage(record, page.url()))
        record.isErrorPage = page.isErrorPage() ||
                             exceededPageLoadFrequencyTitle(record.title, bodyText(page, options));
    if (options.links) record.links = linksOf(page, options.keys);
}

void readFeedInto(PageRecord& record, const Page& page, const PageReadingOptions& options) {
    const Feed feed =
        readFeed(page.markup(), {.baseURL = page.url(), .boundCData = true, .web = options.web});
    record.kind = PageKind::Feed;
    record.title = onOneLine(feed.title);
    record.text = stringByConvertingHtml2PlainText(
        stringByConvertingItemsToSearchableHTML(feed.items, options.web), {.web = options.web});
    if (!options.links) return;
    for (const FeedItem& item : feed.items)
        if (const URL link = URLRelativeTo(page.url(), item.link, {.web = options.web});
            !link.isAbsent())
            record.links.push_back({.url = link, .text = onOneLine(item.title), .thumbnail = {}});
}

/// What the source knew counts where the page does not tell.
void takeFromSource(PageRecord& record, const SourcePage& source) {
    if (record.url.isAbsent()) record.url = source.url;
    record.status = source.status;
    record.fetched = source.fetched;
    record.entityTag = source.entityTag;
    record.lastModified = source.lastModified;
    record.title = firstThatIs(record.title, source.title);
    record.author = firstThatIs(record.author, source.author);
    if (!record.date && !source.date.isEmpty()) record.date = dateOf(source.date);
}

void takeFromText(PageRecord& record, const PageReadingOptions& options) {
    record.words = static_cast<std::uint32_t>(numberOfWordsUsingDefaultSeparation(record.text));
    if (options.languages != nullptr)
        record.language = options.languages->languageOfText(record.text);
}

/// What it is: as the source says, or as its bytes tell, or its header, or its name. Nothing fails
/// here, so what is neither page nor text has none.
ContentKind kindOf(const SourcePage& source) {
    if (source.kind != ContentKind::Unclear) return source.kind;
    const Bytes head = Bytes(source.bytes).first(std::min(source.bytes.size(), ContentHeadSize));
    const bool hasType = !source.contentType.isEmpty();
    const ContentKind kind =
        contentKind(head, hasType ? std::string() : source.url.rawPath().utf8());
    if (kind != ContentKind::Unclear) return kind;
    return isPlainTextMIMEType(source.contentType) ? ContentKind::Text : ContentKind::Page;
}

/// The bytes may be packed as they stand in files, whatever their transport was.
void unpack(SourcePage& source) {
    if (!charsOf(source.bytes).starts_with("\x1F\x8B\b")) return;
    InputStream stream = InputStream::ofBytes(std::move(source.bytes));
    source.bytes = detail::readBytes(stream, MostPageBytes);
}

void readMarkup(PageRecord& record, const SourcePage& source, DecodedContent&& content,
                const PageReadingOptions& options) {
    const Page page = content.utf8.empty()
                          ? Page::pageWithString(content.text, source.url, options.web)
                          : Page::pageWithUTF8(std::move(content.utf8), source.url, options.web);
    if (page.isFeed())
        readFeedInto(record, page, options);
    else
        readPageInto(record, page, options);
}

}  // namespace

PageRecord readPage(SourcePage&& source, const PageReadingOptions& options) {
    PageRecord record;
    unpack(source);
    if (options.keepBytes) record.bytes = source.bytes;
    const ContentKind kind = kindOf(source);
    if (kind != ContentKind::Binary) {
        DecodedContent content =
            decodeContent(std::move(source.bytes), {.kind = kind,
                                                    .contentType = source.contentType,
                                                    .web = options.web,
                                                    .keepsUTF8 = true});
        record.charset = String::fromUTF8(ianaName(content.encoding));
        if (kind == ContentKind::Page)
            readMarkup(record, source, std::move(content), options);
        else
            record.kind = PageKind::Text, record.text = std::move(content.text);
    }
    takeFromSource(record, source);
    takeFromText(record, options);
    record.key = pageKey(record.url, options.keys);
    return record;
}

}  // namespace velmo
