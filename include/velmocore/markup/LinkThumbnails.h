#pragma once

#include <functional>
#include <map>
#include <string_view>

#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/WebRules.h>
#include <velmocore/url/URL.h>

namespace velmo {

/// What is looked for, and how. What is not asked for stays empty; the rest is the same.
struct LinkThumbnailOptions {
    /// What references are relative to. Without it there are no thumbnails, and with resolve
    /// no links.
    URL baseURL = {};
    /// Links become whole URLs, and are taken out of what search engines wrap around them; see
    /// resolveStringURL(). With WebRules::resolution they are resolved and no more. On pages of
    /// Google, Yahoo Search and LexisWeb the links to the engine's own copies, translations and
    /// similar pages are left out.
    bool resolve = false;
    /// Honours the comments "googleoff:" and "googleon:". Where "index" is off, nothing is taken;
    /// where "anchor" is off, links have no titles and texts.
    bool googleTags = false;
    // Which of the three are asked for.
    bool thumbnails = true;
    bool titles = true;
    bool texts = true;
    WebRules web = {};  ///< how tags, attributes, references and texts are read
};

/// What was found for the links of a page. A key is a link as normalizedStringURL() makes it, or,
/// with resolve, the whole URL. A link of which nothing was found is no key.
struct LinkThumbnails {
    /// What was found, by links.
    using Strings = std::map<String, String, std::less<>>;

    Strings thumbnails;  ///< the whole URL of an image
    Strings titles;      ///< on one line
    Strings texts;       ///< on one line or several
};

/// For each link of a page a thumbnail, a title and a text, so that a list of links can be shown
/// with pictures. Buttons, spacers and trackers are known by their names and are no thumbnails.
///
///     const LinkThumbnails found = getLinkThumbnails(
///         u"<td><img src=fox.jpg> A fox: <a href='fox.html' title='Foxes'>more</a></td>",
///         {.baseURL = URL::URLWithString(u"http://h.org/a/")});
///     found.thumbnails.at(u"fox.html");    // http://h.org/a/fox.jpg
///     found.titles.at(u"fox.html");        // Foxes
///     found.texts.at(u"fox.html");         // more
///
/// Links are a and area tags with an href; of a link that runs a script to show an image, that
/// image's URL is the link. Images are the sources of img tags, the posters (else the sources) of
/// video tags, the background attributes of table, tr, td and th tags, and the background that
/// the style of a div names and that does not repeat.
///
/// Which image belongs to which link:
///   1. A link is open until the next opening or closing a tag, whatever stands between. That
///      of an area tag closes at once.
///   2. An image inside an open link belongs to that link.
///   3. A cell is what td, th and li tags open, and outside of these a figure. It ends at the next
///      td, th, tr, li, table, ul or ol tag, opening or closing; a figure also at the next figure
///      tag. Cells do not nest. The link that was closed last in a cell is held until the cell ends.
///   4. An image in a cell that is in no open link belongs to the link held, if that has no
///      thumbnail. Otherwise it waits: it belongs to the next link of the cell, if that has got no
///      thumbnail from within when it closes. Of several that wait, the last one does.
///   5. An image that belongs to a link also belongs to a link held, if that has no thumbnail. If
///      the one it has is no JPEG by its name, and the first link leads to a JPEG, the image takes
///      its place, and the title that the link held had goes.
///   6. Otherwise the first thumbnail of a link stays. All others belong to no link.
///
/// The title of a link is what its title and alt attributes say; if it has none, what those of its
/// thumbnail say. Its text is the plain text of what stands between its a tag and the closing one.
/// Where the same link comes again, a title or text with as many words or more takes the place of
/// the former one. A title or text without a word, that is the link itself, or that begins as
/// an address of the web, is none.
///
/// An empty page has no links. Time is linear in the page and in what is found. Any thread.
[[nodiscard]] VELMO_API LinkThumbnails getLinkThumbnails(std::u16string_view page,
                                                         const LinkThumbnailOptions& options = {});

/// The same of the bytes of a page, decoded as decodeMarkup() has it, by the rules of the options.
/// One in UTF-8 is never decoded as a whole.
[[nodiscard]] VELMO_API LinkThumbnails getLinkThumbnails(Bytes page,
                                                         const LinkThumbnailOptions& options,
                                                         MarkupDecodingOptions decoding = {});

/// The URL inside a link that runs a script to show an image; absent if it is none, and if no
/// single quote ends it.
///
///     stringByExtractingJavaScriptURL(u"javascript:open('a.jpg',1)");    // a.jpg
[[nodiscard]] VELMO_API String stringByExtractingJavaScriptURL(std::u16string_view link);

}  // namespace velmo
