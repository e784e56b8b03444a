// What pages say of themselves, by one scan and by one each, and the operations that make a page
// of a page.
#include <velmocore/markup/EditableNotes.h>
#include <velmocore/markup/JunkStripping.h>
#include <velmocore/markup/LinkRewriting.h>
#include <velmocore/markup/MetadataWriting.h>
#include <velmocore/markup/PageMetadata.h>
#include <velmocore/markup/PageResources.h>
#include <velmocore/markup/TagScanner.h>
#include <velmocore/markup/TagStripping.h>
#include <velmocore/platform/Log.h>

#include <algorithm>
#include <initializer_list>

#include "Input.h"

using namespace velmo;

namespace {

using Units = std::u16string_view;

bool isOneOf(const Tag& tag, std::initializer_list<std::string_view> names) {
    return std::any_of(names.begin(), names.end(),
                       [&](std::string_view name) { return tag.isNamed(name); });
}

void checkMetadata(const String& page) {
    const HtmlMetadata all = htmlMetadata(page, {.summary = true});
    fuzz::require(all.title == htmlTitle(page));
    fuzz::require(all.normalizedTitle == normalizedHtmlTitle(page));
    fuzz::require(all.metaTitle == htmlMetaTitle(page));
    fuzz::require(all.indexTitle == htmlMetaIndexTitle(page));
    fuzz::require(all.keywords == htmlMetaKeywords(page));
    fuzz::require(all.description == htmlMetaDescription(page));
    fuzz::require(all.metaDate == htmlMetaDate(page) && all.author == htmlMetaAuthor(page));
    fuzz::require(all.copyright == htmlMetaCopyright(page));
    fuzz::require(all.refresh == htmlMetaRefresh(page) && all.date == htmlDate(page));
    fuzz::require(all.canonical == htmlCanonicalURL(page) && all.base == htmlBaseURL(page));
    fuzz::require(all.isFormattedNote == isFormattedNote(page));
    fuzz::require(all.attributes == htmlMetaAttributes(page));
    fuzz::require(all.convertedAttributes ==
                  htmlMetaAttributesByConvertingEntitiesToCharacters(page));
    fuzz::require(all.attributes.size() == all.convertedAttributes.size());
    const HtmlMetaSummary summary = htmlMetaKeywordsDescriptionTitleDate(page);
    fuzz::require(summary.keywords == all.summary.keywords && summary.date == all.summary.date &&
                  summary.description == all.summary.description &&
                  summary.title == all.summary.title &&
                  summary.indexTitle == all.summary.indexTitle);
}

/// No tag that was whole is left.
void checkStripped(const String& page) {
    GetTagsOfString(stripTags(page), [](const Tag& tag) {
        fuzz::require(tag.kind == TagKind::End);
        return false;
    });
}

/// The text and all tags that the rule does not name are there, and nothing else is.
template <class IsNamed>
void checkAllKept(const String& page, const String& result, IsNamed isNamed) {
    std::u16string expected;
    GetTagsOfString(page, [&](const Tag& tag) {
        expected += tag.text();
        if (!isNamed(tag)) expected += tag.whole();
        return false;
    });
    fuzz::require(result.view() == expected);
}

/// The units of the result are some of the page's, in their order.
void checkTaken(const String& page, const String& result) {
    const char16_t* at = page.begin();
    for (const char16_t unit : result) {
        at = std::find(at, page.end(), unit);
        fuzz::require(at != page.end());
        ++at;
    }
}

/// All tags that the rule does not name are there in their order, and with withText the text too.
template <class IsNamed>
void checkTagsKept(const String& page, const String& result, bool withText, IsNamed isNamed) {
    std::size_t from = 0;
    const auto find = [&](Units units) {
        const std::size_t at = result.view().find(units, from);
        fuzz::require(at != Units::npos);
        from = at + units.size();
    };
    GetTagsOfString(page, [&](const Tag& tag) {
        if (withText) find(tag.text());
        if (!isNamed(tag)) find(tag.whole());
        return false;
    });
}

/// The result is the page with something of its own in one place, where something may be gone.
void checkInserted(const String& page, const String& result, std::size_t gone) {
    const auto front = std::mismatch(page.begin(), page.end(), result.begin(), result.end()).first;
    const std::size_t prefix = static_cast<std::size_t>(front - page.begin());
    std::size_t suffix = 0;
    while (suffix < std::min(page.length() - prefix, result.length()) &&
           page.end()[-1 - static_cast<std::ptrdiff_t>(suffix)] ==
               result.end()[-1 - static_cast<std::ptrdiff_t>(suffix)])
        ++suffix;
    fuzz::require(prefix + suffix + gone >= page.length());
}

void checkRebuilding(const String& page) {
    checkStripped(page);
    checkAllKept(page, stripTag(page, "P"), [](const Tag& tag) { return tag.isNamed("P"); });
    checkAllKept(page, stringByStrippingMetaAttributeWithName(page, u"\uE000"),
                 [](const Tag&) { return false; });
    checkTagsKept(page, stripAttributesOfTag(page, "A"), true,
                  [](const Tag& tag) { return tag.isNamed("A"); });
    const auto isActive = [](const Tag& tag) {
        return tag.kind == TagKind::Comment ||
               isOneOf(tag, {"OBJECT", "PARAM", "APPLET", "EMBED", "IFRAME", "AUDIO", "VIDEO",
                             "CANVAS", "NOSCRIPT", "LINK", "FRAME", "FRAMES", "SCRIPT", "IMG"});
    };
    const auto isLink = [](const Tag& tag) { return isOneOf(tag, {"A", "LINK"}); };
    for (const bool images : {false, true})
        checkTagsKept(page, stripObjectsAndReplaceImages(page, images), false, isActive);
    checkTaken(page, stripObjectsAndReplaceImages(page, false));
    checkTagsKept(page, stripLinks(page), false, isLink);
    checkTaken(page, stripLinks(page));
    checkTagsKept(page, stripFileLinks(page), false, isLink);
    checkTaken(page, stripFileLinks(page));
    const String tags[] = {u"<p", u"<DIV", u"<script"};
    checkTaken(page, stripTagBodies(page, tags));
    const String kept = stripTagBodiesExcept(page, tags);
    fuzz::require(kept.isAbsent() || !kept.isEmpty());
    checkTaken(page, outerTagBody(page, "P"));
    checkTaken(outerTagBody(page, "P"), innerTagBody(page, "P"));
}

void checkRewriting(const String& page) {
    const URL base = URL::URLWithString(u"http://h.org/a/b?c");
    const auto isReference = [](const Tag& tag) { return !getLinkAttribute(tag.name()).empty(); };
    checkTagsKept(page, resolveLinksUsingBaseURL(page, base), true, isReference);
    checkTagsKept(page, flattenLinksUsingBaseURL(page, base, u"<p"), true, isReference);
    std::size_t longest = 0;
    GetTagsOfString(page, [&](const Tag& tag) {
        if (tag.isNamed("BASE")) longest = std::max(longest, tag.tagLength);
        return false;
    });
    checkInserted(page, stringByAddingBaseURL(page, u"http://i.org/"), 0);
    checkInserted(page, stringBySettingBaseURL(page, u"http://i.org/"), longest);
    checkTaken(page, stringBySettingBaseURL(page, u""));
    const String note = formattedNote(page);
    fuzz::require(note.view().find(u"\n\n\n") == Units::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    setLogHandler([](std::string_view) {});
    const String page = fuzz::unitsOf(data, size);
    checkMetadata(page);
    checkRebuilding(page);
    checkRewriting(page);
    fuzz::require(!isDateAttribute(page) || page.length() > 3);
    return 0;
}
