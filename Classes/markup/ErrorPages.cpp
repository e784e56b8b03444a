#include <velmocore/markup/ErrorPages.h>

#include <algorithm>

#include <velmocore/text/CharacterTests.h>
#include <velmocore/text/Comparison.h>
#include <velmocore/text/Finding.h>

#include "markup/ErrorPageTables.h"

namespace velmo {
namespace {

using Units = std::u16string_view;

bool contains(Units text, Units wording) {
    return containsSubstring(text, wording, Case::Insensitive);
}

/// Whether any wording is the start of the text. Signs and spaces do not count: pages write
/// "Error 404: ..." as well as "Error - 404".
bool beginsAsErrorPage(Units text) {
    return std::ranges::any_of(detail::errorPageTitles(), [&](Units wording) {
        return hasPrefixNoCaseUsingCharacterSetRep(text, wording, alphaNumCharacterSetRep());
    });
}

/// Many sites put their own name in front.
bool endsAsErrorPage(Units title) {
    return std::ranges::any_of(detail::errorPageTitles(),
                               [&](Units wording) { return hasSuffixNoCase(title, wording); });
}

bool isToldByTitle(Units title, Units text, Units url) {
    if ((beginsAsErrorPage(title) || endsAsErrorPage(title)) &&
        (beginsAsErrorPage(text) || contains(text, u"404 Not Found") ||
         contains(text, u"404 (Page not found)")))
        return true;
    if (contains(title, u"- 404 page -") && contains(text, u"page doesn't exist on this server"))
        return true;
    if (hasSuffixNoCase(url, u"/403.php") && contains(title, u"403 Access Denied")) return true;
    return url.ends_with(u"/error.php") && contains(title, u"solicitada no existe");
}

bool isErrorPageURL(Units url) {
    return url.find(u"/404") != url.npos &&
           std::ranges::any_of(detail::errorPageEndings(),
                               [&](Units ending) { return hasSuffixNoCase(url, ending); });
}

}  // namespace

bool isErrorPageTitle(Units title, Units text, Units url) {
    if (!title.empty() && isToldByTitle(title, text, url)) return true;
    if (isErrorPageURL(url) &&
        containsSubCStrings(text, detail::missingPageWordings(), Case::Insensitive))
        return true;
    return equalStringsNoCaseUsingCharacterSetRep(
        text, u"Sorry server is too busy please try again later", alphaNumCharacterSetRep());
}

bool exceededPageLoadFrequencyTitle(Units, Units text) {
    return std::ranges::any_of(detail::pageLoadNotices(), [&](Units notice) {
        return equalStringsNoCaseUsingCharacterSetRep(text, notice, alphaCharacterSetRep());
    });
}

}  // namespace velmo
