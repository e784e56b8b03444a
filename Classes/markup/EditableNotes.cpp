#include <velmocore/markup/EditableNotes.h>

#include <velmocore/markup/JunkStripping.h>
#include <velmocore/markup/MarkupCharset.h>
#include <velmocore/markup/PageMetadata.h>
#include <velmocore/markup/TagStripping.h>

#include "markup/MetaTag.h"
#include "markup/TagSupport.h"
#include "platform/Unicode.h"
#include "text/LineScan.h"
#include "text/Trim.h"

namespace velmo {
namespace {

using namespace detail;

using Units = std::u16string_view;

/// The page without what an editor cannot show.
String withoutFormFields(const String& page, const WebRules& web) {
    static const String Fields[] = {u"<fieldset", u"<legend", u"<select",
                                    u"<optgroup", u"<option", u"<button",
                                    u"<datalist", u"<keygen", u"<output"};
    return stripTagBodies(page, Fields, {.web = web});
}

/// Trimmed lines, without those of which nothing is left.
String withTrimmedLines(Units page) {
    StringBuilder out(page.size() + 1);
    forEachLine(page.data(), page.data() + page.size(),
                [&](const char16_t* from, const char16_t* to) {
                    const Units line = trimmedView(Units(from, static_cast<std::size_t>(to - from)),
                                                   Ends::Both, unicode::isWhiteSpaceOrNewline);
                    if (line.empty()) return;
                    out.append(line);
                    out.append(u'\n');
                });
    return out.finish();
}

/// The end of the first opening head tag.
std::size_t endOfHeadTag(Units page, const WebRules& web) {
    std::size_t end = NotFound;
    const auto find = [&](const Tag& tag) {
        if (!tag.isNamed("HEAD") || !isOpening(tag)) return false;
        end = tag.tagLocation + tag.tagLength;
        return true;
    };
    GetTagsOfString(page, find, web);
    return end;
}

/// The page with the tags of a note.
String markedAsNote(const String& page, const WebRules& web) {
    const std::size_t place = endOfHeadTag(page, web);
    if (place == NotFound) return page;
    StringBuilder out(page.length() + 128);
    out.append(page.view().substr(0, place));
    if (!markupCharsetRange(page, web).isFound())
        out.append(u"<meta http-equiv=\"content-type\" content=\"text/html; charset=utf-8\">\n");
    out.append(u"<meta name=\"");
    out.append(EditableNoteName);
    out.append(u"\" content=\"Yes\"/>\n");
    out.append(page.view().substr(place));
    return out.finish();
}

}  // namespace

bool isFormattedNote(Units page, const WebRules& web) {
    return !htmlMetaAttributeWithName(page, EditableNoteName, web).isEmpty();
}

String formattedNote(const String& page, const WebRules& web) {
    if (page.isEmpty()) return page;
    const String note =
        withTrimmedLines(withoutFormFields(stripObjectsAndReplaceImages(page, false, web), web));
    return isFormattedNote(note, web) ? note : markedAsNote(note, web);
}

}  // namespace velmo
