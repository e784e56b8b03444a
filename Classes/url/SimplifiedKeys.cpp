// The chain of all reductions. Its order matters: escapes come first, as they may hide what is to be
// removed, and the index page comes last, as it is one only when nothing follows it.
//
// Of most URLs nothing but whole parameters goes, which the marks of the URL tell (see PlainQuery.h):
// then what is kept is copied once, and only for all others the reductions run one after the other.
// A URL that is its key is given back.
#include <velmocore/url/URLSimplification.h>

#include <algorithm>
#include <optional>

#include <velmocore/text/Normalisation.h>
#include <velmocore/url/PercentEscapes.h>

#include "platform/Ascii.h"
#include "text/Keyword.h"
#include "text/SmallBuffer.h"
#include "text/UnitScan.h"
#include "url/Parameters.h"
#include "url/PlainQuery.h"
#include "url/Reductions.h"
#include "url/RemovedParameters.h"

namespace velmo {
namespace {

using namespace detail;
using Units = std::u16string_view;

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

}  // namespace velmo
