#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include <velmocore/gather/PageSource.h>
#include <velmocore/gather/PageStore.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/url/LinkFollowing.h>
#include <velmocore/url/PageKey.h>
#include <velmocore/url/URL.h>

namespace velmo {

/// The time that a crawl goes by, so that a test need not wait. Both are in seconds.
struct SiteClock {
    std::function<double()> now = {};               ///< tells the time; null is the system's
    std::function<void(double seconds)> wait = {};  ///< lets it pass; null likewise
};

/// How far a crawl goes, and how fast.
struct SiteOptions {
    /// How far it goes from the pages that it starts with, a FollowMode.
    std::int64_t follow = FollowSameHost;
    std::size_t depth = 5;   ///< links on the way from a start; 0 for the starts alone
    double delay = 1;        ///< seconds between two pages of a host, or what it asks for if longer
    std::size_t hosts = 16;  ///< of which pages are loaded at once; 64 at the most
    /// How those who run the servers can reach who runs the crawl: an address of the web or of
    /// mail, told with the name of this library.
    String contact = {};
    PageKeyOptions keys = {};  ///< which addresses are of one page; as for the reading of pages
    /// Where the crawl notes how far it is; not owned. See SiteSource.
    PageStore* store = nullptr;

    // Limits.
    std::size_t pageBytes = std::size_t{1} << 23;  ///< the most of a page
    double timeout = 30;                           ///< seconds of silence
    double pageSeconds = 120;                      ///< for a page, from its request to its end
    double longestPause = 300;   ///< seconds that a host may ask to be left alone between two pages
    std::size_t tries = 4;       ///< of a page whose server is busy, or has gone meanwhile
    std::size_t redirects = 10;  ///< one behind the other
    std::size_t waiting =
        1'000'000;         ///< pages that are known and not loaded yet; more are left out
    SiteClock clock = {};  ///< that of the system
};

/// What became of the addresses that a crawl came by.
struct SiteCounts {
    std::size_t requests = 0;   ///< of pages, with their redirects and further tries
    std::size_t pages = 0;      ///< that were given
    std::size_t unchanged = 0;  ///< that stand in the store as they are
    std::size_t forbidden = 0;  ///< by robots.txt, or by a page itself
    std::size_t failed = 0;     ///< dead links, and servers that cannot be reached
    std::size_t others = 0;     ///< that are neither page nor feed nor text
    std::size_t waiting = 0;    ///< that are still to be loaded
    std::size_t dropped = 0;    ///< for which there was no room
};

/// Web sites, from their first pages on, breadth first. Each page is given once, by its key
/// (url/PageKey.h), whatever ways lead to it.
///
///     SiteSource site({URL::URLWithString(u"https://example.org/")}, {.depth = 2});
///     gatherPages(site, {}, [](GatheredPage& page) {
///         print(page.record.title);
///         return true;
///     });
///
/// Polite: what robots.txt forbids is not loaded (gather/RobotsRules.h), nor are links with
/// rel=nofollow and those of pages that say so; pages that forbid to be kept (noindex) are not
/// given. A host gets one request at a time, with a pause after each, and is left alone for as long
/// as it wishes (Retry-After) or for longer and longer times when it fails. Many hosts are asked at
/// once.
///
/// Safe: only http and https, and no address of another kind of network than those of the starts
/// (net/Networks.h), whatever names and redirects say; but see DownloadLimits for proxies.
/// Credentials of a start are sent to its own server alone, and kept nowhere. No cookies, no
/// referrer.
///
/// Addresses longer than 2048 UTF-16 units are not followed, nor are those that tell that they lead
/// to no page. Of a page that cannot be had, nothing is told but in the counts, if it is not a
/// start. Feeds that pages name are read as pages are, and their items followed. One thread at a
/// time uses a source; it loads on threads of the library.
///
/// With a store, which must outlive the source, the crawl notes there what it has found: one that
/// was ended or killed at any moment goes on with the same starts, mode and depth where it was,
/// neither loading again what was stored, nor losing what was found; when it has come to its end,
/// the notes go. Another crawl over the store asks for what has changed since.
class VELMO_API SiteSource final : public PageSource {
public:
    /// Starts that are no addresses of the web are told as errors.
    explicit SiteSource(const std::vector<URL>& starts, const SiteOptions& options = {});
    ~SiteSource() override;

    /// The next page that has come.
    State next(SourcePage& page) override;
    /// Follows the links of a page that it gave.
    void didRead(const PageRecord& record) override;
    /// In pages: those that are done, of those that are known.
    [[nodiscard]] SourceProgress progress() const override;
    /// What became of the addresses until now.
    [[nodiscard]] SiteCounts counts() const;

private:
    class Crawl;

    std::unique_ptr<Crawl> crawl_;
};

}  // namespace velmo
