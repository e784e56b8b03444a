#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/url/URL.h>

namespace velmo {

// One page is reached under many URLs. Each of these takes one difference away; together
// they make a key to compare pages by. They work on the text and do not parse it as a URL.
// What has nothing to do gives the string itself, an absent one too; what leaves nothing
// gives the empty string. Any thread may call these.
//
//     stringURLByRemovingSessionIDs(u"http://h/?sid=a1&n=2");                 // http://h/?n=2
//     simplifiedStringURL(u"https://www.h.org/A//b.html?utm_term=x#c");   // http://h.org/a/b.html
//     simplifiedStringURL(u"http://h.org/a/index.html");                  // http://h.org/a
//
// A parameter is known by its name and =, if the first place where they stand is after one
// of & ; ?. A later parameter of that name is not seen then. Of a parameter that is removed
// the separator before it stays and the one after it is removed, unless it was the last one.
//
// The form of a URL is that of its whole text; a file URL gives its standardized path, but
// for stringURLWithoutAnchor().

/// Runs of slashes become one, but for two after a colon; "/.", "/.." and what else of dots
/// stands alone at the end is removed. What follows a ? or ; stays, and then the end too.
[[nodiscard]] VELMO_API String standardizedStringURL(const String& string);
[[nodiscard]] VELMO_API String standardizedStringURL(const URL& url);

/// Without the fragment, unless it is part of the address: #! or #/ and more.
[[nodiscard]] VELMO_API String stringURLWithoutAnchor(const String& string);
[[nodiscard]] VELMO_API String stringURLWithoutAnchor(const URL& url);
/// Without the scheme, its colon and the slashes that follow.
[[nodiscard]] VELMO_API String stringURLWithoutScheme(const String& string);
/// Without user and password. A path, or what is no URL, stands.
[[nodiscard]] VELMO_API String stringURLWithoutCredentials(const String& string);
/// Short and for people: without credentials, scheme, a leading "www." and trailing slashes.
[[nodiscard]] VELMO_API String displayStringURL(const String& string);

/// Without the parameters that only name a session or an affiliate. Which these are depends
/// on the kind of page; a numeric sid or cid is none.
[[nodiscard]] VELMO_API String stringURLByRemovingSessionIDs(const String& string);
[[nodiscard]] VELMO_API String stringURLByRemovingSessionIDs(const URL& url);
/// Without the parameters of campaigns: utm_source and its like.
[[nodiscard]] VELMO_API String stringURLByRemovingAnalytics(const String& string);
[[nodiscard]] VELMO_API String stringURLByRemovingAnalytics(const URL& url);
/// Without an index page and its slash at the end.
[[nodiscard]] VELMO_API String stringURLByRemovingIndexPages(const String& string);
[[nodiscard]] VELMO_API String stringURLByRemovingIndexPages(const URL& url);
/// Without parameters that have no value. One that stands right after another that is
/// removed may stay.
[[nodiscard]] VELMO_API String stringURLByRemovingEmptyParams(const String& string);
[[nodiscard]] VELMO_API String stringURLByRemovingEmptyParams(const URL& url);
/// Without the parameters of one name, in any case. The name is given with its =.
[[nodiscard]] VELMO_API String stringURLByRemovingQueryParam(const String& string,
                                                             std::u16string_view name);
[[nodiscard]] VELMO_API String stringURLByRemovingQueryParam(const URL& url,
                                                             std::u16string_view name);

/// What a key leaves out; each is an operation of its own above.
struct SimplifyOptions {
    bool sessionIDs = true;   ///< stringURLByRemovingSessionIDs()
    bool analytics = true;    ///< stringURLByRemovingAnalytics()
    bool indexPages = true;   ///< stringURLByRemovingIndexPages()
    bool emptyParams = true;  ///< stringURLByRemovingEmptyParams()
    bool anchors = true;      ///< stringURLWithoutAnchor()
};
/// The key of a page, which is not meant to be loaded: common escapes decoded, standardized,
/// without all that the options name, "www." and trailing slashes, http for https, and in
/// lower case. A text without escapes of escapes is mostly, but not always, its own key; see
/// the tests.
[[nodiscard]] VELMO_API String simplifiedStringURL(const String& string,
                                                   const SimplifyOptions& options = {});
[[nodiscard]] VELMO_API String simplifiedStringURL(const URL& url,
                                                   const SimplifyOptions& options = {});

/// Whether two texts are the same URL, in any case, but for anchors and slashes. An absent
/// one equals nothing.
[[nodiscard]] VELMO_API bool isEqualToStringURL(const String& string, const String& other);

}  // namespace velmo
