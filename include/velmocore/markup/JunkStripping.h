#pragma once

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/WebRules.h>

namespace velmo {

// What is taken out of a page before it is kept. All else stays unit for unit; the page itself
// comes back if there is nothing to take out, as does an empty or absent one. Time is linear in
// the page; nothing fails. Any thread. The rules of today, where they are on, count for tags and
// attributes.
//
//     stripObjectsAndReplaceImages(u"a<script>b</script> <img alt=c>", true);    // "a c\n"
//     stripLinks(u"a <a href=x>b</a>c");                                         // a c

/// The page without active content: comments, scripts, link and frame tags, and the tags object,
/// param, applet, embed, iframe, audio, video, canvas and noscript, with the text that stands
/// between an opening one of these and the next closing one of the same name. Other tags between
/// them stay. A param tag hides text like the others, though it is seldom closed.
/// @param replaceImages  each image becomes a line with its ALT, else its TITLE, or goes
[[nodiscard]] VELMO_API String stripObjectsAndReplaceImages(const String& page, bool replaceImages,
                                                            const WebRules& web = {});

/// The page without its a and link tags; what stands between an opening a and the next a tag goes
/// as well, but for other tags.
[[nodiscard]] VELMO_API String stripLinks(const String& page, const WebRules& web = {});

/// The page without its links to files, which all without a scheme are taken for. Mind that text
/// is left out from such a link to the next one of another scheme, and not only to its end.
[[nodiscard]] VELMO_API String stripFileLinks(const String& page, const WebRules& web = {});

}  // namespace velmo
