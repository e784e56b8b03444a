#include "markup/IconsContext.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include <velmocore/markup/Entities.h>
#include <velmocore/text/Collapsing.h>
#include <velmocore/text/Comparison.h>
#include <velmocore/words/Words.h>

#include "markup/TagSupport.h"
#include "markup/ThumbnailTables.h"
#include "platform/Unicode.h"
#include "text/Keyword.h"
#include "text/Pieces.h"
#include "text/Trim.h"

namespace velmo::detail {
namespace {

using Units = std::u16string_view;

/// By its name: a link to a JPEG is one to a picture in full size.
bool namesJpeg(Units url) {
    for (std::size_t dot = url.find(u'.'); dot != url.npos; dot = url.find(u'.', dot + 1)) {
        const Units extension = url.substr(dot + 1);
        if (keyword::beginsWith(extension, "JPG") || keyword::beginsWith(extension, "JPE"))
            return true;
    }
    return false;
}

Units withoutTitlePrefix(Units title) {
    const auto prefixes = titlePrefixes();
    const auto found = std::ranges::find_if(
        prefixes, [title](Units prefix) { return hasPrefixNoCase(title, prefix); });
    return found == prefixes.end() ? title : title.substr(found->size());
}

/// What galleries and journals call all their links.
bool saysNothing(Units title) {
    return isEqualToStringNoCase(title, u"Go to fullsize image") ||
           isEqualToStringNoCase(title, u"Full Text") ||
           hasPrefixNoCase(title, u"More info and direct link for");
}

bool isAddress(Units text) {
    return hasPrefixNoCase(text, u"http://") || hasPrefixNoCase(text, u"https://");
}

}  // namespace

IconsContext::Link IconsContext::linkFor(Units link) {
    const Link number = unique_.add(link);
    if (number == entries_.size()) entries_.emplace_back().leadsToJpeg = namesJpeg(link);
    return number;
}

bool IconsContext::wantsThumbnail(std::optional<Link> link) const {
    return (link && !hasThumbnail(*link)) ||
           (held && (!hasThumbnail(*held) || heldIsReplacedFor(link)));
}

/// Next to a link to a picture, an image most likely shows that picture.
bool IconsContext::heldIsReplacedFor(std::optional<Link> link) const {
    return link && entries_[*link].leadsToJpeg && !entries_[*held].showsJpeg;
}

void IconsContext::addThumbnail(const Thumbnail& thumbnail, std::optional<Link> link) {
    if (held) {
        if (!hasThumbnail(*held)) {
            setThumbnail(thumbnail, *held);
        } else if (heldIsReplacedFor(link)) {
            entries_[*held].title = {};
            setThumbnail(thumbnail, *held);
        }
    }
    if (link && !hasThumbnail(*link)) setThumbnail(thumbnail, *link);
}

void IconsContext::setThumbnail(const Thumbnail& thumbnail, Link link) {
    entries_[link].thumbnail = thumbnail.url;
    entries_[link].showsJpeg = namesJpeg(thumbnail.url);
    addTitles(thumbnail.tag, link, false);
}

void IconsContext::addTitles(Units tag, Link link, bool replace) {
    if (!options_.titles) return;
    for (std::string_view name : {"TITLE", "ALT"})
        if (const Units title = attributeOf(tag, name, options_.web); !title.empty())
            addTitle(stringByConvertingEntitiesToCharacters(
                         title, {.inAttribute = true, .web = options_.web}),
                     link, replace);
}

void IconsContext::addTitle(const String& title, Link link, bool replace) {
    const Units said = withoutTitlePrefix(title);
    if (saysNothing(said)) return;
    addString(entries_[link].title, pieceOf(title, said), links_[link], replace, true);
}

void IconsContext::addText(const String& text, Link link) {
    addString(entries_[link].text, text, links_[link], true, false);
}

void IconsContext::addString(Wording& present, const String& value, Units key, bool replace,
                             bool collapseAll) {
    if (!present.string.isAbsent() && !replace) return;
    const std::size_t words = numberOfWordsUsingDefaultSeparation(value);
    if (words == 0 || words < present.words) return;
    const String clean = stringByRemovingMultipleWhiteSpaces(
        trimmedString(value, Ends::Both, unicode::isWhiteSpaceOrNewline),
        collapseAll ? RunClass::WhiteSpaces : RunClass::Spaces);
    // A link is no title.
    if (isEqualToStringNoCase(clean, key) || isAddress(clean)) return;
    present = {clean, words};
}

LinkThumbnails IconsContext::finish() {
    std::vector<Link> order(links_.size());
    std::iota(order.begin(), order.end(), Link{0});
    std::ranges::sort(order, {}, [this](Link link) -> const String& { return links_[link]; });
    LinkThumbnails found;
    const auto add = [](LinkThumbnails::Strings& strings, const String& link, String& value) {
        if (!value.isAbsent()) strings.emplace_hint(strings.end(), link, std::move(value));
    };
    for (Link link : order) {
        Entry& entry = entries_[link];
        if (options_.thumbnails) add(found.thumbnails, links_[link], entry.thumbnail);
        add(found.titles, links_[link], entry.title.string);
        add(found.texts, links_[link], entry.text.string);
    }
    return found;
}

}  // namespace velmo::detail
