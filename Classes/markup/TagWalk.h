// Where the handlers of a page get their tags from: one scan each, as the operations on a text
// have it, or a scan whose tags were kept for all of them.
#pragma once

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

/// The tags of one scan. The text must outlive them.
class TagList {
public:
    TagList(std::u16string_view text, const WebRules& web) : text_(text), web_(web) {
        const auto keep = [this](const Tag& tag) {
            tags_.push_back({static_cast<std::size_t>(tag.nameLocation), tag.nameLength,
                             tag.tagLocation, tag.tagLength, tag.kind});
            return false;
        };
        GetTagsOfString(text, keep, web);
    }

    void operator()(TagHandler handler) const {
        Tag tag;
        tag.characters = text_;
        tag.web = web_;
        for (const Kept& kept : tags_) {
            tag.nameLocation = kept.nameLocation;
            tag.nameLength = kept.nameLength;
            tag.tagLocation = kept.tagLocation;
            tag.tagLength = kept.tagLength;
            tag.kind = kept.kind;
            if (handler(tag)) return;
            // Text begins where the tag before ended, so it need not be kept.
            tag.textLocation = kept.tagLocation + kept.tagLength;
        }
    }

private:
    /// What a tag does not have in common with those beside it.
    struct Kept {
        std::size_t nameLocation, nameLength, tagLocation, tagLength;
        TagKind kind;
    };

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

}  // namespace velmo::detail
