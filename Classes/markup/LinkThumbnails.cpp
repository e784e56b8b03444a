// A handler that walks the page once with at most three links in mind: the one that is open, the
// one that was closed last in the cell at hand, and, with the image that waits for it, the one to
// come. No tree is built: a cell is the stretch between two tags that begin or end one. What a link
// keeps of what it is offered, is the matter of markup/IconsContext.h; what is no thumbnail at all,
// that of markup/ThumbnailFilter.h.
//
// Of the thousands of images of a page most come too late for their link. So whether an image is
// wanted is asked first, and only then what it is.
#include <velmocore/markup/LinkThumbnails.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <optional>
#include <utility>
#include <vector>

#include <velmocore/markup/MarkupCharset.h>
#include <velmocore/markup/PlainText.h>
#include <velmocore/url/LinkAcceptance.h>
#include <velmocore/url/RelativeURLs.h>
#include <velmocore/url/URLClassification.h>
#include <velmocore/url/URLSchemes.h>

#include "markup/GoogleMask.h"
#include "markup/IconsContext.h"
#include "markup/MarkupReading.h"
#include "markup/NormalizedLink.h"
#include "markup/TagName.h"
#include "markup/TagSupport.h"
#include "markup/TagWalk.h"
#include "markup/ThumbnailFilter.h"
#include "markup/ThumbnailTables.h"
#include "markup/UniqueLinks.h"
#include "text/Keyword.h"

namespace velmo {
namespace {

using namespace detail;

using Units = std::u16string_view;
using Link = IconsContext::Link;

bool isSearchPage(const URL& base) {
    return std::ranges::any_of(searchPageHosts(), [&](std::string_view host) {
        return keyword::contains(base.part(URLPart::Host), host);
    });
}

/// Whether a link on a search engine's page leads to the engine's copy of a page.
bool isEnginesOwn(Units link) {
    const URLClasses classes = classesOfStringURL(link);
    return classes.translation || classes.cached || link.find(u"&q=related:") != link.npos;
}

/// The page that is walked. What stands between two tags of one in units is a part of it; of one in
/// bytes, the tags of which come one at a time, it is gathered on the way.
struct WalkedPage {
    Units units = {};  ///< null for a page in bytes
    std::string_view utf8 = {};

    bool isUTF8() const { return utf8.data() != nullptr; }
    StringEncoding urlEncoding(const WebRules& web) const {
        return isUTF8() ? defaultURLEncodingOfBytes(utf8, web) : defaultURLEncoding(units, web);
    }
};

class IconsHandler {
public:
    IconsHandler(const WalkedPage& page, const LinkThumbnailOptions& options)
        : page_(page),
          options_(options),
          context_(options),
          isSearchPage_(options.resolve && isSearchPage(options.baseURL)) {}

    bool operator()(const Tag& tag) {
        if (gathersText())
            gathered_.append(tag.text()).append(tag.isNamed("A") ? Units() : tag.whole());
        if (tag.kind == TagKind::Comment && options_.googleTags) mask_.note(tag);
        if (tag.kind == TagKind::End) closeLink();
        if (const auto rule = ruleOf(tag)) (this->*rule)(tag);
        return false;
    }

    LinkThumbnails finish() { return context_.finish(); }

private:
    enum class Cell { None, Any, Figure };

    /// An image and its tag, which may be gone when its link comes.
    struct WaitingImage {
        String url, tag;
        Thumbnail thumbnail() const { return {url, tag}; }
    };

    struct OpenLink {
        Link link;
        std::size_t textLocation;
        bool hasText;                        ///< whether its text counts
        std::optional<WaitingImage> before;  ///< the image that waited for it
    };

    using Rule = void (IconsHandler::*)(const Tag& tag);
    /// What a tag does; null for most.
    static Rule ruleOf(const Tag& tag);

    // --- cells ------------------------------------------------------------------------

    /// What waits or is held is so for one cell only.
    void changeCell(Cell cell) {
        cell_ = cell;
        waiting_.reset();
        context_.held.reset();
    }

    void handleItem(const Tag& tag) { changeCell(isOpening(tag) ? Cell::Any : Cell::None); }
    void handleList(const Tag&) { changeCell(Cell::None); }

    void handleTableCell(const Tag& tag) {
        handleItem(tag);
        handleBackground(tag);
    }

    void handleTable(const Tag& tag) {
        changeCell(Cell::None);
        handleBackground(tag);
    }

    /// In a cell a figure is a part of it, which may stand beside its link.
    void handleFigure(const Tag& tag) {
        if (cell_ != Cell::Any) changeCell(isOpening(tag) ? Cell::Figure : Cell::None);
    }

