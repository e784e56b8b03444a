#include <velmocore/gather/SourceOpening.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include <velmocore/gather/FeedSource.h>
#include <velmocore/gather/FolderSource.h>
#include <velmocore/gather/JSONLinesSource.h>
#include <velmocore/gather/WARCSource.h>
#include <velmocore/markup/ContentDecoding.h>
#include <velmocore/markup/FeedRecognition.h>

#include "gather/GatherErrors.h"
#include "gather/SingleSource.h"
#include "gather/StreamReading.h"

namespace velmo {
namespace {

std::string_view withoutWhite(std::string_view chars) {
    const std::size_t start = chars.find_first_not_of(" \t\r\n");
    return start == chars.npos ? std::string_view() : chars.substr(start);
}

/// Whether a head is that of JSON lines of pages: an object with one of the keys that each has.
bool beginsAsJSONLines(Bytes head) {
    const std::string_view chars = withoutWhite(charsOf(head));
    if (!chars.starts_with('{') || !withoutWhite(chars.substr(1)).starts_with('"')) return false;
    constexpr std::string_view Keys[] = {R"("url")", R"("html")", R"("text")"};
    return std::ranges::any_of(Keys, [&](auto key) { return chars.find(key) != chars.npos; });
}

/// Whether a head, which is markup, is that of a feed. The library's test looks at tags: it takes
/// the head as it is decoded.
bool beginsAsFeed(Bytes head) {
    return isFeed(decodeContent(Data(head.begin(), head.end()), {.web = WebRules::today()}).text);
}

std::unique_ptr<PageSource> pageSource(InputStream& stream, ContentKind kind,
                                       const SourceOptions& options) {
    std::optional<Data> bytes = detail::readAll(stream, options.mostBytes);
    if (!bytes) return detail::failingSource(options.name, detail::gatherError("too large"));
    if (stream.error()) return detail::failingSource(options.name, *stream.error());
    SourcePage page = {.name = options.name, .url = options.url, .bytes = std::move(*bytes)};
    page.kind = kind;
    page.status = 0;
    return std::make_unique<detail::SingleSource>(std::move(page));
}

std::unique_ptr<PageSource> binarySource(const SourceOptions& options) {
    if (!options.leavesOut)
        return detail::failingSource(options.name, detail::gatherError("a binary file"));
    SourcePage page = {.name = options.name};
    page.isLeftOut = true;
    return std::make_unique<detail::SingleSource>(std::move(page));
}

}  // namespace

std::unique_ptr<PageSource> openSource(InputStream&& stream, const SourceOptions& options) {
    Bytes head = stream.peek(ContentHeadSize);
    if (head.empty() && stream.error()) return detail::failingSource(options.name, *stream.error());
    head = head.first(std::min(head.size(), ContentHeadSize));
    if (isWARC(head)) return std::make_unique<WARCSource>(std::move(stream), options);
    if (beginsAsJSONLines(head))
        return std::make_unique<JSONLinesSource>(std::move(stream), options);
    ContentKind kind = contentKind(head, options.name.utf8());
    if (kind == ContentKind::Unclear) kind = options.unclear;
    if (kind == ContentKind::Binary) return binarySource(options);
    if (kind == ContentKind::Page && beginsAsFeed(head))
        return std::make_unique<FeedSource>(std::move(stream), options);
    return pageSource(stream, kind, options);
}

std::unique_ptr<PageSource> openSource(const Path& path, SourceOptions options) {
    if (options.name.isAbsent()) options.name = path.string();
    if (options.url.isAbsent()) options.url = urlOfFile(path, {}, {});
    return openSource(InputStream::ofFile(path), options);
}

}  // namespace velmo
