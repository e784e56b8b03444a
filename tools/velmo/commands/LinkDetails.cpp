// The library's lists tell what a page loads and leads to, each once; here every reference counts,
// in page order, with the text about it. All come from one scan, and the text of a link is
// collected while it is open, so that the time is linear however links are nested or left open.
#include "LinkDetails.h"

#include <algorithm>
#include <optional>
#include <string>

#include <velmocore/markup/LinkNormalising.h>
#include <velmocore/markup/TagAttributes.h>
#include <velmocore/markup/TagScanner.h>

#include "frame/Content.h"

namespace velmo::tool {
namespace {

/// A tag with a reference, and the attribute that holds it.
struct Pointer {
    std::u16string_view tag;
    std::string_view attribute;
    LinkKind kind;
};

constexpr Pointer Pointers[] = {
    {u"a", "HREF", LinkKind::A},          {u"area", "HREF", LinkKind::Area},
    {u"frame", "SRC", LinkKind::Frame},   {u"iframe", "SRC", LinkKind::Frame},
    {u"img", "SRC", LinkKind::Image},     {u"body", "BACKGROUND", LinkKind::Image},
    {u"script", "SRC", LinkKind::Script}, {u"object", "DATA", LinkKind::Media},
    {u"embed", "SRC", LinkKind::Media},   {u"audio", "SRC", LinkKind::Media},
    {u"video", "SRC", LinkKind::Media},   {u"source", "SRC", LinkKind::Media},
    {u"track", "SRC", LinkKind::Media},
};

char16_t lower(char16_t unit) { return unit >= u'A' && unit <= u'Z' ? unit + 32 : unit; }

std::u16string lowered(std::u16string_view text) {
    std::u16string out(text);
    std::ranges::transform(out, out.begin(), lower);
    return out;
}

/// A tag without the body that a script or style is scanned with: up to its first > outside
/// quotes.
/// Attributes are sought in it, and a script's body may hold what looks like one.
std::u16string_view openingTag(std::u16string_view tag) {
    char16_t quote = 0;
    for (std::size_t i = 0; i < tag.size(); ++i) {
        const char16_t unit = tag[i];
        if (quote != 0)
            quote = unit == quote ? u'\0' : quote;
        else if (unit == u'"' || unit == u'\'')
            quote = unit;
        else if (unit == u'>')
            return tag.substr(0, i + 1);
    }
    return tag;
}

/// What a link tag of the head points at, by its rel: a sheet or an icon.
std::optional<LinkKind> kindOfLinkTag(const String& ofLink) {
    const std::u16string rel = lowered(ofLink);
    // Part of the value is enough: "alternate stylesheet" and "shortcut icon" are of the kind too.
    if (rel.find(u"stylesheet") != rel.npos) return LinkKind::Script;
    if (rel.find(u"icon") != rel.npos) return LinkKind::Image;
    return std::nullopt;
}

std::optional<Pointer> pointerOf(std::u16string_view name, const String& rel) {
    if (name == u"link") {
        const auto kind = kindOfLinkTag(rel);
        return kind ? std::optional<Pointer>({name, "HREF", *kind}) : std::nullopt;
    }
    const auto found = std::ranges::find(Pointers, name, &Pointer::tag);
    return found == std::end(Pointers) ? std::nullopt : std::optional<Pointer>(*found);
}

/// Collects what the tags of one scan point at.
class Collector {
public:
    explicit Collector(const WebRules& web) : web_(web) {}

    bool take(const Tag& tag) {
        // tag.text() is what stands between the tag before and this one, so tags within a link,
        // such as b or img, neither end its text nor come into it.
        if (openLink_) text_ += tag.text();
        if (tag.kind == TagKind::End) closeLink();
        if (tag.kind == TagKind::Element) takeElement(tag);
        return false;
    }
    std::vector<LinkDetails> links;

private:
    void takeElement(const Tag& tag) {
        const std::u16string name = lowered(tag.name());
        // An a, opening or closing, ends the one before: links do not nest, but many are never
        // closed.
        if (name == u"a") closeLink();
        if (tag.isClosing()) return;
        const std::u16string_view opening = openingTag(tag.whole());
        const auto pointer =
            pointerOf(name, name == u"link" ? attributeOf(opening, "REL") : String());
        if (!pointer) return;
        const String raw = attributeOf(opening, pointer->attribute);
        const String link = normalizedStringURL(raw, web_);
        if (link.isAbsent()) return;
        const bool isImage = pointer->kind == LinkKind::Image;
        links.push_back({pointer->kind, raw, link,
                         // What stands for an image where it is not shown is its text.
                         isImage ? cleanText(attributeOf(opening, "ALT")) : String(),
                         cleanText(attributeOf(opening, "TITLE")),
                         cleanText(attributeOf(opening, "REL"))});
        // By its place, as the vector may move its elements while the link is open.
        if (pointer->kind == LinkKind::A) openLink_ = links.size() - 1;
    }

    void closeLink() {
        if (openLink_) links[*openLink_].text = cleanText(String(text_));
        openLink_.reset();
        text_.clear();
    }

    /// Of an opening tag.
    String attributeOf(std::u16string_view tag, std::string_view name) const {
        return attributeOfTagCharacters(tag, name, web_);
    }
    String cleanText(const String& text) const {
        const String clean = singleLine(normalizedHtmlString(text, web_));
        return clean.isEmpty() ? String() : clean;
    }

    const WebRules web_;
    std::optional<std::size_t> openLink_;
    std::u16string text_;
};

}  // namespace

std::string_view nameOf(LinkKind kind) {
    constexpr std::string_view Names[] = {"a", "area", "frame", "image", "script", "media"};
    return Names[static_cast<std::size_t>(kind)];
}

std::vector<LinkDetails> linkDetails(std::u16string_view page, const WebRules& web) {
    Collector collector(web);
    GetTagsOfString(
        page, [&](const Tag& tag) { return collector.take(tag); }, web);
    return std::move(collector.links);
}

}  // namespace velmo::tool
