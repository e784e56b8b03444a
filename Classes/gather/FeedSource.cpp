#include <velmocore/gather/FeedSource.h>

#include <string>
#include <utility>

#include <velmocore/feeds/FeedRendering.h>
#include <velmocore/markup/ContentDecoding.h>
#include <velmocore/url/RelativeURLs.h>
#include <velmocore/url/URLConstruction.h>

#include "gather/GatherErrors.h"
#include "gather/StreamReading.h"

namespace velmo {
namespace {

const String& bodyOf(const FeedItem& item) {
    return item.content.isEmpty() ? item.description : item.content;
}

/// The content of an item as a page. What is a whole page already stays as it is.
Data pageOf(const FeedItem& item) {
    const String& body = bodyOf(item);
    const bool isWhole = contentKind(body.utf8(), {}) == ContentKind::Page;
    const std::string utf8 = (isWhole ? body : stringByConvertingItemToSearchableHTML(item)).utf8();
    return {utf8.begin(), utf8.end()};
}

String presentOrAbsent(const String& string) { return string.isEmpty() ? String() : string; }

}  // namespace

FeedSource::FeedSource(InputStream&& stream, const SourceOptions& options) : options_(options) {
    read(stream);
}

void FeedSource::read(InputStream& stream) {
    std::optional<Data> bytes = detail::readAll(stream, options_.mostBytes);
    if (!bytes || stream.error()) {
        error_ = stream.error() ? *stream.error() : detail::sourceError("too large");
        return;
    }
    const String markup = decodeContent(std::move(*bytes), {.web = WebRules::today()}).text;
    Feed feed = readFeed(markup, {.baseURL = options_.url, .boundCData = true});
    if (!feed.isFeed) error_ = detail::sourceError("no feed");
    items_ = std::move(feed.items);
}

PageSource::State FeedSource::next(SourcePage& page) {
    page = SourcePage();
    page.name = options_.name;
    if (error_) {
        page.error = std::exchange(error_, std::nullopt);
        return State::Page;
    }
    if (next_ == items_.size()) return State::End;
    const FeedItem item = std::move(items_[next_++]);
    page.url = options_.url.isAbsent()
                   ? URLWithNormalizedStringURL(item.link)
                   : URLRelativeTo(options_.url, item.link, {.web = WebRules::today()});
    page.isLeftOut = item.link.isEmpty() || page.url.isAbsent();
    if (page.isLeftOut) return State::Page;
    page.name = page.url.absoluteString();
    page.contentType = u"text/html; charset=utf-8";
    page.kind = ContentKind::Page;
    page.status = 0;
    page.title = presentOrAbsent(item.title);
    page.author = presentOrAbsent(item.author);
    page.date = presentOrAbsent(item.date);
    page.bytes = pageOf(item);
    return State::Page;
}

SourceProgress FeedSource::progress() const { return {.done = next_, .total = items_.size()}; }

}  // namespace velmo
