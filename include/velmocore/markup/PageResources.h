#pragma once

#include <set>
#include <string_view>

#include <velmocore/markup/TagScanner.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/url/URL.h>

namespace velmo {

// What a page points at and is made of. References are normalised but not resolved. The rules of
// today, where they are on, count for tags, attributes, references and bases. An empty or absent
// page has none. Any thread.
//
//     *htmlImages(u"<img src='a.png'><img src=' a.png'>").begin();    // a.png

/// What one pass over a page tells.
struct HtmlReferences {
    std::set<String> references;  ///< what was asked for, each once, in the order of units
    /// What the last base tag that names a base says; absent if there is none.
    URL baseURL;
    String favIcon;  ///< of the last shortcut icon
    String title;    ///< of the last title tag, not decoded
    String refresh;  ///< content of the last refresh tag
    String revisit;  ///< content of the last revisit-after tag; see revisitAfter()
    /// Contents of all robots tags, with commas between them.
    String robots = String::empty();
    /// Whether the page is a feed: the root of one came before any html, head or body.
    bool isFeed = false;
    /// Never set; kept for callers that ask.
    bool isFrameSet = false;
};

/// How a page is read for its references.
struct ReferenceOptions {
    URL url = {};       ///< where the page comes from, for WebRules::relativeBase
    WebRules web = {};  ///< as told above
};
/// The sources of frame and iframe tags, and the rest of HtmlReferences.
[[nodiscard]] VELMO_API HtmlReferences htmlFramesSet(std::u16string_view page,
                                                     const ReferenceOptions& options = {});
[[nodiscard]] inline HtmlReferences htmlFramesBaseURL(std::u16string_view page) {
    return htmlFramesSet(page);
}
/// These and the references of a and area tags.
[[nodiscard]] VELMO_API HtmlReferences htmlLinksAndFramesSet(std::u16string_view page,
                                                             const ReferenceOptions& options = {});
[[nodiscard]] inline HtmlReferences htmlLinksAndFramesBaseURL(std::u16string_view page) {
    return htmlLinksAndFramesSet(page);
}

/// Images, the background of the body, and icons.
[[nodiscard]] VELMO_API std::set<String> htmlImages(std::u16string_view page,
                                                    const WebRules& web = {});
/// Sources of scripts, linked sheets, and the first import of each script or style element
/// without a source. The SRC of a script is read from its opening tag only: the element comes
/// with its body, and what a program says there of sources is no attribute.
[[nodiscard]] VELMO_API std::set<String> htmlStylesheetsAndScripts(std::u16string_view page,
                                                                   const WebRules& web = {});
/// Objects, embedded content, audio, video, their sources and tracks.
[[nodiscard]] VELMO_API std::set<String> htmlEmbeddedObjects(std::u16string_view page,
                                                             const WebRules& web = {});

/// The reference of the first shortcut icon, from the root of the site; absent if there is
/// none. A plain icon does not count.
[[nodiscard]] VELMO_API String htmlFavIcon(std::u16string_view page, const WebRules& web = {});
/// The same of one tag of a scan.
[[nodiscard]] VELMO_API String getFavIcon(const Tag& tag);

/// The attribute that holds the reference of a tag of that name: "HREF", "SRC" or "DATA";
/// empty if it has none. Names are compared in any case.
[[nodiscard]] VELMO_API std::string_view getLinkAttribute(std::u16string_view name);

}  // namespace velmo
