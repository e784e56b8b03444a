// Texts that people paste, which may be a URL with what stood around it: brackets of a mail, line
// breaks, white space. Nothing is completed or resolved here; the receiver comes back itself where
// nothing had to be taken off.
#include <velmocore/url/URLRepair.h>

#include <algorithm>
#include <string>

#include <velmocore/text/CharacterSets.h>
#include <velmocore/text/CharacterTests.h>
#include <velmocore/text/Removal.h>
#include <velmocore/text/Trimming.h>

#include "text/Keyword.h"

namespace velmo {
namespace {

using Units = std::u16string_view;

// In units.
constexpr std::size_t LeastLocation = 4, LongestLocation = 1023;

bool canBeInternetLocation(Units text) {
    if (text.size() < LeastLocation || text.size() > LongestLocation) return false;
    if (containsWhiteCharacter(text)) return false;
    if (text.find(u"://") != Units::npos || detail::keyword::beginsWith(text, "MAILTO:"))
        return true;
    return text.find(u'.') != Units::npos &&
           (detail::keyword::beginsWith(text, "WWW") || detail::keyword::beginsWith(text, "FTP") ||
            std::count(text.begin(), text.end(), u'@') == 1);
}

/// Takes off the brackets around the whole text or around the mail address in it.
Units withoutBrackets(Units text) {
    const std::size_t open = text.find(u'<');
    const std::size_t close = text.rfind(u'>');
    if (open == Units::npos || close == Units::npos || close < open) return text;
    const std::size_t at = text.find(u'@');
    const bool encloses =
        at == Units::npos ? open == 0 && close == text.size() - 1 : open < at && at < close;
    return encloses ? text.substr(open + 1, close - open - 1) : text;
}

String orReceiver(const std::u16string& text, const String& receiver) {
    return receiver == text ? receiver : String(text);
}

}  // namespace

String possibleInternetLocation(const String& string, bool removeFeedsAndTabs) {
    std::u16string text(string.view());
    trimWhiteSpaces(text);
    if (removeFeedsAndTabs) {
        removeFeeds(text);
        removeTabs(text);
    }
    return canBeInternetLocation(text) ? orReceiver(text, string) : String();
}

String stringByFormattingURL(const String& string) {
    if (string.isEmpty()) return string;
    std::u16string text(string.view());
    trimWhiteSpaces(text);
    if (!detail::keyword::beginsWith(text, "MESSAGE:")) {
        text = std::u16string(withoutBrackets(text));
        std::erase_if(
            text, [](char16_t unit) { return unit == u'<' || unit == u'>' || isFeedUnit(unit); });
    }
    return orReceiver(text, string);
}

}  // namespace velmo
