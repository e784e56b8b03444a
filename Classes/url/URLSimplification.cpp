// Each reduction works in the place of a text with a gap (see url/GapText.h), so that the whole
// chain of simplifiedStringURL() copies the URL once and makes one string. The order of the chain
// matters: escapes come first, as they may hide what is to be removed, and the index page comes
// last, as it is one only when nothing follows it.
#include <velmocore/url/URLSimplification.h>

#include <algorithm>
#include <optional>

#include <velmocore/text/Comparison.h>
#include <velmocore/text/Normalisation.h>
#include <velmocore/text/Paths.h>
#include <velmocore/url/PercentEscapes.h>

#include "platform/Ascii.h"
#include "text/Keyword.h"
#include "text/Pieces.h"
#include "text/SmallBuffer.h"
#include "text/Trim.h"
#include "text/UnitScan.h"
#include "url/Parameters.h"
#include "url/PlainQuery.h"
#include "url/Reductions.h"
#include "url/RemovedParameters.h"

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

/// The length without "/." and "/.." at the end, or without "." and ".." if that is all.
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

}  // namespace

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

Units withoutSuffixSlashes(Units text) { return trimmedView(text, Ends::Right, OneUnit{u'/'}); }

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

/// The text without an index page at its end.
Units withoutIndexPage(Units text) {
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

/// Writes the text with its ASCII in lower case. Gives all bits of its units.
char16_t writeLower(char16_t* write, Units text) {
    char16_t all = 0;
    for (const char16_t unit : text) {
        all |= unit;
        *write++ = ascii::toLower(unit);
    }
    return all;
}

/// How many units in front of a text are written otherwise in a key, and what is written there. One
/// page is served with and without "www." and as http and https, so that a key has neither.
struct Head {
    std::size_t length = 0;
    Units written;
};
Head headOf(Units text) {
    const std::size_t http = keyword::beginsWith(text, "HTTP:")    ? 4
                             : keyword::beginsWith(text, "HTTPS:") ? 5
                                                                   : 0;
    if (http == 0) return {};
    const bool isWWW = keyword::beginsWith(text.substr(http), "://WWW.");
    return isWWW ? Head{http + 7, u"http://"} : Head{http, u"http"};
}

constexpr Units MainPage = u"/?page=main.php";
/// A page of the search for patents, which has a parameter of its own.
bool isOfPatents(Units text) {
    constexpr std::string_view Host = "GOOGLE.COM", Path = "/PATENTS/";
    for (std::size_t i = indexOf(text, u'/'); i < text.size(); i = indexOf(text, u'/', i + 1))
        if (i >= Host.size() && keyword::beginsWith(text.substr(i), Path) &&
            keyword::beginsWith(text.substr(i - Host.size()), Host))
            return true;
    return false;
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

namespace {

/// The part of a text in which nothing is to be cut out but at its ends: no escape may hide a mark,
/// no parameter has a =, and no form a ?. Null if there is none.
Units plainPart(Units text, const SimplifyOptions& options) {
    const char16_t* const end = text.data() + text.size();
    if (scan::findAnyOf<u'%', u'?', u'='>(text.data(), end) != end) return {};
    const Units part = options.anchors ? withoutAnchor(text) : text;
    return isStandardized(part) ? part : Units();
}

/// Takes out all that the options name but an index page.
void removeDifferences(GapText& text, const String& string, const SimplifyOptions& options) {
    text.truncate(convertPercentEscapesOfURL(text.data(), text.size(), true));
    if (options.anchors) text.truncate(withoutAnchor(text.view()).size());
    text.truncate(standardize(text.data(), text.size()));
    text.index();
    if (options.sessionIDs) removeSessionIDs(text);
    if (options.analytics) removeCampaigns(text);
    if (options.emptyParams) removeEmptyParams(text);
    // The number of a result, which differs from one search to the next.
    constexpr Units Result = u"VED=";
    if (findName(text, {Result}) != NotThere && isOfPatents(string)) removeQueryParam(text, Result);
}

/// Whether a slash stands behind another in a path that is not behind a colon; see
/// firstExtraSlash().
bool hasExtraSlash(const URLMarks& marks, std::uint32_t path) {
    const UnitBits slash = marks.slash & UnitBits::below(path), doubled = slash.before(slash);
    return static_cast<bool>(doubled.without(doubled.behind(marks.colon)));
}

/// The key of what is left of a URL.
String keyOf(Units text, const String& original, const SimplifyOptions& options) {
    if (options.indexPages) {
        if (options.sessionIDs && text.ends_with(MainPage))
            text.remove_suffix(MainPage.size() - 1);
        else
            text = withoutIndexPage(text);
    }
    const Head head = headOf(text);
    text.remove_prefix(head.length);
    SmallBuffer<char16_t> key(head.written.size() + text.size());
    char16_t* const rest = std::ranges::copy(head.written, key.data()).out;
    const char16_t all = writeLower(rest, text);
    const Units written = withoutSuffixSlashes({key.data(), key.size()});
    if (all < 128) return isSame(written, original) ? original : String(written);
    // Outside ASCII the lower case of a text may be longer than the text.
    std::u16string copy(written);
    lowercase(copy);
    return isSame(copy, original) ? original : String(copy);
}

/// The key of a text in which parameters are only left out, escapes being decoded already; none of
/// any other text.
std::optional<String> plainKeyOf(Units text, const URLMarks& marks, const String& original,
                                 const SimplifyOptions& options) {
    const auto isInASCII = [](char16_t unit) { return unit > 0 && unit < 128; };
    if (marks.other && !std::all_of(text.begin(), text.end(), isInASCII)) return std::nullopt;
    if (options.anchors && marks.hash) text = withoutAnchor(text);
    const PlainQueryMarks query(marks, text.size());
    if (!query.arePlain || (options.emptyParams && query.hasEmptyValue())) return std::nullopt;
    if (hasExtraSlash(marks, query.query)) return std::nullopt;
    if (query.query == query.size)
        return keyOf(text.substr(0, lengthWithoutDots(text)), original, options);
    PlainQuery parameters(text, query);
    // Results of patents are rare, and their rule comes after all others.
    if (parameters.present() & bitOf(ResultNumber)) return std::nullopt;
    if (options.sessionIDs) removeSessionIDs(parameters);
    if (options.analytics) removeCampaigns(parameters);
    char16_t units[UnitBits::MostUnits];
    return keyOf({units, parameters.write(units)}, original, options);
}

/// The same of a text of up to 128 units.
std::optional<String> shortKeyOf(const String& string, const SimplifyOptions& options) {
    const URLMarks marks = urlMarksOf(string);
    if (!marks.percent) return plainKeyOf(string, marks, string, options);
    char16_t units[UnitBits::MostUnits];
    string.view().copy(units, string.length());
    const Units decoded(units, convertPercentEscapesOfURL(units, string.length(), true));
    return plainKeyOf(decoded, urlMarksOf(decoded), string, options);
}

}  // namespace

String simplifiedStringURL(const String& string, const SimplifyOptions& options) {
    if (string.isEmpty()) return string;
    if (string.length() <= UnitBits::MostUnits) {
        if (std::optional<String> key = shortKeyOf(string, options)) return *std::move(key);
    } else if (const Units plain = plainPart(string, options); plain.data()) {
        return keyOf(plain, string, options);
    }
    GapText text(string);
    removeDifferences(text, string, options);
    return keyOf(text.view(), string, options);
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
