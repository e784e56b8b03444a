#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/url/URL.h>

namespace velmo {

// What a link is, told by its looks before it is fetched: an advertisement, a button that
// bookmarks, a captcha, another page translated or cached, a page of a forum. The tests look
// for hundreds of known hosts and fragments, in any case, in one walk over the link; none
// allocates. A text that is too short for a test, and an absent URL, is nothing.
//
//     stringURLIsAdvertisement(u"http://h.org/ads/1.gif");           // true
//     stringURLIsTopicOrThread(u"http://h.org/viewtopic.php?t=1");   // true
//
// The forms for a URL look at the whole of it. Any thread may call these.

/// An image of an ad network.
[[nodiscard]] VELMO_API bool stringURLIsImageAd(std::u16string_view string);
/// A text ad, a frame with ads, or an image of an ad network.
[[nodiscard]] VELMO_API bool stringURLIsAdSense(std::u16string_view string);
/// Any of those, a host of an ad network, or a path as advertisements have it. With
/// includingCommonHosts the sites of well-known advertisers and of surveys count too.
[[nodiscard]] VELMO_API bool stringURLIsAdvertisementIncludingCommonHosts(
    std::u16string_view string, bool includingCommonHosts);
/// The same with the common hosts.
[[nodiscard]] inline bool stringURLIsAdvertisement(std::u16string_view string) {
    return stringURLIsAdvertisementIncludingCommonHosts(string, true);
}
/// A page that submits another to a bookmarking or social site.
[[nodiscard]] VELMO_API bool stringURLIsBookmarklet(std::u16string_view string);
/// A captcha as it is shown to browsers without scripts.
[[nodiscard]] VELMO_API bool stringURLIsRecaptcha(std::u16string_view string);
/// A page that shows another in translation.
[[nodiscard]] VELMO_API bool stringURLIsTranslation(std::u16string_view string);
/// A topic or thread of a forum, by its script or by a name as "name-t-1.html" with two
/// numbers.
[[nodiscard]] VELMO_API bool stringURLIsTopicOrThread(std::u16string_view string);
/// Anything with the word forum, board or comment, or the name of a forum program.
[[nodiscard]] VELMO_API bool stringURLIsForum(std::u16string_view string);
/// A page that shows what another once was.
[[nodiscard]] VELMO_API bool stringURLIsCached(std::u16string_view string);

/// The answers of all these tests.
struct URLClasses {
    // Each by the name of its test.
    bool imageAd = false;
    bool adSense = false;
    bool advertisement = false;
    bool bookmarklet = false;
    bool recaptcha = false;
    bool translation = false;
    bool topicOrThread = false;
    bool forum = false;
    bool cached = false;

    friend bool operator==(const URLClasses&, const URLClasses&) = default;
};

/// All tests at once, for the price of about one of them.
[[nodiscard]] VELMO_API URLClasses classesOfStringURL(std::u16string_view string,
                                                      bool includingCommonHosts = true);

// The same of a URL.

[[nodiscard]] inline bool stringURLIsImageAd(const URL& url) {
    return stringURLIsImageAd(url.absoluteString());
}
[[nodiscard]] inline bool stringURLIsAdSense(const URL& url) {
    return stringURLIsAdSense(url.absoluteString());
}
[[nodiscard]] inline bool stringURLIsAdvertisementIncludingCommonHosts(const URL& url,
                                                                       bool includingCommonHosts) {
    return stringURLIsAdvertisementIncludingCommonHosts(url.absoluteString(), includingCommonHosts);
}
[[nodiscard]] inline bool stringURLIsAdvertisement(const URL& url) {
    return stringURLIsAdvertisement(url.absoluteString());
}
[[nodiscard]] inline bool stringURLIsBookmarklet(const URL& url) {
    return stringURLIsBookmarklet(url.absoluteString());
}
[[nodiscard]] inline bool stringURLIsRecaptcha(const URL& url) {
    return stringURLIsRecaptcha(url.absoluteString());
}
[[nodiscard]] inline bool stringURLIsTranslation(const URL& url) {
    return stringURLIsTranslation(url.absoluteString());
}
[[nodiscard]] inline bool stringURLIsTopicOrThread(const URL& url) {
    return stringURLIsTopicOrThread(url.absoluteString());
}
[[nodiscard]] inline bool stringURLIsForum(const URL& url) {
    return stringURLIsForum(url.absoluteString());
}
[[nodiscard]] inline bool stringURLIsCached(const URL& url) {
    return stringURLIsCached(url.absoluteString());
}
[[nodiscard]] inline URLClasses classesOfStringURL(const URL& url,
                                                   bool includingCommonHosts = true) {
    return classesOfStringURL(url.absoluteString(), includingCommonHosts);
}

}  // namespace velmo
