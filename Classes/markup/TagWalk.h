// Where the handlers of a page get their tags from: one scan each, as the operations on a text
// have it, or a scan whose tags were kept for all of them.
#pragma once

#include <optional>
#include <set>
#include <string_view>

#include <velmocore/markup/FeedRecognition.h>
#include <velmocore/markup/LinkThumbnails.h>
#include <velmocore/markup/Links.h>
#include <velmocore/markup/PageMetadata.h>
#include <velmocore/markup/PageResources.h>
#include <velmocore/markup/PlainText.h>
#include <velmocore/markup/TagScanner.h>

#include "markup/TagList.h"
#include "markup/WideTags.h"

namespace velmo::detail {

/// Hands all tags of a page to the handler, until that wants no more.
using TagWalk = FunctionRef<void(TagHandler)>;

/// The same with tags of bytes.
using ByteTagWalk = FunctionRef<void(ByteTagHandler)>;

/// The walk that is a scan of the page.
inline auto scanOf(std::u16string_view page, const WebRules& web) {
    return [page, &web](TagHandler handler) { GetTagsOfString(page, handler, web); };
}
inline auto scanOf(std::string_view utf8, const WebRules& web) {
    return [utf8, &web](ByteTagHandler handler) { getTagsOfBytes(utf8, handler, web); };
}

/// A walk over tags of bytes for handlers that read units, and of these no more than the parts.
inline auto widened(ByteTagWalk walk, TagParts parts) {
    return [walk, parts](TagHandler handler) {
        WideTags wide(parts);
        walk([&](const ByteTag& tag) { return handler(wide.of(tag)); });
    };
}

// What the operations of the public headers are made of. `page` is the text that is walked.

HtmlLinks linksOf(const TagList& tags, const LinkOptions& options);
HtmlLinks linksOf(const ByteTagList& tags, const LinkOptions& options);
HtmlReferences referencesOf(TagWalk walk, bool wantsLinks, const URL& page);
bool isFeedOf(TagWalk walk);
bool isFeedOfBytes(std::string_view utf8, const WebRules& web);
FeedCompleteness feedCompletenessOf(TagWalk walk);
std::set<String> imagesOf(TagWalk walk);
std::set<String> stylesheetsAndScriptsOf(TagWalk walk);
std::set<String> embeddedObjectsOf(TagWalk walk);
HtmlMetaSummary summaryOf(TagWalk walk);
HtmlMetadata metadataOf(TagWalk walk, const HtmlMetadataOptions& options);
LinkThumbnails thumbnailsOf(std::u16string_view page, TagWalk walk,
                            const LinkThumbnailOptions& options);
LinkThumbnails thumbnailsOf(std::string_view utf8, ByteTagWalk walk,
                            const LinkThumbnailOptions& options);
VELMO_API HtmlPlainText plainTextOf(const String& page, TagWalk walk,
                                    const PlainTextOptions& options);
HtmlPlainText plainTextOf(const String& page, const TagList& tags, const PlainTextOptions& options);
// Of UTF-8, without a byte-order mark: what of it is no text is never decoded.
HtmlPlainText plainTextOf(std::string_view utf8, const ByteTagList& tags,
                          const PlainTextOptions& options);
VELMO_API HtmlPlainText plainTextOfUtf8(std::string_view page, const PlainTextOptions& options);

}  // namespace velmo::detail
