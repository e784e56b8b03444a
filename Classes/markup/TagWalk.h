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

namespace velmo::detail {

/// Hands all tags of a page to the handler, until that wants no more.
using TagWalk = FunctionRef<void(TagHandler)>;

/// The walk that is a scan of the page.
inline auto scanOf(std::u16string_view page, const WebRules& web) {
    return [page, &web](TagHandler handler) { GetTagsOfString(page, handler, web); };
}

/// The tags of a text for all who ask for them: those of one scan, or, if the text is long, those of
/// a scan for each who asks, as all of them take a fifth of the memory of the text. The text must
/// outlive them.
class TagList {
public:
    TagList(std::u16string_view text, const WebRules& web) : text_(text), web_(web) {
        if (!isKept()) return;
        const auto keep = [this](const Tag& tag) {
            tags_.push_back({static_cast<std::uint32_t>(tag.nameLocation),
                             static_cast<std::uint32_t>(tag.nameLength),
                             static_cast<std::uint32_t>(tag.tagLocation),
                             static_cast<std::uint32_t>(tag.tagLength) << KindBits |
                                 static_cast<std::uint32_t>(tag.kind)});
            return false;
        };
        GetTagsOfString(text, keep, web);
    }

    void operator()(TagHandler handler) const {
        if (!isKept()) {
            GetTagsOfString(text_, handler, web_);
            return;
        }
        Tag tag;
        tag.characters = text_;
        tag.web = web_;
        for (const Kept& kept : tags_) {
            tag.nameLocation = kept.nameLength > 0 ? kept.nameLocation : NotFound;
            tag.nameLength = kept.nameLength;
            tag.tagLocation = kept.tagLocation;
            tag.tagLength = kept.lengthAndKind >> KindBits;
            tag.kind = static_cast<TagKind>(kept.lengthAndKind & ((1u << KindBits) - 1));
            if (handler(tag)) return;
            // Text begins where the tag before ended, so it need not be kept.
            tag.textLocation = tag.tagLocation + tag.tagLength;
        }
    }

private:
    static constexpr std::size_t LongText = std::size_t{1} << 20;  ///< in units
    static constexpr unsigned KindBits = 2;

    /// What a tag does not have in common with those beside it.
    struct Kept {
        std::uint32_t nameLocation, nameLength, tagLocation, lengthAndKind;
    };

    bool isKept() const { return text_.size() < LongText; }

    std::u16string_view text_;
    const WebRules web_;
    std::vector<Kept> tags_;
};

// What the operations of the public headers are made of. `page` is the text that is walked.

HtmlLinks linksOf(TagWalk walk, const LinkOptions& options);
HtmlReferences referencesOf(TagWalk walk, bool wantsLinks, const URL& page);
bool isFeedOf(TagWalk walk);
FeedCompleteness feedCompletenessOf(TagWalk walk);
std::set<String> imagesOf(TagWalk walk);
std::set<String> stylesheetsAndScriptsOf(TagWalk walk);
std::set<String> embeddedObjectsOf(TagWalk walk);
HtmlMetaSummary summaryOf(TagWalk walk);
LinkThumbnails thumbnailsOf(std::u16string_view page, TagWalk walk,
                            const LinkThumbnailOptions& options);
HtmlPlainText plainTextOf(const String& page, TagWalk walk, const PlainTextOptions& options);
/// Of UTF-8, without a byte-order mark: what of it is no text is never decoded.
HtmlPlainText plainTextOfUtf8(std::string_view page, const PlainTextOptions& options);

}  // namespace velmo::detail
