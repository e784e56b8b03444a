// Pages are written front to back out of templates. An item is rendered from views, so that a feed
// becomes a page in the scan of its items, and none of them is ever a string of its own.
#include <velmocore/feeds/FeedRendering.h>

#include <velmocore/markup/TagStripping.h>
#include <velmocore/platform/DateFormat.h>
#include <velmocore/readers/Dates.h>
#include <velmocore/text/CharacterTests.h>

#include "feeds/FeedScan.h"
#include "feeds/FeedStyleSheet.h"
#include "feeds/FeedTemplates.h"
#include "text/LeadingInteger.h"
#include "text/PathParts.h"

namespace velmo {
namespace {

using namespace detail;
namespace templates = feedTemplates;
using templates::append;

using Units = std::u16string_view;

/// An item, and what of it is shown.
struct ItemParts {
    Units icon = {}, title = {}, body = {}, link = {}, author = {};
    String date = {};
};

/// The date as people write it here; as the feed has it if it cannot be read.
String shownDate(Units text, const FeedDisplayOptions& options) {
    const std::optional<Date> read = date(text, options.dates);
    const String shown =
        read ? localizedDateAndTime(*read, options.dates.zone, options.locale) : String();
    return shown.isAbsent() ? String(text) : shown;
}

std::u16string bylineOf(const ItemParts& item) {
    if (item.author.empty() || item.date.isEmpty())
        return std::u16string(item.author.empty() ? item.date.view() : item.author);
    StringBuilder line;
    append(line, templates::Byline, {item.author, item.date});
    return std::u16string(line.view());
}

void appendTitle(StringBuilder& out, const ItemParts& item) {
    const std::u16string byline = bylineOf(item);
    if (!item.link.empty() && !byline.empty())
        append(out, templates::LinkedTitleWithByline, {item.link, item.title, byline});
    else if (!item.link.empty())
        append(out, templates::LinkedTitle, {item.link, item.title});
    else if (!byline.empty())
        append(out, templates::TitleWithByline, {item.title, byline});
    else
        append(out, templates::Title, {item.title});
}

void appendEnclosure(StringBuilder& out, Units url, Units length) {
    const Units name = lastComponentOf(url);
    if (leadingInteger(length) <= 0)
        append(out, templates::Enclosure, {url, name});
    else if (containsAlphaCharacter(length))
        append(out, templates::EnclosureWithLength, {url, name, length});
    else
        append(out, templates::EnclosureWithBytes, {url, name, length});
}

/// Enclosures are those of views or of kept items.
template <class Enclosures>
void appendItemParts(StringBuilder& out, const ItemParts& item, const Enclosures& enclosures,
                     const WebRules& web) {
    append(out, templates::ItemStart);
    if (!item.icon.empty()) append(out, templates::IconStart, {item.icon});
    appendTitle(out, item);
    append(out, item.icon.empty() ? templates::HeaderEnd : templates::IconEnd);
    append(out, templates::Article, {stripTag(item.body, "SPAN", web)});
    if (enclosures.empty()) return append(out, templates::ArticleEnd);
    append(out, templates::EnclosuresStart);
    for (const auto& each : enclosures) appendEnclosure(out, each.url, each.length);
    append(out, templates::EnclosuresEnd);
}

/// What all forms show of an item, be it kept or a view.
template <class Item>
ItemParts commonParts(const Item& item) {
    const Units content = item.content, description = item.description;
    return {
        .title = item.title, .body = content.empty() ? description : content, .link = item.link};
}

template <class Item>
ItemParts displayedParts(const Item& item, const FeedDisplayOptions& options) {
    ItemParts parts = commonParts(item);
    parts.author = item.author;
    parts.date = shownDate(item.date, options);
    return parts;
}

/// Null options make the searchable form.
void appendItem2Feed(StringBuilder& out, const FeedItem& item, const FeedDisplayOptions* options,
                     const WebRules& web) {
    ItemParts parts = options ? displayedParts(item, *options) : commonParts(item);
    parts.icon = item.icon;
    appendItemParts(out, parts,
                    options ? std::span(item.enclosures) : std::span<const FeedEnclosure>(), web);
}

void appendHeadOfItem(StringBuilder& out, const FeedItem& item, const WebRules& web) {
    if (!item.author.isEmpty()) append(out, templates::AuthorTag, {stripTags(item.author, web)});
    if (item.tags.empty()) return;
    std::u16string keywords;
    for (const String& tag : item.tags) (keywords += keywords.empty() ? u"" : u", ") += tag;
    append(out, templates::KeywordsTag, {keywords});
}

String convertItem(const FeedItem& item, const FeedDisplayOptions* options, const WebRules& web) {
    StringBuilder out;
    append(out, templates::Head);
    if (options) appendStyleSheet(out, *options, options->linkedStyleSheet);
    appendHeadOfItem(out, item, web);
    append(out, templates::HeadEnd);
    appendItem2Feed(out, item, options, web);
    append(out, templates::PageEnd);
    return out.finish();
}

String convertItems(std::span<const FeedItem> items, const FeedDisplayOptions* options,
                    const WebRules& web) {
    StringBuilder out;
    append(out, templates::Head);
    if (options) appendStyleSheet(out, *options, true);
    append(out, templates::HeadEnd);
    for (const FeedItem& item : items) appendItem2Feed(out, item, options, web);
    append(out, templates::PageEnd);
    return out.finish();
}

void appendHeader(StringBuilder& out, const String& title) {
    if (title.isEmpty())
        append(out, templates::HeadEnd);
    else
        append(out, templates::FeedHeader, {title, title});
}

}  // namespace

String stringByConvertingFeed(const String& feed, const FeedDisplayOptions& options) {
    StringBuilder out(feed.length());
    append(out, templates::Head);
    appendStyleSheet(out, options, options.linkedStyleSheet);
    // The header is known when the channel is left, but stays away if nothing follows it.
    bool hasHeader = false;
    String title;
    const auto leaveChannel = [&](const FeedFacts& facts) {
        title = facts.title;
        return false;
    };
    const auto appendItem = [&](const FeedItemView& item) {
        if (!std::exchange(hasHeader, true)) appendHeader(out, title);
        appendItemParts(out, displayedParts(item, options), item.enclosures, options.feed.web);
        return false;
    };
    const FeedFacts facts =
        scanFeed(feed, {.item = appendItem, .channel = leaveChannel}, options.feed);
    if (!facts.rootSeen) return feed;
    if (facts.headWritten && !hasHeader) appendHeader(out, facts.title);
    append(out, facts.headWritten ? templates::PageEnd : templates::PageEndWithoutBody);
    return out.finish();
}

String stringByConvertingItemToSearchableHTML(const FeedItem& item, const WebRules& web) {
    return convertItem(item, nullptr, web);
}
String stringByConvertingItemToDisplayHTML(const FeedItem& item,
                                           const FeedDisplayOptions& options) {
    return convertItem(item, &options, options.feed.web);
}
String stringByConvertingItemsToSearchableHTML(std::span<const FeedItem> items,
                                               const WebRules& web) {
    return convertItems(items, nullptr, web);
}
String stringByConvertingItemsToDisplayHTML(std::span<const FeedItem> items,
                                            const FeedDisplayOptions& options) {
    return convertItems(items, &options, options.feed.web);
}

}  // namespace velmo
