// The reductions of a URL as text, on views and in the place of an editable text, so that a
// chain of them makes one string.
#pragma once

#include <cstring>
#include <string_view>

#include <velmocore/url/URL.h>

#include "text/UnitScan.h"
#include "url/GapText.h"

namespace velmo::detail {

/// The first position from a start on that holds the unit; else the size.
inline std::size_t indexOf(std::u16string_view text, char16_t unit, std::size_t from = 0) noexcept {
    const char16_t* const start = text.data();
    return static_cast<std::size_t>(scan::find(start + from, start + text.size(), unit) - start);
}

/// Whether two texts are the same. The one of the standard library compares unit by unit.
inline bool isSame(std::u16string_view a, std::u16string_view b) noexcept {
    return a.size() == b.size() &&
           (a.empty() || !std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)));
}

/// The path of a URL with its parameters, as it stands there.
inline std::u16string_view wholePathOf(const URL& url) noexcept {
    const std::u16string_view path = url.part(URLPart::Path), more = url.part(URLPart::Parameters);
    // They stand side by side in the URL.
    const char16_t* const end = more.data() ? more.data() + more.size() : path.data() + path.size();
    return {path.data(), static_cast<std::size_t>(end - path.data())};
}

/// The text in front of a #, unless that belongs to the address: #! or #/ and more.
std::u16string_view withoutAnchor(std::u16string_view text) noexcept;

/// Where the first ? or ; stands, behind which slashes mean nothing; else the size.
std::size_t endOfPlainPath(std::u16string_view text) noexcept;
/// Whether standardize() would change the text.
bool isStandardized(std::u16string_view text) noexcept;
/// Collapses slashes and cuts trailing dots off, in place. Gives the new length.
std::size_t standardize(char16_t* units, std::size_t length) noexcept;

/// The length of a path without "/." and "/.." at its end, or without "." and ".." if that is all.
std::size_t lengthWithoutDots(std::u16string_view text) noexcept;
/// The text without an index page at its end.
std::u16string_view withoutIndexPage(std::u16string_view text) noexcept;
inline std::u16string_view withoutSuffixSlashes(std::u16string_view text) noexcept {
    while (text.ends_with(u'/')) text.remove_suffix(1);
    return text;
}

/// Takes out the parameters of a name, which is given in capitals with its =, and those without a
/// value.
void removeQueryParam(GapText& text, std::u16string_view capitals);
void removeEmptyParams(GapText& text);

/// The text of a URL without user and password; the same string if it has neither.
String withoutCredentials(const URL& url);

class PlainQuery;

/// What names a session, and what names a campaign, taken out.
void removeSessionIDs(GapText& text);
void removeSessionIDs(PlainQuery& query);
void removeCampaigns(GapText& text);
void removeCampaigns(PlainQuery& query);

}  // namespace velmo::detail
