// Each reduction works in the place of a text with a gap (see url/GapText.h), so that a chain of them
// copies the URL once and makes one string. The chain itself is in SimplifiedKeys.cpp.
#include <velmocore/url/URLSimplification.h>

#include <algorithm>

#include <velmocore/text/Comparison.h>
#include <velmocore/text/Paths.h>

#include "text/Keyword.h"
#include "text/Pieces.h"
#include "text/Trim.h"
#include "text/UnitScan.h"
#include "url/Parameters.h"
#include "url/Reductions.h"

namespace velmo {
namespace detail {
namespace {

using Units = std::u16string_view;

/// Where a slash stands behind another that is not behind a colon; the end if nowhere.
std::size_t firstExtraSlash(Units text, std::size_t end) noexcept {
    const char16_t* const start = text.data();
    // Behind the plain path slashes may be part of a value and stay.
    const char16_t* const last = start + end;
    for (const char16_t* slash = start;; ++slash) {
        slash = scan::findDoubled(slash, last, u'/');
        if (slash == last) return end;
        if (slash == start || slash[-1] != u':') return static_cast<std::size_t>(slash + 1 - start);
    }
}

/// Where the separator in front of a name stands whose = is at a position; 0 if nowhere. The
/// unit in front of the = is not looked at, so an empty name has none.
std::size_t separatorOfName(const GapText& text, std::size_t equals) {
    for (std::size_t i = equals < 2 ? 0 : equals - 2; i > 0; --i) {
        if (text[i] == u'=') return 0;
        if (isParameterSeparator(text[i])) return i;
    }
    return 0;
}

/// "?&" becomes "?".
void removeSeparatorsBehindQuestionMarks(GapText& text, std::size_t start) {
    for (std::size_t i = start; (i = text.find<u'?'>(i)) + 1 < text.size(); ++i)
        if (text[i + 1] == u'&') text.erase(i + 1, i + 2);
}

}  // namespace

std::size_t lengthWithoutDots(Units text) noexcept {
    for (;;) {
        std::size_t dots = 0;
        while (dots < 2 && dots < text.size() && text[text.size() - 1 - dots] == u'.') ++dots;
        if (dots == 0) return text.size();
        if (dots == text.size()) return 0;
        if (text[text.size() - 1 - dots] != u'/') return text.size();
        // In front of them there may be more: "/./.." loses both.
        text.remove_suffix(dots + 1);
    }
}

Units withoutAnchor(Units text) noexcept {
    const std::size_t anchor = indexOf(text, u'#');
    if (anchor == text.size()) return text;
    const Units rest = text.substr(anchor + 1);
    const bool isAddress = rest.size() > 1 && (rest[0] == u'!' || rest[0] == u'/');
    return isAddress ? text : text.substr(0, anchor);
}

std::size_t endOfPlainPath(Units text) noexcept {
    const char16_t* const end = text.data() + text.size();
    return static_cast<std::size_t>(scan::findEither(text.data(), end, u'?', u';') - text.data());
}

bool isStandardized(Units text) noexcept {
    const std::size_t end = endOfPlainPath(text);
    return firstExtraSlash(text, end) == end &&
           (end < text.size() || lengthWithoutDots(text) == end);
}

std::size_t standardize(char16_t* units, std::size_t length) noexcept {
    const Units text(units, length);
    const std::size_t end = endOfPlainPath(text);
    std::size_t write = firstExtraSlash(text, end);
    if (write == end) return end == length ? lengthWithoutDots(text) : length;
    for (std::size_t read = write; read < end; ++read) {
        const bool extra = units[read] == u'/' && units[write - 1] == u'/' &&
                           (write == 1 || units[write - 2] != u':');
        if (!extra) units[write++] = units[read];
    }
    if (end == length) return lengthWithoutDots({units, write});
    std::char_traits<char16_t>::move(units + write, units + end, length - end);
    return write + length - end;
}

void removeQueryParam(GapText& text, Units capitals) {
    std::size_t start = 0;
    for (;;) {
        const std::size_t name = findName(text, {capitals}, start);
        if (name == NotThere || name == 0 || !isParameterSeparator(text[name - 1])) return;
        start = removeParameter(text, name - 1);
        // What stands side by side now may be the name again.
        start -= std::min(start, capitals.size());
    }
}

void removeEmptyParams(GapText& text) {
    const std::size_t start = startOfParameters(text);
    std::size_t position = start;
    while (position < text.size()) {
        const std::size_t equals = text.find<u'='>(position);
        if (equals == text.size()) break;
        position = equals + 1;
        if (position < text.size() && text[position] != u'\0' &&
            !isParameterSeparator(text[position]))
            continue;
        const std::size_t separator = separatorOfName(text, equals);
        if (separator == 0) continue;
        // The scan goes on at the old place, and passes over what has moved up.
        ++position;
        if (position < text.size())
            text.erase(separator + 1, position);
        else
            text.truncate(separator);
    }
    removeSeparatorsBehindQuestionMarks(text, start);
}

Units withoutIndexPage(Units text) noexcept {
    constexpr std::string_view Start = "/INDEX.";
    constexpr std::size_t Longest = 12;  // in units, of an index page with its slash
    const std::size_t skipped = text.size() - std::min(text.size(), Longest);
    const std::size_t slash = text.substr(skipped).rfind(u'/');
    const Units page = slash == Units::npos ? Units() : text.substr(skipped + slash);
    if (!keyword::beginsWith(page, Start)) return text;
    for (const std::string_view known :
         {"SHTML", "PHTML", "JHTML", "HTML", "HTM", "PHP", "CHM", "ASP", "CGI"})
        if (keyword::equals(page.substr(Start.size()), known))
            return text.substr(0, text.size() - page.size());
    return text;
}

String withoutCredentials(const URL& url) {
    const String& string = url.absoluteString();
    const Units user = url.part(URLPart::User), password = url.part(URLPart::Password);
    if (!user.data()) return string;  // without one there is no password either
    const Units last = password.data() ? password : user;
    const auto start = static_cast<std::size_t>(user.data() - string.characters());
    const auto end = static_cast<std::size_t>(last.data() - string.characters()) + last.size();
    StringBuilder out(string.length());
    out.append(string.view().substr(0, start));
    out.append(string.view().substr(end + 1));
    return out.finish();
}

}  // namespace detail

namespace {

using namespace detail;

Units withoutScheme(Units text) {
    const std::size_t end = text.find_first_of(u":/;?");
    if (end == Units::npos || text[end] != u':') return text;
    return text.substr(std::min(text.find_first_not_of(u'/', end + 1), text.size()));
}

/// What is compared of a text as a URL.
Units comparedPart(GapText& text) {
    text.truncate(withoutAnchor(text.view()).size());
    text.truncate(standardize(text.data(), text.size()));
    return withoutSuffixSlashes(text.view());
}

}  // namespace

String standardizedStringURL(const String& string) {
    if (isStandardized(string)) return string;
    StringBuilder out(string.length());
    out.append(string.view());
    out.truncate(standardize(out.data(), out.length()));
    return out.finish();
}

String stringURLWithoutAnchor(const String& string) {
    return pieceOf(string, withoutAnchor(string));
}

String stringURLWithoutScheme(const String& string) {
    return pieceOf(string, withoutScheme(string));
}

String stringURLWithoutCredentials(const String& string) {
    if (string.isEmpty() || string[0] == u'/' || string[0] == u'~') return string;
    const URL url = URL::URLWithString(string);
    return url.part(URLPart::User).data() ? withoutCredentials(url) : string;
}

String displayStringURL(const String& string) {
    const String url = stringURLWithoutCredentials(string);
    Units shown = withoutSuffixSlashes(withoutScheme(url));
    if (keyword::beginsWith(shown, "WWW.")) shown.remove_prefix(4);
    return pieceOf(url, shown);
}

String stringURLByRemovingSessionIDs(const String& string) {
    if (string.view().find_first_of(u"?=") == Units::npos) return string;
    GapText text(string);
    text.index();
    removeSessionIDs(text);
    return text.orOriginal(string);
}

String stringURLByRemovingAnalytics(const String& string) {
    if (!keyword::contains(string, "UTM_")) return string;
    GapText text(string);
    text.index();
    removeCampaigns(text);
    return text.orOriginal(string);
}

String stringURLByRemovingIndexPages(const String& string) {
    return pieceOf(string, withoutIndexPage(string));
}

String stringURLByRemovingEmptyParams(const String& string) {
    GapText text(string);
    text.index();
    removeEmptyParams(text);
    return text.orOriginal(string);
}

String stringURLByRemovingQueryParam(const String& string, Units name) {
    if (string.isEmpty() || name.empty()) return string;
    std::u16string capitals(name);
    std::transform(capitals.begin(), capitals.end(), capitals.begin(), keyword::upper);
    GapText text(string);
    removeQueryParam(text, capitals);
    return text.orOriginal(string);
}

// The forms of a URL.

namespace {

/// What a reduction makes of the whole URL; of a file URL it is the path.
template <class Reduce>
String reduced(const URL& url, Reduce reduce) {
    return url.isFileURL() ? standardizedPath(url.path()) : reduce(url.absoluteString());
}

}  // namespace

String standardizedStringURL(const URL& url) {
    return reduced(url, [](const String& string) { return standardizedStringURL(string); });
}
String stringURLWithoutAnchor(const URL& url) {
    return stringURLWithoutAnchor(url.absoluteString());
}
String stringURLByRemovingSessionIDs(const URL& url) {
    return reduced(url, [](const String& string) { return stringURLByRemovingSessionIDs(string); });
}
String stringURLByRemovingAnalytics(const URL& url) {
    return reduced(url, [](const String& string) { return stringURLByRemovingAnalytics(string); });
}
String stringURLByRemovingIndexPages(const URL& url) {
    return reduced(url, [](const String& string) { return stringURLByRemovingIndexPages(string); });
}
String stringURLByRemovingEmptyParams(const URL& url) {
    return reduced(url,
                   [](const String& string) { return stringURLByRemovingEmptyParams(string); });
}
String stringURLByRemovingQueryParam(const URL& url, Units name) {
    return reduced(
        url, [name](const String& string) { return stringURLByRemovingQueryParam(string, name); });
}
String simplifiedStringURL(const URL& url, const SimplifyOptions& options) {
    return reduced(
        url, [&options](const String& string) { return simplifiedStringURL(string, options); });
}

bool isEqualToStringURL(const String& string, const String& other) {
    if (string.isAbsent() || other.isAbsent()) return false;
    GapText a(string), b(other);
    return isEqualToStringNoCase(comparedPart(a), comparedPart(b));
}

}  // namespace velmo
