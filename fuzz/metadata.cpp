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

WebRules web;  ///< of the input at hand

bool isOneOf(const Tag& tag, std::initializer_list<std::string_view> names) {
    return std::any_of(names.begin(), names.end(),
                       [&](std::string_view name) { return tag.isNamed(name); });
}

void checkMetadata(const String& page) {
    const HtmlMetadata all = htmlMetadata(page, {.summary = true, .web = web});
    fuzz::require(all.title == htmlTitle(page, web));
    fuzz::require(all.normalizedTitle == normalizedHtmlTitle(page, web));
    fuzz::require(all.metaTitle == htmlMetaTitle(page, web));
    fuzz::require(all.indexTitle == htmlMetaIndexTitle(page, web));
    fuzz::require(all.keywords == htmlMetaKeywords(page, web));
    fuzz::require(all.description == htmlMetaDescription(page, web));
    fuzz::require(all.metaDate == htmlMetaDate(page, web) &&
                  all.author == htmlMetaAuthor(page, web));
    fuzz::require(all.copyright == htmlMetaCopyright(page, web));
    fuzz::require(all.refresh == htmlMetaRefresh(page, web) && all.date == htmlDate(page, web));
    fuzz::require(all.canonical == htmlCanonicalURL(page, web) &&
                  all.base == htmlBaseURL(page, web));
    fuzz::require(all.isFormattedNote == isFormattedNote(page, web));
    fuzz::require(all.attributes == htmlMetaAttributes(page, web));
    fuzz::require(all.convertedAttributes ==
                  htmlMetaAttributesByConvertingEntitiesToCharacters(page, web));
    fuzz::require(all.attributes.size() == all.convertedAttributes.size());
    const HtmlMetaSummary summary = htmlMetaKeywordsDescriptionTitleDate(page, web);
    fuzz::require(summary.keywords == all.summary.keywords && summary.date == all.summary.date &&
                  summary.description == all.summary.description &&
                  summary.title == all.summary.title &&
                  summary.indexTitle == all.summary.indexTitle);
}

/// Whether texts may hold what looks like tags.
bool changesTexts() { return web.rawText || web.tagBounds || web.comments || web.attributes; }

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
    const auto handler = [&](const Tag& tag) {
        expected += tag.text();
        if (!isNamed(tag)) expected += tag.whole();
        return false;
    };
    GetTagsOfString(page, handler, web);
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
    const auto handler = [&](const Tag& tag) {
        if (withText) find(tag.text());
        if (!isNamed(tag)) find(tag.whole());
        return false;
    };
    GetTagsOfString(page, handler, web);
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
    if (!changesTexts()) checkStripped(page);
    checkAllKept(page, stripTag(page, "P", web), [](const Tag& tag) { return tag.isNamed("P"); });
    checkAllKept(page, stringByStrippingMetaAttributeWithName(page, u"\uE000", web),
                 [](const Tag&) { return false; });
    checkTagsKept(page, stripAttributesOfTag(page, "A", web), true,
                  [](const Tag& tag) { return tag.isNamed("A"); });
    const auto isActive = [](const Tag& tag) {
        return tag.kind == TagKind::Comment ||
               isOneOf(tag, {"OBJECT", "PARAM", "APPLET", "EMBED", "IFRAME", "AUDIO", "VIDEO",
                             "CANVAS", "NOSCRIPT", "LINK", "FRAME", "FRAMES", "SCRIPT", "IMG"});
    };
    const auto isLink = [](const Tag& tag) { return isOneOf(tag, {"A", "LINK"}); };
    for (const bool images : {false, true})
        checkTagsKept(page, stripObjectsAndReplaceImages(page, images, web), false, isActive);
    checkTaken(page, stripObjectsAndReplaceImages(page, false, web));
    checkTagsKept(page, stripLinks(page, web), false, isLink);
    checkTaken(page, stripLinks(page, web));
    checkTagsKept(page, stripFileLinks(page, web), false, isLink);
    checkTaken(page, stripFileLinks(page, web));
    const String tags[] = {u"<p", u"<DIV", u"<script"};
    checkTaken(page, stripTagBodies(page, tags, {.web = web}));
    const String kept = stripTagBodies(page, tags, {.except = true, .web = web});
    fuzz::require(kept.isAbsent() || !kept.isEmpty());
    checkTaken(page, outerTagBody(page, "P", web));
    checkTaken(outerTagBody(page, "P", web), innerTagBody(page, "P", web));
}

void checkRewriting(const String& page) {
    const URL base = URL::URLWithString(u"http://h.org/a/b?c");
    const auto isReference = [](const Tag& tag) { return !getLinkAttribute(tag.name()).empty(); };
    checkTagsKept(page, resolveLinksUsingBaseURL(page, base, web), true, isReference);
    checkTagsKept(page, flattenLinksUsingBaseURL(page, base, u"<p", web), true, isReference);
    std::size_t longest = 0;
    const auto handler = [&](const Tag& tag) {
        if (tag.isNamed("BASE")) longest = std::max(longest, tag.tagLength);
        return false;
    };
    GetTagsOfString(page, handler, web);
    checkInserted(page, stringByAddingBaseURL(page, u"http://i.org/", web), 0);
    checkInserted(page, stringBySettingBaseURL(page, u"http://i.org/", web), longest);
    checkTaken(page, stringBySettingBaseURL(page, u"", web));
    const String note = formattedNote(page, web);
    fuzz::require(note.view().find(u"\n\n\n") == Units::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    setLogHandler([](std::string_view) {});
    web = fuzz::rulesOf(data, size);
    const String page = fuzz::unitsOf(data, size);
    checkMetadata(page);
    checkRebuilding(page);
    checkRewriting(page);
    fuzz::require(!isDateAttribute(page) || page.length() > 3);
    return 0;
}