    // --- links ------------------------------------------------------------------------

    void handleAnchor(const Tag& tag) {
        if (open_ && tag.isClosing()) addText(tag);
        closeLink();
        if (!isOpening(tag)) return;
        if (const std::optional<Link> link = linkOf(tag.whole())) {
            const bool hasText = mask_.allows(GoogleMask::Anchor);
            if (hasText) context_.addTitles(tag.whole(), *link, true);
            open_ = OpenLink{*link, tag.tagLocation + tag.tagLength, hasText, takeWaiting()};
            gathered_.clear();
        }
    }

    void handleArea(const Tag& tag) {
        if (!isOpening(tag)) return;
        const std::optional<Link> link = linkOf(tag.whole());
        if (!link) return;
        if (mask_.allows(GoogleMask::Anchor)) context_.addTitles(tag.whole(), *link, true);
        leaveLink(*link, takeWaiting());
    }

    /// Only what stands in front of a closing tag is a text: a link that is never closed
    /// may have half the page behind it.
    void addText(const Tag& closing) {
        if (!options_.texts || !open_->hasText) return;
        const Units text = page_.isUTF8()
                               ? Units(gathered_)
                               : page_.units.substr(open_->textLocation,
                                                    closing.tagLocation - open_->textLocation);
        // Without a receiver to give back: an empty text is none anyway.
        context_.addText(
            plainTextOf(String(), scanOf(text, options_.web), {.web = options_.web}).text,
            open_->link);
    }

    /// Any anchor ends the text of the link that is open.
    bool gathersText() const { return page_.isUTF8() && open_ && open_->hasText && options_.texts; }

    void closeLink() {
        if (open_) leaveLink(open_->link, open_->before);
        open_.reset();
    }

    /// An image in front of a link comes after those within it.
    void leaveLink(Link link, const std::optional<WaitingImage>& before) {
        if (before && !context_.hasThumbnail(link))
            context_.addThumbnail(before->thumbnail(), link);
        if (cell_ != Cell::None) context_.held = link;
    }

    std::optional<WaitingImage> takeWaiting() { return std::exchange(waiting_, std::nullopt); }

    /// The link of a tag; nothing if there is none, or none to take.
    std::optional<Link> linkOf(Units tag) {
        if (!mask_.allows(GoogleMask::Index)) return std::nullopt;
        Units href = attributeOf(tag, "HREF", options_.web);
        String extracted;
        if (isJavaScriptStringURL(href)) {
            extracted = stringByExtractingJavaScriptURL(href);
            href = extracted;
        }
        const NormalizedLink normalized(href, {.web = options_.web});
        const Units link = normalized.view();
        if (link.empty()) return std::nullopt;
        if (!options_.resolve) return resolvedLink(link);
        // Most links of a page come more than once, and are the same each time.
        const std::size_t number = references_.add(link);
        if (number == links_.size()) links_.push_back(resolvedLink(link));
        return links_[number];
    }

    /// The link that a reference leads to; nothing if it is none to take.
    std::optional<Link> resolvedLink(Units link) {
        URL url;
        if (options_.resolve) {
            url = options_.web.resolution
                      ? URLRelativeTo(options_.baseURL, link,
                                      {.encoding = encoding(), .web = options_.web})
                      : resolveStringURL(link, options_.baseURL);
            link = url.absoluteString();
        }
        if (link.empty() || (isSearchPage_ && isEnginesOwn(link))) return std::nullopt;
        return context_.linkFor(link);
    }

    // --- images -----------------------------------------------------------------------

    void handleImage(const Tag& tag) { addImageNamedBy(tag, {"SRC"}); }
    void handleVideo(const Tag& tag) { addImageNamedBy(tag, {"POSTER", "SRC"}); }
    void handleBackground(const Tag& tag) { addImageNamedBy(tag, {"BACKGROUND"}); }

    void handleDivision(const Tag& tag) {
        if (isOpening(tag) && isImageWanted())
            addImage(backgroundStyleURLOfTagCharacters(tag.whole(), tag.web), tag.whole());
    }

    /// The first of the attributes that the tag has.
    void addImageNamedBy(const Tag& tag, std::initializer_list<std::string_view> attributes) {
        if (!isOpening(tag) || !isImageWanted()) return;
        for (std::string_view name : attributes)
            if (const Units reference = attributeOf(tag, name); !reference.empty())
                return addImage(reference, tag.whole());
    }

    bool isImageWanted() const {
        if (!options_.thumbnails && !options_.titles) return false;
        if (!mask_.allows(GoogleMask::Index)) return false;
        return open_ ? context_.wantsThumbnail(open_->link) : cell_ != Cell::None;
    }

