#pragma once

#include <map>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/WebRules.h>
#include <velmocore/url/URL.h>

namespace velmo {

// What the head of a page says of the page. All but one of these look no further than the body tag,
// so that of a large page little is read. Values are as they stand, their entities not decoded;
// what is not there is absent. Names and keywords are compared in any case.
//
// A value that several meta tags give is all of their contents with spaces between. Time is linear
// in what is read; nothing fails. Any thread. The rules of today, where they are on, count for
// tags, attributes, bases, and for references in what is made for people.
//
//     htmlTitle(u"<title>a &amp; b</title>");                                // a &amp; b
//     htmlMetaKeywords(u"<meta name=keywords content=a><meta name=dc.keywords content=b>");    // a b

/// The text in front of the first tag that closes a title; empty if there is none.
[[nodiscard]] VELMO_API String htmlTitle(std::u16string_view page, const WebRules& web);
/// The same through normalizedHtmlString().
[[nodiscard]] VELMO_API String normalizedHtmlTitle(std::u16string_view page, const WebRules& web);

/// The contents of the meta tags with that NAME. Absent for an empty or absent name.
[[nodiscard]] VELMO_API String htmlMetaAttributeWithName(std::u16string_view page,
                                                         std::u16string_view name,
                                                         const WebRules& web = {});
/// The same for HTTP-EQUIV.
[[nodiscard]] VELMO_API String htmlMetaHTTPEquiv(std::u16string_view page, std::u16string_view name,
                                                 const WebRules& web = {});

/// HTTP-EQUIV "refresh"; see headerRefresh().
[[nodiscard]] VELMO_API String htmlMetaRefresh(std::u16string_view page, const WebRules& web);
/// "title", "dc.title" and "og:title".
[[nodiscard]] VELMO_API String htmlMetaTitle(std::u16string_view page, const WebRules& web);
/// "IndexTitle".
[[nodiscard]] VELMO_API String htmlMetaIndexTitle(std::u16string_view page, const WebRules& web);
/// "keywords" and "dc.keywords".
[[nodiscard]] VELMO_API String htmlMetaKeywords(std::u16string_view page, const WebRules& web);
/// "description", "dc.description" and "og:description".
[[nodiscard]] VELMO_API String htmlMetaDescription(std::u16string_view page, const WebRules& web);
/// "date" and "dc.date"; mind htmlDate().
[[nodiscard]] VELMO_API String htmlMetaDate(std::u16string_view page, const WebRules& web);
/// "author" and "dc.author".
[[nodiscard]] VELMO_API String htmlMetaAuthor(std::u16string_view page, const WebRules& web);
/// "copyright" and "dc.rights".
[[nodiscard]] VELMO_API String htmlMetaCopyright(std::u16string_view page, const WebRules& web);

/// Values by the names of meta tags, their NAME or else their PROPERTY, in lower case.
using MetaAttributes = std::map<String, String>;

/// Of all meta tags in front of the body.
[[nodiscard]] VELMO_API MetaAttributes htmlMetaAttributes(std::u16string_view page,
                                                          const WebRules& web = {});
/// The same for people: entities are decoded, what is markup then becomes plain text, and runs of
/// white space become one space.
[[nodiscard]] VELMO_API MetaAttributes htmlMetaAttributesByConvertingEntitiesToCharacters(
    std::u16string_view page, const WebRules& web = {});

/// The content of the first meta tag that gives a date and is not empty, by its name or as
/// HTTP-EQUIV "last-modified". It is in no certain form.
[[nodiscard]] VELMO_API String htmlDate(std::u16string_view page, const WebRules& web);
/// Whether a meta tag of that name gives a date, as "dc.date.issued" and "article:pubDate".
[[nodiscard]] VELMO_API bool isDateAttribute(std::u16string_view name);

/// The reference of the first canonical link that is not only an anchor, as
/// normalizedStringURL() makes it; not resolved.
[[nodiscard]] VELMO_API String htmlCanonicalURL(std::u16string_view page, const WebRules& web);
/// What the first base tag with an HREF says; absent if that is no URL of the web. Mind that
/// htmlLinks() goes by the last one.
/// @param url  where the page comes from, for WebRules::relativeBase
[[nodiscard]] VELMO_API URL htmlBaseURL(std::u16string_view page, const WebRules& web = {},
                                        const URL& url = {});

// The same by the library's own rules.

[[nodiscard]] inline String htmlTitle(std::u16string_view page) {
    return htmlTitle(page, WebRules());
}
[[nodiscard]] inline String normalizedHtmlTitle(std::u16string_view page) {
    return normalizedHtmlTitle(page, WebRules());
}
[[nodiscard]] inline String htmlMetaRefresh(std::u16string_view page) {
    return htmlMetaRefresh(page, WebRules());
}
[[nodiscard]] inline String htmlMetaTitle(std::u16string_view page) {
    return htmlMetaTitle(page, WebRules());
}
[[nodiscard]] inline String htmlMetaIndexTitle(std::u16string_view page) {
    return htmlMetaIndexTitle(page, WebRules());
}
[[nodiscard]] inline String htmlMetaKeywords(std::u16string_view page) {
    return htmlMetaKeywords(page, WebRules());
}
[[nodiscard]] inline String htmlMetaDescription(std::u16string_view page) {
    return htmlMetaDescription(page, WebRules());
}
[[nodiscard]] inline String htmlMetaDate(std::u16string_view page) {
    return htmlMetaDate(page, WebRules());
}
[[nodiscard]] inline String htmlMetaAuthor(std::u16string_view page) {
    return htmlMetaAuthor(page, WebRules());
}
[[nodiscard]] inline String htmlMetaCopyright(std::u16string_view page) {
    return htmlMetaCopyright(page, WebRules());
}
[[nodiscard]] inline String htmlDate(std::u16string_view page) {
    return htmlDate(page, WebRules());
}
[[nodiscard]] inline String htmlCanonicalURL(std::u16string_view page) {
    return htmlCanonicalURL(page, WebRules());
}

/// Keywords, description and title as search machines take them: those of Dublin Core, and for
/// the last two of Open Graph, come before the plain names. Of titles, index titles and dates the
/// first one counts.
struct HtmlMetaSummary {
    String keywords, description;  ///< absent, as all of these, if the page does not tell
    String title;                  ///< of the title tag too
    String indexTitle;             ///< htmlMetaIndexTitle()
    String date;                   ///< as htmlDate()
};
/// Reads all of the page, as many have meta tags in their body.
///
///     htmlMetaKeywordsDescriptionTitleDate(u"<title>a</title><meta name=dc.title content=b>")
///         .title;   // b
[[nodiscard]] VELMO_API HtmlMetaSummary
htmlMetaKeywordsDescriptionTitleDate(std::u16string_view page, const WebRules& web = {});

/// All of the above, each as its own operation gives it. This is ours.
struct HtmlMetadata {
    // By the names of the operations.
    String title = String::empty(), normalizedTitle = String::empty();
    String metaTitle, indexTitle, keywords, description, metaDate, author, copyright, refresh;
    String date;                   ///< htmlDate()
    String canonical;              ///< htmlCanonicalURL()
    URL base;                      ///< htmlBaseURL()
    bool isFormattedNote = false;  ///< see markup/EditableNotes.h
    MetaAttributes attributes, convertedAttributes;
    HtmlMetaSummary summary;
};

/// What is read of a page, and how.
struct HtmlMetadataOptions {
    bool convertedAttributes = true;  ///< these too
    bool summary = false;             ///< for which all of the page is read
    URL url = {};                     ///< where the page comes from, for WebRules::relativeBase
    WebRules web = {};                ///< as told above
};

/// Reads a page once for all that it says of itself.
///
///     const HtmlMetadata metadata = htmlMetadata(u"<meta name=author content='A. B.'>");
///     metadata.author;       // A. B.
///     metadata.copyright;    // absent
[[nodiscard]] VELMO_API HtmlMetadata htmlMetadata(std::u16string_view page,
                                                  const HtmlMetadataOptions& options = {});

}  // namespace velmo
