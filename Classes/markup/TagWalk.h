// Where the handlers of a page get their tags from: one scan each, as the operations on a text
// have it, or a scan whose tags were kept for all of them.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

#include <velmocore/markup/FeedRecognition.h>
#include <velmocore/markup/LinkThumbnails.h>
#include <velmocore/markup/Links.h>
#include <velmocore/markup/PageMetadata.h>
#include <velmocore/markup/PageResources.h>
#include <velmocore/markup/PlainText.h>
#include <velmocore/markup/TagScanner.h>

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

/// The tags of a text for all who ask for them: those of one scan, or, if the text is long, those of
/// a scan for each who asks, as all of them take a fifth of the memory of the text. The text must
/// outlive them.
template <class Unit>
class TagListOf {
    using Text = std::basic_string_view<Unit>;
    using AnyTag = TagOf<Unit>;
    using Handler = FunctionRef<bool(const AnyTag&)>;

public:
    TagListOf(Text text, const WebRules& web) : text_(text), web_(web) {
        if (!isKept()) return;
        const auto keep = [this](const AnyTag& tag) {
            tags_.push_back({static_cast<std::uint32_t>(tag.nameLocation),
                             static_cast<std::uint32_t>(tag.nameLength),
                             static_cast<std::uint32_t>(tag.tagLocation),
                             static_cast<std::uint32_t>(tag.tagLength) << KindBits |
                                 hasOddName(tag) << (KindBits - 1) |
                                 static_cast<std::uint32_t>(tag.kind)});
            return false;
        };
        scanOf(text, web_)(keep);
    }

    void operator()(Handler handler) const {
        if (!isKept()) return scanOf(text_, web_)(handler);
        AnyTag tag;
        tag.characters = text_;
        tag.web = web_;
        for (const Kept& kept : tags_) {
            tag.nameLocation = kept.nameLength > 0 ? kept.nameLocation : NotFound;
            tag.nameLength = kept.nameLength;
            tag.tagLocation = kept.tagLocation;
            tag.tagLength = kept.lengthAndKind >> KindBits;
            tag.kind = static_cast<TagKind>(kept.lengthAndKind & ((1u << (KindBits - 1)) - 1));
            if constexpr (IsBytes) tag.isNamePlain = !(kept.lengthAndKind >> (KindBits - 1) & 1);
            if (handler(tag)) return;
            // Text begins where the tag before ended, so it need not be kept.
            tag.textLocation = tag.tagLocation + tag.tagLength;
        }
    }

private:
    static constexpr std::size_t LongText = std::size_t{1} << 20;  ///< in units or bytes
    static constexpr unsigned KindBits = 3;  ///< and one of them for a name outside ASCII
    static constexpr bool IsBytes = sizeof(Unit) == 1;

    /// What a tag does not have in common with those beside it.
    struct Kept {
        std::uint32_t nameLocation, nameLength, tagLocation, lengthAndKind;
    };

    static std::uint32_t hasOddName(const AnyTag& tag) {
        if constexpr (IsBytes) return !tag.isNamePlain;
        return 0;
    }

    bool isKept() const { return text_.size() < LongText; }

    Text text_;
    const WebRules web_;
    std::vector<Kept> tags_;
};
using TagList = TagListOf<char16_t>;
using ByteTagList = TagListOf<char>;

// What the operations of the public headers are made of. `page` is the text that is walked.

HtmlLinks linksOf(TagWalk walk, const LinkOptions& options);
HtmlLinks linksOf(ByteTagWalk walk, const LinkOptions& options);
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
// Of UTF-8, without a byte-order mark: what of it is no text is never decoded.
HtmlPlainText plainTextOf(std::string_view utf8, ByteTagWalk walk, const PlainTextOptions& options);
VELMO_API HtmlPlainText plainTextOfUtf8(std::string_view page, const PlainTextOptions& options);

}  // namespace velmo::detail