    void addImage(Units raw, Units tag) {
        const WebRules& web = options_.web;
        const NormalizedLink reference(raw, {.web = web});
        if (reference.view().empty() || !isThumbnail(reference.view(), tag, web)) return;
        const URL url =
            URLRelativeTo(options_.baseURL, reference.view(), {.encoding = encoding(), .web = web});
        if (url.isAbsent()) return;
        const Thumbnail image{url.absoluteString(), tag};
        if (open_)
            context_.addThumbnail(image, open_->link);
        else if (context_.wantsThumbnail(std::nullopt))
            context_.addThumbnail(image, std::nullopt);
        else
            waiting_ = WaitingImage{image.url, options_.titles ? String(tag) : String()};
    }

    /// The page's own, which is looked for once, when the first image is resolved.
    StringEncoding encoding() {
        if (!encoding_) encoding_ = page_.urlEncoding(options_.web);
        return *encoding_;
    }

    const WalkedPage page_;
    const LinkThumbnailOptions& options_;
    IconsContext context_;
    const bool isSearchPage_;
    GoogleMask mask_;
    Cell cell_ = Cell::None;
    std::vector<String> seen_;  ///< the references of the links
    UniqueLinks references_{seen_};
    std::vector<std::optional<Link>> links_;  ///< where each of them leads
    std::optional<OpenLink> open_;
    std::u16string gathered_;              ///< of a page in bytes, behind the tag of the open link
    std::optional<WaitingImage> waiting_;  ///< for the next link of the cell
    std::optional<StringEncoding> encoding_;
};

IconsHandler::Rule IconsHandler::ruleOf(const Tag& tag) {
    static constexpr struct {
        std::string_view name;
        Rule rule;
    } Rules[] = {
        {"a", &IconsHandler::handleAnchor},     {"area", &IconsHandler::handleArea},
        {"div", &IconsHandler::handleDivision}, {"figure", &IconsHandler::handleFigure},
        {"img", &IconsHandler::handleImage},    {"li", &IconsHandler::handleItem},
        {"ol", &IconsHandler::handleList},      {"table", &IconsHandler::handleTable},
        {"td", &IconsHandler::handleTableCell}, {"th", &IconsHandler::handleTableCell},
        {"tr", &IconsHandler::handleTable},     {"ul", &IconsHandler::handleList},
        {"video", &IconsHandler::handleVideo},
    };
    static constexpr NameTable Table([] {
        std::array<PackedName, std::size(Rules)> names{};
        for (std::size_t i = 0; i < names.size(); ++i) names[i] = packed(Rules[i].name);
        return names;
    }());
    const int row = Table.find(packedName(tag));
    return row < 0 ? nullptr : Rules[row].rule;
}

}  // namespace

LinkThumbnails detail::thumbnailsOf(Units page, TagWalk walk, const LinkThumbnailOptions& options) {
    if (!options.thumbnails && !options.titles && !options.texts) return {};
    IconsHandler handler({.units = page}, options);
    walk(handler);
    return handler.finish();
}

LinkThumbnails detail::thumbnailsOf(std::string_view utf8, ByteTagWalk walk,
                                    const LinkThumbnailOptions& options) {
    if (!options.thumbnails && !options.titles && !options.texts) return {};
    IconsHandler handler({.utf8 = utf8}, options);
    // Of the text of a link a plain text is made, as of a page.
    const bool wantsAll = options.texts;
    widened(walk, {.text = wantsAll ? TagParts::Text::All : TagParts::Text::None,
                   .bodies = wantsAll})(handler);
    return handler.finish();
}

LinkThumbnails getLinkThumbnails(Units page, const LinkThumbnailOptions& options) {
    return thumbnailsOf(page, scanOf(page, options.web), options);
}

LinkThumbnails getLinkThumbnails(Bytes page, const LinkThumbnailOptions& options,
                                 MarkupDecodingOptions decoding) {
    decoding.web = options.web;
    const MarkupReading reading = readMarkup(page, decoding);
    if (!reading.isUTF8()) return getLinkThumbnails(reading.page.text, options);
    return thumbnailsOf(reading.utf8, scanOf(reading.utf8, options.web), options);
}

String stringByExtractingJavaScriptURL(Units link) {
    for (std::string_view script : scriptLinks()) {
        if (!keyword::beginsWith(link, script)) continue;
        const Units rest = link.substr(script.size());
        const std::size_t end = rest.find(u'\'');
        return end == rest.npos ? String() : String(rest.substr(0, end));
    }
    return {};
}

}  // namespace velmo
