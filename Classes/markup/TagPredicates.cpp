// Quick questions about single tags, by the units at their edges. They trust the scanner that cut
// the tag: none looks for its end.
#include <velmocore/markup/TagPredicates.h>

#include "platform/Unicode.h"
#include "text/Keyword.h"

namespace velmo {

bool isTagOpen(std::u16string_view tag) noexcept { return tag.size() >= 3 && tag[1] != u'/'; }

bool isTagClosed(std::u16string_view tag) noexcept {
    return tag.size() >= 4 && (tag[1] == u'/' || tag[tag.size() - 2] == u'/');
}

bool isMetaTag(std::u16string_view tag) noexcept {
    return tag.size() >= 7 && tag[1] == u'!' && tag[2] == u'[';
}

bool isRemarkTag(std::u16string_view tag) noexcept {
    return tag.size() >= 7 && tag[1] == u'!' && tag[2] == u'-';
}

// A page is told by its first tags and not parsed: a program asks this of every text it meets.
bool isHTML(std::u16string_view text) {
    while (!text.empty() && detail::unicode::isWhiteSpaceOrNewline(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && detail::unicode::isWhiteSpaceOrNewline(text.back()))
        text.remove_suffix(1);
    if (text.size() < 6 || text.front() != u'<' || text.back() != u'>') return false;
    return detail::keyword::contains(text, "<!DOCTYPE HTML") ||
           detail::keyword::contains(text, "<HTML") || detail::keyword::contains(text, "<TITLE");
}

}  // namespace velmo
