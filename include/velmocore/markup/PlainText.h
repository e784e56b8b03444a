#pragma once

#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/WebRules.h>

namespace velmo {

/// How a page becomes plain text.
struct PlainTextOptions {
    bool entities = true;      ///< decode all entities in the text
    bool stdEntities = true;   ///< decode &lt; &gt; &amp; &quot; and their like
    bool nonUmlauted = false;  ///< take the diacritics away
    bool reformat = false;     ///< join soft-wrapped lines of preformatted text
    bool onlyBody = false;     ///< leave out what stands outside the body, if there is one
    bool removeJunk = false;   ///< drop titles, hidden text and runs that no one would read
    bool googleTags = false;   ///< honour the comments "googleoff:" and "googleon:"
    bool imageAlts = true;     ///< take the "alt" or "title" of images along
    bool noScripts = false;    ///< take what stands there for programs without scripts
    bool textareas = false;    ///< take the contents of text areas
    bool rubyText = true;      ///< take how characters are read, which stands beside them
    bool tabs = false;         ///< write a tab between the cells of a table, not a space
    WebRules web = {};         ///< how tags and references are read, and what is text
};

// The text of a page, for indexing, word counts and previews. Tags become line breaks,
// paragraph breaks (two LF), spaces or nothing; hidden elements, scripts, forms' contents
// and the alternatives of frames are left out.
//
// An empty or absent page comes back as it is; any other gives a new string.
// Time is linear in the page; no operation fails. Any thread.
//
//     stringByConvertingHtml2PlainText(u"<p>a &amp; b</p><p>c");   // "a & b\n\nc"
//     stringByConvertingHtml2PlainText(u"x<body>a</body>y", {.onlyBody = true});    // a

[[nodiscard]] VELMO_API String stringByConvertingHtml2PlainText(const String& page,
                                                                PlainTextOptions options = {});

/// The same with what is known of it.
struct HtmlPlainText {
    String text;                 ///< as told above
    bool didRemoveJunk = false;  ///< whether junk was met and, with removeJunk, dropped
};
/// Both from one scan.
[[nodiscard]] VELMO_API HtmlPlainText plainTextOfHtml(const String& page,
                                                      PlainTextOptions options = {});

/// The same of the bytes of a page, decoded as decodeMarkup() has it, by the rules of the options. A
/// page in UTF-8, which most are, is never decoded as a whole: that takes less time, and less than
/// half the memory.
///
///     const std::string page = "<p>caf\xC3\xA9 &amp; more";
///     plainTextOfHtml(Bytes(page)).text;    // caf\u00E9 & more
[[nodiscard]] VELMO_API HtmlPlainText plainTextOfHtml(Bytes page,
                                                      const PlainTextOptions& options = {},
                                                      MarkupDecodingOptions decoding = {});

// The same under the names that tell the first of the options.

[[nodiscard]] inline String stringByConvertingHtml2PlainTextNonUmlauted(
    const String& page, bool nonUmlauted, PlainTextOptions options = {}) {
    options.nonUmlauted = nonUmlauted;
    return stringByConvertingHtml2PlainText(page, options);
}
[[nodiscard]] inline String stringByConvertingHtml2PlainTextEntities(
    const String& page, bool entities, PlainTextOptions options = {}) {
    options.entities = entities;
    return stringByConvertingHtml2PlainText(page, options);
}

/// With reformat.
[[nodiscard]] VELMO_API String stringByConvertingHtml2ReformattedPlainText(const String& page);

/// The bare text of the body, each span after a space, without any structure.
[[nodiscard]] VELMO_API String stringByConvertingHtml2SimplifiedPlainText(const String& page,
                                                                          const WebRules& web = {});

}  // namespace velmo
