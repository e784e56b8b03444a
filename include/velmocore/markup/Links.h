#pragma once

#include <string_view>
#include <vector>

#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/FunctionRef.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/WebRules.h>
#include <velmocore/url/URL.h>

namespace velmo {

/// The links of a page.
struct HtmlLinks {
    /// In page order, each once, as normalizedStringURL() makes them; not resolved.
    std::vector<String> links;
    /// What the last base tag that names a base says; absent if there is none.
    URL baseURL;
};

/// Which links of a page are given, and how they are read.
struct LinkOptions {
    /// Only links whose text contains this, in exact case. Empty means all links.
    std::u16string_view containing = {};
    /// Leaves out links whose rel says "nofollow".
    bool useRelNoFollow = false;
    /// Leaves out what filterLink() does not find worth following.
    bool filter = false;
    WebRules web = {};  ///< how tags, references and links that end with escapes are read
    URL url = {};       ///< where the page comes from, for WebRules::relativeBase
    /// Is asked for each link, with its raw reference and its text without tags; true keeps
    /// the link.
    FunctionRef<bool(std::u16string_view link, std::u16string_view text)> handler = nullptr;
};

/// The references of the a and area tags of a page. If the text of links is asked for, only a
/// tags that are closed count.
///
///     const HtmlLinks found = htmlLinks(u"<base href='http://h.org/'><a href=' a.html'>A</a>");
///     URL::URLWithString(found.links[0], found.baseURL);   // http://h.org/a.html
///
/// An empty or absent page has no links. Time is linear in the page. Any thread.
[[nodiscard]] VELMO_API HtmlLinks htmlLinks(std::u16string_view page,
                                            const LinkOptions& options = {});

/// The same of the bytes of a page, decoded as decodeMarkup() has it, by the rules of the options. Of
/// a page in UTF-8, which most are, only the links are decoded: that is much faster.
///
///     const std::string page = "<a href=caf\xC3\xA9.html>";
///     htmlLinks(Bytes(page)).links[0];    // caf\u00E9.html
[[nodiscard]] VELMO_API HtmlLinks htmlLinks(Bytes page, const LinkOptions& options = {},
                                            MarkupDecodingOptions decoding = {});

/// The same without options, or with two of them.
[[nodiscard]] inline HtmlLinks htmlLinksBaseURL(std::u16string_view page) {
    return htmlLinks(page);
}
[[nodiscard]] inline HtmlLinks htmlLinksContaining(std::u16string_view page,
                                                   std::u16string_view text, bool useRelNoFollow) {
    return htmlLinks(page, {.containing = text, .useRelNoFollow = useRelNoFollow});
}

// These filter nothing, whatever their names say: they give what the forms above give. To
// filter, set the option.

[[nodiscard]] inline HtmlLinks filteredHtmlLinksBaseURL(std::u16string_view page) {
    return htmlLinks(page);
}
[[nodiscard]] inline HtmlLinks filteredHtmlLinksContaining(std::u16string_view page,
                                                           std::u16string_view text,
                                                           bool useRelNoFollow) {
    return htmlLinksContaining(page, text, useRelNoFollow);
}

}  // namespace velmo
