#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/url/URL.h>

namespace velmo {

// Lists of name=value pairs, separated by & or ;. A pair starts at the next letter or digit
// and its name runs to the next =, over separators too; without one the list ends. Names
// are compared exactly, values are not decoded. Nothing is copied but the result.
//
//     queryParamNamed(u"http://h/p?q=ferret&n=5", u"n");    // 5
//     paramNamed(u"a=1;b=2", u"b");                         // 2
//     numberOfQueryParams(u"http://h/p?q=&n=5");            // 2
//     queryParams(u"http://h/p").has_value();               // false
//
// The forms of a string look after its first ?, and have no pairs without one; those of a
// URL look at its query. An absent or empty name has no value anywhere. Any thread may call these.

/// Values by the names of their pairs.
using QueryParams = std::map<String, String>;

/// The value of the first pair of that name that has one; absent without. A pair with an
/// empty value does not count. A name as long as the text or longer is in no pair.
[[nodiscard]] VELMO_API String queryParamNamed(std::u16string_view string,
                                               std::u16string_view name);
[[nodiscard]] VELMO_API String queryParamNamed(const URL& url, std::u16string_view name);
/// The same from the start of a text that is itself a list.
[[nodiscard]] VELMO_API String paramNamed(std::u16string_view string, std::u16string_view name);

/// Whether there is a pair of that name, also one with an empty value.
[[nodiscard]] VELMO_API bool containsQueryParamNamed(std::u16string_view string,
                                                     std::u16string_view name);
[[nodiscard]] VELMO_API bool containsQueryParamNamed(const URL& url, std::u16string_view name);
[[nodiscard]] VELMO_API bool containsParamNamed(std::u16string_view string,
                                                std::u16string_view name);

/// All pairs with a value, the last of each name; absent without a query.
[[nodiscard]] VELMO_API std::optional<QueryParams> queryParams(std::u16string_view string);
[[nodiscard]] VELMO_API std::optional<QueryParams> queryParams(const URL& url);

/// The number of pairs, those with an empty value too.
[[nodiscard]] VELMO_API std::size_t numberOfQueryParams(std::u16string_view string);
[[nodiscard]] VELMO_API std::size_t numberOfQueryParams(const URL& url);

/// The whole string with the value that queryParamNamed() finds replaced; an absent
/// replacement is an empty one. The string itself if there is no such value.
[[nodiscard]] VELMO_API String stringByReplacingQueryParamNamed(const String& string,
                                                                std::u16string_view name,
                                                                std::u16string_view replacement);
/// The same of the query of a URL. The result is the query, not a URL.
[[nodiscard]] VELMO_API String stringByReplacingQueryParamNamed(const URL& url,
                                                                std::u16string_view name,
                                                                std::u16string_view replacement);

/// Appends ?name=value, or &name=value if the string has a ? already. The value is escaped
/// so that it comes back as it is, the name is not. Nothing happens if one of them is empty
/// or the value holds a lone surrogate.
VELMO_API void appendParameter(std::u16string& string, std::u16string_view name,
                               std::u16string_view value);

}  // namespace velmo
