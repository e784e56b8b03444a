// Pages: scanning, attributes, entities, charsets, plain text, links and resources.
#include <velmocore/markup/Charsets.h>
#include <velmocore/markup/CzechEncodings.h>
#include <velmocore/markup/EditableNotes.h>
#include <velmocore/markup/Entities.h>
#include <velmocore/markup/ErrorPages.h>
#include <velmocore/markup/FileTypes.h>
#include <velmocore/markup/JSONEscapes.h>
#include <velmocore/markup/JunkStripping.h>
#include <velmocore/markup/LinkNormalising.h>
#include <velmocore/markup/LinkRewriting.h>
#include <velmocore/markup/LinkThumbnails.h>
#include <velmocore/markup/Links.h>
#include <velmocore/markup/MarkupCharset.h>
#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/markup/MetadataWriting.h>
#include <velmocore/markup/Page.h>
#include <velmocore/markup/PageMetadata.h>
#include <velmocore/markup/PageResources.h>
#include <velmocore/markup/PlainText.h>
#include <velmocore/markup/TagAttributes.h>
#include <velmocore/markup/TagPredicates.h>
#include <velmocore/markup/TagScanner.h>
#include <velmocore/markup/TagStripping.h>

#include "Growth.h"

namespace velmo::growth {

namespace {

void readTag(std::u16string_view tag) {
    for (const char* name : {"HREF", "CONTENT", "ZZ"}) {
        use(attributeOfTagCharacters(tag, name));
        use(rangeOfAttributeOfTagCharacters(tag, name));
    }
    use(contentAttributeOfTagCharacters(tag));
    use(attributeOfTagWithName(tag, u"zz"));
    use(attributeOfStyleWithName(tag, u"width"));
    use(backgroundStyleURLOfTagCharacters(tag));
    use(getTagWidth(tag));
}

constexpr Operation Rows[] = {
    {"scanning",
     [](const Input& in) {
         use(GetTagsOfString(in.text, [](const Tag& tag) { return tag.isNamed("ZZ"); }));
         use(parseXmlWithHandler(in.text, [](const Tag& tag) { return tag.isNamed("ZZ"); }));
     }},
    {"a page of today",
     [](const Input& in) {
         const WebRules today = WebRules::today();
         const URL url = URL::URLWithString(u"http://h.org/a/");
         const auto readAttribute = [](const Tag& tag) {
             use(attributeOfTagCharacters(tag.whole(), "ZZ", tag.web));
             return false;
         };
         use(GetTagsOfString(in.text, readAttribute, today));
         const Page page = Page::pageWithString(in.text, url, today);
         use(page.plainText());
         use(page.links());
         use(page.linkThumbnails());
         use(page.metadata());
         use(stripAttributesOfTag(in.text, "A", today));
         use(resolveLinksUsingBaseURL(in.text, url, today));
         use(stringBySettingBaseURL(in.text, u"http://h.org/", today));
     }},
    {"attributes of each tag",
     [](const Input& in) {
         use(GetTagsOfString(in.text, [](const Tag& tag) {
             readTag(tag.whole());
             return false;
         }));
     }},
    {"the text as a tag",
     [](const Input& in) {
         readTag(in.text);
         useEach<bool, std::u16string_view>(in.text, {isHTML});
     }},
    {"the text as a header",
     [](const Input& in) {
         use(headerFieldNamed(in.text, u"zz"));
         use(HTTPHeaderFieldNamed(in.text, u"zz"));
         use(headerCharset(in.text));
         use(headerRefresh(in.text));
         use(refreshInterval(in.text));
         use(headerEncoding(in.text));
         use(charset2CFStringEncoding(in.text));
     }},
    {"repaired XML", [](const Input& in) { use(fixedXml(in.text)); }},
    {"entities away",
     [](const Input& in) {
         use(stringByConvertingEntitiesToCharacters(in.text));
         use(stringByConvertingEntitiesToCharacters(
             in.text, {.convertStandard = false, .onlyNumericEntities = true}));
         use(stringByConvertingStandardEntitiesToCharacters(in.text));
     }},
    {"entities added",
     [](const Input& in) {
         use(stringByConvertingCharactersToEntities(in.text));
         use(stringByConvertingHighCharactersToEntities(in.text));
         use(stringByConvertingCharactersToStandardEntities(in.text));
     }},
    {"JSON escapes",
     [](const Input& in) {
         for (const bool isJavaScript : {false, true})
             use(stringByConvertingJSONToCharacters(in.text, isJavaScript));
         use(stringByConvertingCharactersToJSON(in.text));
     }},
    {"charset of a page",
     [](const Input& in) {
         use(markupCharset(in.text));
         use(markupEncoding(in.text));
         use(defaultURLEncoding(in.text));
     }},
    {"bytes of a page", [](const Input& in) { use(markupData(in.text)); }},
    {"decoding a page",
     [](const Input& in) {
         use(decodeMarkup(in.utf8));
         use(decodeMarkup(in.utf8, {.encodingName = u"shift_jis"}));
         use(decodeMarkup(in.utf8, {.contentType = u"text/html; charset=iso-2022-jp"}));
         use(stringWithKoi8cs2Data(in.utf8));
     }},
    {"plain text",
     [](const Input& in) {
         use(stringByConvertingHtml2PlainText(in.text));
         use(stringByConvertingHtml2PlainText(in.text, {.entities = false, .nonUmlauted = true}));
     }},
    {"plain text of the body",
     [](const Input& in) {
         use(stringByConvertingHtml2PlainText(
             in.text, {.onlyBody = true, .removeJunk = true, .googleTags = true}));
     }},
    {"reformatted plain text",
     [](const Input& in) {
         use(stringByConvertingHtml2ReformattedPlainText(in.text));
         use(stringByConvertingHtml2SimplifiedPlainText(in.text));
     }},
    {"a page in its bytes",
     [](const Input& in) {
         const URL url = URL::URLWithString(u"http://h.org/a/");
         use(htmlLinks(Bytes(in.utf8)));
         use(plainTextOfHtml(Bytes(in.utf8)).text);
         use(getLinkThumbnails(Bytes(in.utf8), {.baseURL = url}));
         const Page page(Bytes(in.utf8), {.url = url, .web = WebRules::today()});
         use(page.plainText());
         use(page.links());
         use(page.stylesheetsAndScripts());
     }},
    {"links",
     [](const Input& in) {
         use(htmlLinks(in.text));
         use(htmlLinks(in.text, {.useRelNoFollow = true, .filter = true}));
         use(htmlLinksContaining(in.text, u"zz", false));
     }},
    {"thumbnails of links",
     [](const Input& in) {
         const URL base = URL::URLWithString(u"http://h.org/a/");
         use(getLinkThumbnails(in.text, {.baseURL = base}));
         use(getLinkThumbnails(in.text, {.baseURL = base, .resolve = true, .googleTags = true}));
         use(stringByExtractingJavaScriptURL(in.text));
     }},
    {"frames and robots", [](const Input& in) { use(htmlLinksAndFramesSet(in.text)); }},
    {"resources",
     [](const Input& in) {
         for (const auto operation : {htmlImages, htmlStylesheetsAndScripts, htmlEmbeddedObjects})
             use(operation(in.text, {}));
         use(htmlFavIcon(in.text));
     }},
    {"references",
     [](const Input& in) {
         for (const bool decode : {false, true}) use(normalizedStringURL(in.text, decode));
         use(normalizedRelLink(in.text));
         use(normalizedHtmlString(in.text));
         use(revisitAfter(in.text));
         use(getLinkAttribute(in.text));
     }},
    {"error pages",
     [](const Input& in) {
         use(isErrorPageTitle(in.text, in.text, in.text));
         use(isErrorPageTitle({}, in.text, u"http://h.org/404.html"));
         use(exceededPageLoadFrequencyTitle({}, in.text));
     }},
    {"metadata",
     [](const Input& in) {
         use(htmlMetadata(in.text, {.summary = true}));
         use(htmlTitle(in.text));
         use(htmlMetaKeywords(in.text));
         use(isDateAttribute(in.text));
     }},
    {"writing of metadata",
     [](const Input& in) {
         use(stringBySettingBaseURL(in.text, u"http://h.org/"));
         use(stringByAddingBaseURL(in.text, in.text));
         use(stringByStrippingMetaAttributeWithName(in.text, u"robots"));
         use(formattedNote(in.text));
     }},
    {"stripping of tags",
     [](const Input& in) {
         const String tags[] = {u"<p", u"<div", u"<a", in.almost};
         use(stripTags(in.text));
         use(stripTag(in.text, "A"));
         use(stripAttributesOfTag(in.text, "A"));
         use(stripTagBodies(in.text, tags));
         use(stripTagBodiesExcept(in.text, tags));
         use(innerTagBody(in.text, "DIV"));
         use(outerTagBody(in.text, "A"));
     }},
    {"stripping of junk",
     [](const Input& in) {
         use(stripObjectsAndReplaceImages(in.text, true));
         use(stripLinks(in.text));
         use(stripFileLinks(in.text));
     }},
    {"rewriting of links",
     [](const Input& in) {
         const URL base = URL::URLWithString(u"http://h.org/a/b");
         use(resolveLinksUsingBaseURL(in.text, base));
         use(flattenLinksUsingBaseURL(in.text, base, u"x"));
     }},
    {"a page at once",
     [](const Input& in) {
         const Page page = Page::pageWithString(in.text, URL::URLWithString(u"http://h.org/a/"));
         use(page.title());
         use(page.plainText());
         use(page.links());
         use(page.frames());
         use(page.images());
         use(page.stylesheetsAndScripts());
         use(page.embeddedObjects());
         use(page.favIcon());
         use(page.metadata());
         use(page.summary());
         use(page.canonicalURL());
         use(page.linkThumbnails());
         use(page.isErrorPage());
     }},
    {"kinds of markup files",
     [](const Input& in) {
         useEach<bool, std::u16string_view>(in.text, {isHTMLFile, isXMLFile, isMarkupFile});
     }},
};

}  // namespace

std::span<const Operation> markupOperations() { return Rows; }

}  // namespace velmo::growth
