#pragma once

#include <span>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/url/URL.h>

namespace velmo {

// What a URL can be used for, by its scheme. Schemes are compared in any case. An absent URL
// is nothing, and neither is an empty text. Any thread may call these.
//
//     isDownloadableURL(URL::URLWithString(u"FTP://host/file"));   // true
//     isRemoteWebKitStringURL(u"www.example.org");                 // true
//     isMailStringURL(u"ann@example.org");                         // true
//     validFeedStringURL(u"feed:h.org/rss");                       // http://h.org/rss

[[nodiscard]] VELMO_API bool isHTTPURL(const URL& url);  ///< http, https
[[nodiscard]] VELMO_API bool isFTPURL(const URL& url);   ///< ftp, ftps, sftp
/// The schemes "news" and "nttp"; the second is spelt so, unlike that of isNewsStringURL().
[[nodiscard]] VELMO_API bool isNewsURL(const URL& url);
// Each by its name.
[[nodiscard]] VELMO_API bool isFeedURL(const URL& url);
[[nodiscard]] VELMO_API bool isMailURL(const URL& url);
[[nodiscard]] VELMO_API bool isJavaScriptURL(const URL& url);
[[nodiscard]] VELMO_API bool isAppleScriptURL(const URL& url);
[[nodiscard]] VELMO_API bool isDataURL(const URL& url);
[[nodiscard]] VELMO_API bool isAboutURL(const URL& url);
/// safari-resource, safari-reader, reading-list.
[[nodiscard]] VELMO_API bool isSafariReaderURL(const URL& url);
/// The reference manager's own links, in exact case.
[[nodiscard]] VELMO_API bool isBookendsURL(const URL& url);

/// A scheme of the web or of FTP.
[[nodiscard]] VELMO_API bool isDownloadableURL(const URL& url);
/// The same or a feed, or a file URL whose file is there and is no folder.
[[nodiscard]] VELMO_API bool isLoadableURL(const URL& url);
/// A scheme of the web, of FTP or of feeds, with a host that holds a letter or digit and
/// not "...".
[[nodiscard]] VELMO_API bool isRemoteWebKitURL(const URL& url);
/// That or a file URL.
[[nodiscard]] VELMO_API bool isWebKitURL(const URL& url);
/// That, a script, or a scheme that begins with "apple".
[[nodiscard]] VELMO_API bool isUsableURL(const URL& url);

/// Both are file URLs, or both have the same host in any case.
[[nodiscard]] VELMO_API bool isHostEqualTo(const URL& url, const URL& other);

// The same questions to a text, by its first units and in any case. They take a leading
// "www." or "ftp." for a scheme where that can be loaded.

[[nodiscard]] VELMO_API bool isWebKitStringURL(std::u16string_view string);
[[nodiscard]] VELMO_API bool isRemoteWebKitStringURL(std::u16string_view string);
[[nodiscard]] VELMO_API bool isDownloadableStringURL(std::u16string_view string);
[[nodiscard]] VELMO_API bool isLoadableStringURL(std::u16string_view string);
[[nodiscard]] VELMO_API bool isHTTPStringURL(std::u16string_view string);
[[nodiscard]] VELMO_API bool isFTPStringURL(std::u16string_view string);
[[nodiscard]] VELMO_API bool isNewsStringURL(std::u16string_view string);  ///< news, nntp
[[nodiscard]] VELMO_API bool isSafariReaderStringURL(std::u16string_view string);
[[nodiscard]] VELMO_API bool isFeedStringURL(std::u16string_view string);
[[nodiscard]] VELMO_API bool isJavaScriptStringURL(std::u16string_view string);
[[nodiscard]] VELMO_API bool isAppleScriptStringURL(std::u16string_view string);
[[nodiscard]] VELMO_API bool isDataStringURL(std::u16string_view string);      ///< exact case
[[nodiscard]] VELMO_API bool isAboutStringURL(std::u16string_view string);     ///< exact case
[[nodiscard]] VELMO_API bool isBookendsStringURL(std::u16string_view string);  ///< exact case
/// Begins with /, ~ or file://.
[[nodiscard]] VELMO_API bool isFileStringURL(std::u16string_view string);

/// Whether the text is a mail address, or a mailto: link of at least 12 UTF-16 units. What
/// follows the first full stop of the domain may be four units long at most.
[[nodiscard]] VELMO_API bool isMailStringURL(std::u16string_view string);

/// What stands in front of the first : unless one of / ; ? comes before it; else absent.
///
///     stringURLScheme(u"feed:h/rss");   // feed
[[nodiscard]] VELMO_API String stringURLScheme(std::u16string_view string);

/// The extension of a URL's path, without what follows it after ? & ; = or #. Absent if
/// there is none. A text with a scheme is looked at from the end of its host on.
///
///     stringURLPathExtension(u"http://h.org/a/b.html?q");   // html
[[nodiscard]] VELMO_API String stringURLPathExtension(std::u16string_view string);
/// Whether that extension is among the given ones, in any case.
[[nodiscard]] VELMO_API bool stringURLMatchingExtensions(std::u16string_view string,
                                                         std::span<const String> extensions);

/// A feed: link as a link that can be loaded: feed:http://h loses the feed:, feed:h becomes
/// http://h. Anything else comes back as it is, feed:/h and feed://h too.
[[nodiscard]] VELMO_API String validFeedStringURL(const String& string);
/// The same, but only the feed becomes http, whatever follows: feed://h is http://h.
[[nodiscard]] VELMO_API String WebKitStringURL(const String& string);

}  // namespace velmo
