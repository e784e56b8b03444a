#pragma once

namespace velmo {

/// How pages are read. What is off here reads them by the rules of this library, which were made
/// for the web of their day; what is on, as browsers of today do. The rules are ours, and off where
/// nothing else is said. A plain value for the options of an operation; nothing is global, so that
/// threads may read by different rules.
///
///     const std::string bytes = "<meta charset=latin1>caf\xE9 \x80";
///     decodeMarkup(bytes, {.web = WebRules::today()}).text.view().substr(21);   // caf\u00E9 \u20AC
struct WebRules {
    /// Names of charsets mean what the encoding standard says, so that Latin 1 is Windows-1252; a
    /// byte-order mark counts before all, then the header, then the head of the page as browsers
    /// look through it; and a page that names none is in UTF-8 if its bytes are, else in
    /// Windows-1252. See markup/WebCharsets.h.
    bool charsets = false;
    /// Character references are those of the HTML standard: all 2,231 names, 106 of them without a
    /// semicolon too, the numbers 128 to 159 as Windows-1252, and no name without a semicolon in an
    /// attribute where a letter, a digit or = follows.
    ///
    ///     stringByConvertingEntitiesToCharacters(u"&lang;&#150;&notit;", {.web = WebRules::today()});  // "\u27E8\u2013\u00ACit;"
    bool references = false;
    /// An escape at the end of a link stays: it is part of what was linked to. Else those of white
    /// space, quotes, > \ and ] are cut as left-overs.
    ///
    ///     htmlLinks(u"<a href='/?q=a%20'>", {.web = WebRules::today()}).links[0];   // "/?q=a%20"
    bool linkEscapes = false;
    /// What stands in a template element is no text of the page.
    ///
    ///     stringByConvertingHtml2PlainText(u"a<template>b</template>", {.web = WebRules::today()});  // "a"
    bool templates = false;
    /// Soft hyphens are no part of plain text, so that words are found in it.
    ///
    ///     stringByConvertingHtml2PlainText(u"<p>Zu&shy;cker", {.web = WebRules::today()});  // "Zucker"
    bool softHyphens = false;
    /// Attributes are those of the HTML standard: a quote mark opens a value right behind its =,
    /// and only there; a quoted value may hold a >; of two attributes of one name the first counts.
    ///
    ///     *htmlImages(u"<img alt=a@b.org' src=c.png>", WebRules::today()).begin();   // c.png
    bool attributes = false;
    /// A tag begins where a letter, /, ! or ? follows the <, which is text elsewhere, and a closing
    /// one where a letter does. A tag in which the page ends is no text.
    ///
    ///     stringByConvertingHtml2PlainText(u"1 < 2 <b>x</b> <a", {.web = WebRules::today()});  // "1 < 2 x"
    bool tagBounds = false;
    /// What begins with <! or <? ends at the next >, but for comments, which end at --> or --!>,
    /// and for CDATA sections where they mean something: in images, formulas and feeds.
    ///
    ///     stringByConvertingHtml2PlainText(u"a<![endif>b<!-c>d", {.web = WebRules::today()});  // "abd"
    bool comments = false;
    /// What stands in script, style, title, textarea, xmp, iframe, noembed and noframes elements
    /// holds no tags, and they end at their own closing tag only, or at the end of the page.
    ///
    ///     htmlTitle(u"<title>The <b> tag</title>", WebRules::today());   // "The <b> tag"
    bool rawText = false;
    /// The / of <script/> closes nothing; it does in images, formulas and feeds.
    ///
    ///     stringByConvertingHtml2PlainText(u"a<script/>b</script>c", {.web = WebRules::today()});  // "ac"
    bool selfClosing = false;
    /// A base tag, and the xml:base of a feed, may be relative to the page; of several base tags
    /// the first one counts. References of feeds need not begin with / to be relative to it.
    ///
    ///     const URL page = URL::URLWithString(u"http://h.org/a/b");
    ///     htmlBaseURL(u"<base href='c/'>", WebRules::today(), page);   // http://h.org/a/c/
    bool relativeBase = false;
    /// The reference of a link tag is relative to the page, as all are, and not to the root of its
    /// site; rel=icon names an icon of the site too.
    ///
    ///     htmlFavIcon(u"<link rel=icon href=a.ico>", WebRules::today());   // a.ico
    bool linkTags = false;
    /// The display and visibility that its style names hide an element of a page, and nothing else
    /// does: no other value in its style, its class, its size or its place. Text that scrolls is
    /// text.
    ///
    ///     const String page = u"<div style='display:block; border:none'>a<marquee>b";
    ///     stringByConvertingHtml2PlainText(page, {.web = WebRules::today()});   // ab
    bool hiddenElements = false;
    /// Links are resolved as the URL standard says: \ is a slash, tabs and line ends are left out,
    /// hosts are in their ASCII form, and nothing else is put right. See url/RelativeURLs.h.
    ///
    ///     const URL page = URL::URLWithString(u"https://h.org/a/b");
    ///     URLRelativeTo(page, u"\\\\B\u00FCcher.example\\c d", {.web = WebRules::today()});   // https://xn--bcher-kva.example/c%20d
    bool resolution = false;

    /// All of them.
    [[nodiscard]] static constexpr WebRules today() noexcept {
        return {.charsets = true,
                .references = true,
                .linkEscapes = true,
                .templates = true,
                .softHyphens = true,
                .attributes = true,
                .tagBounds = true,
                .comments = true,
                .rawText = true,
                .selfClosing = true,
                .relativeBase = true,
                .linkTags = true,
                .hiddenElements = true,
                .resolution = true};
    }
};

}  // namespace velmo
