#pragma once

#include <map>
#include <span>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/WebRules.h>

namespace velmo {

// Tags cut out of a text, or the bodies of elements, which is what stands between an opening tag
// and the closing one that belongs to it. What is kept stays unit for unit; entities are not
// decoded. A script or style element is one tag, its body included.
//
// Names are ASCII, and given in capitals; tags are compared with them in any case. An absent
// string stays absent. Time is linear in the text; nothing fails. Any thread. The rules of today,
// where they are on, count for tags and attributes; a tag that ends in "/>" then closes itself only
// if its element never has contents.
//
//     stripTags(u"<b>a</b>c");                               // " a c"
//     stripTag(u"a <span>b</span>", "SPAN");                 // a b
//     stripAttributesOfTag(u"<a href=x class=y>", "A");      // <A HREF="x">
//     innerTagBody(u"<p>a <b>b<i>c</i></b>", "B");           // b<i>c</i>

/// The text without any tag, comment or declaration. A space stands in front of each stretch of
/// text, the first one too, unless there is white space already.
[[nodiscard]] VELMO_API String stripTags(const String& text, const WebRules& web = {});

/// The text without the tags of one name, opening and closing ones; what stands between them
/// stays. The string itself for an empty name and if there is no such tag.
[[nodiscard]] VELMO_API String stripTag(const String& text, std::string_view name,
                                        const WebRules& web = {});

/// The text with the tags of one name bare: an opening one keeps its HREF, else its SRC, and is
/// written with the name as given. A tag that ends in "/>" goes if it has neither. The string
/// itself for an empty name and if there is no such tag.
[[nodiscard]] VELMO_API String stripAttributesOfTag(const String& text, std::string_view name,
                                                    const WebRules& web = {});

/// What becomes of the elements that are named.
struct TagBodyOptions {
    bool except = false;  ///< all but them goes, instead of them
    WebRules web = {};    ///< as told above
};

/// The text without the elements whose opening tag begins with one of the given texts in any
/// case, as "<div", which also begins a "<divider>". Elements of the same name are counted, so
/// that the right closing tag ends a body; one that is never closed reaches to the end of the
/// text. Closing tags, and those that end in "/>", begin no element; inside of one both close.
///
/// With except only these elements stay, each with a line feed after it, and single tags.
///
/// Absent if nothing is left. Empty beginnings do not count; without any other the string itself,
/// or absent with except.
///
///     const String Lists[] = {u"<ul", u"<ol"};
///     stripTagBodies(u"a<ul><li>b<ul></ul></ul>c", Lists);   // ac
[[nodiscard]] VELMO_API String stripTagBodies(const String& text, std::span<const String> tags,
                                              TagBodyOptions options = {});
[[nodiscard]] inline String stripTagBodiesExcept(const String& text, std::span<const String> tags) {
    return stripTagBodies(text, tags, {.except = true});
}

/// The first element of a name without its own tags, nor any other tag of that name in it.
/// Absent for an empty name and if there is no such tag; a closing tag in front of all opening
/// ones is none.
[[nodiscard]] VELMO_API String innerTagBody(const String& text, std::string_view name,
                                            const WebRules& web = {});
/// The same with these tags.
[[nodiscard]] VELMO_API String outerTagBody(const String& text, std::string_view name,
                                            const WebRules& web = {});
[[nodiscard]] inline String tagBody(const String& text, std::string_view name, bool inner) {
    return inner ? innerTagBody(text, name) : outerTagBody(text, name);
}

// An element as a dictionary with the keys "Tag" and "Content".

/// Absent if there is none.
[[nodiscard]] VELMO_API String xmlTag(const std::map<String, String>& element);
/// Empty if there is none.
[[nodiscard]] VELMO_API String xmlContent(const std::map<String, String>& element);

}  // namespace velmo
