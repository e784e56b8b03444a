// A crawl is a machine that is turned by whoever asks for the next page. All of its state belongs
// to that one thread; only the requests run elsewhere, and their answers wait in a queue
// (SiteLoading.h) until they are taken.
//
// A page goes from the frontier (Frontier.h) to the queue of its host (SiteHosts.h), is asked for,
// given, read by others, and told back by didRead(): only then is it known where it leads to, and
// that it stands in the store. Until that moment it belongs to the frontier, so that a crawl that
// ends before loads it again. What a page asks of crawlers is found where it is read
// (CrawlHints.h).
#include <velmocore/gather/SiteSource.h>

#include <velmocore/markup/ContentKinds.h>
#include <velmocore/text/Comparison.h>
#include <velmocore/url/DownloadStatus.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <deque>
#include <thread>

#include "gather/CrawlHints.h"
#include "gather/CrawlNotes.h"
#include "gather/GatherErrors.h"
#include "gather/SiteLoading.h"

namespace velmo {
namespace {

using namespace detail;

/// The longest that next() takes when there is nothing, in seconds.
constexpr double LongestWait = 0.2;
/// What a failing host is left alone for first; it doubles each time.
constexpr double FirstPause = 2;
constexpr std::uint32_t MostDoublings = 16;
/// Rules are asked for again after a day.
constexpr double LifeOfRules = 24 * 60 * 60;
constexpr std::int64_t NotModified = 304, TooManyRequests = 429, FirstFailure = 500;

double steadyNow() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}
void sleepFor(double seconds) {
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}
Date today() { return std::chrono::system_clock::now(); }

SiteOptions completed(SiteOptions options) {
    if (!options.clock.now) options.clock.now = steadyNow;
    if (!options.clock.wait) options.clock.wait = sleepFor;
    return options;
}

Error complaint(const String& text) { return gatherError(text.utf8()); }

/// What makes it the same crawl: where it starts, and how far it goes.
std::uint64_t crawlOf(const std::vector<URL>& starts, const SiteOptions& options) {
    std::vector<String> keys;
    for (const URL& start : starts) keys.push_back(pageKey(start, options.keys));
    std::ranges::sort(keys);
    std::string all = std::to_string(options.follow) + " " + std::to_string(options.depth);
    for (const String& key : keys) all += "\n" + key.utf8();
    return idOfKey(String::fromUTF8(all));
}

/// A page that was given and not yet told back.
struct Given {
    std::optional<PageID> id = {};  ///< none for an error
    CrawlHints hints = {};
};

}  // namespace

class SiteSource::Crawl {
public:
    Crawl(const std::vector<URL>& starts, const SiteOptions& options)
        : options_(completed(options)),
          frontier_(starts, options_),
          notes_(options_.store, crawlOf(starts, options_)),
          loading_(starts, options_) {
        resume();
        for (std::uint32_t i = 0; i < starts.size(); ++i) addStart(starts[i], i);
        // That there is a crawl is noted before its first page can be stored.
        notes_.flush();
    }
    ~Crawl() {
        try {
            notes_.flush();
        } catch (...) {  // no memory: what was not noted is loaded again
        }
    }
    Crawl(const Crawl&) = delete;
    Crawl& operator=(const Crawl&) = delete;

    State next(SourcePage& page) {
        takeAnswers();
        if (ready_.empty()) startDue();
        if (ready_.empty() && wait()) takeAnswers();
        if (!ready_.empty()) {
            page = std::move(ready_.front());
            ready_.pop_front();
            return State::Page;
        }
        if (!isOver()) return State::Wait;
        notes_.end();
        return State::End;
    }

    void didRead() {
        const std::shared_ptr<Given> given = std::move(given_.front());
        given_.pop_front();
        if (!given->id) return;
        if (given->hints.isRateNotice) return tryAgain(*given->id, std::nullopt);
        counts_.forbidden += given->hints.robots.noIndex;
        addLinks(*given->id, given->hints);
        notes_.addRead(*given->id);
        frontier_.setDone(*given->id);
        notes_.tidy(frontier_);
    }

    SiteCounts counts() const {
        SiteCounts counts = counts_;
        counts.waiting = frontier_.waiting().size();
        counts.dropped = frontier_.dropped();
        return counts;
    }

private:
    // --- What is to be loaded ---

    void resume() {
        const CrawlState state = notes_.load();
        begun_ = state.begun;
        if (!begun_) return notes_.begin(today());
        for (const auto& [start, base] : state.bases) frontier_.setBase(start, base);
        for (const PageID id : state.done) frontier_.setSeen(id);
        for (FrontierEntry entry : state.found) {
            const PageID id = frontier_.idOf(entry.url);
            if (state.done.contains(id) || entry.start >= frontier_.numberOfStarts()) continue;
            entry.isResumed = true;
            entry.wasRead = state.read.contains(id);
            const bool isKnown = frontier_.isWaiting(id);
            frontier_.restore(entry);
            if (!isKnown) hosts_.add(entry.url, id);
        }
    }

    void addStart(const URL& start, std::uint32_t number) {
        const URL url = Frontier::cleaned(start);
        if (url.isAbsent()) return giveError(start, u"not an address of the web");
        add({.url = url, .start = number});
    }

    void add(const FrontierEntry& entry) {
        const std::optional<PageID> id = frontier_.add(entry);
        if (!id) return;
        notes_.addFound(entry);
        hosts_.add(entry.url, *id, entry.redirects > 0);
    }

    void addLinks(PageID id, const CrawlHints& hints) {
        const FrontierEntry from = frontier_.entry(id);
        for (const std::vector<URL>* urls : {&hints.links, &hints.feeds})
            for (const URL& link : *urls) addLink(link, from.level + 1, from.start);
    }

    void addLink(const URL& link, std::uint32_t level, std::uint32_t start) {
        const URL url = Frontier::cleaned(link);
        if (!url.isAbsent() && frontier_.mayFollow(url, level, start))
            add({.url = url, .level = level, .start = start});
    }

    void setDone(PageID id) {
        notes_.addDone(id);
        frontier_.setDone(id);
    }

    // --- What is asked for ---

    void startDue() {
        const double now = options_.clock.now();
        while (!loading_.isFull())
            if (Host* const host = hosts_.take(now))
                start(*host);
            else
                return;
    }

    /// Asks a host for the first of its pages that may be loaded.
    void start(Host& host) {
        for (; !host.queue.empty(); host.queue.pop_front()) {
            const PageID id = host.queue.front();
            if (!frontier_.isWaiting(id)) continue;
            const FrontierEntry& entry = frontier_.entry(id);
            const ServerRules& server = host.servers[serverOf(entry.url)];
            if (!server.rules || options_.clock.now() - server.loaded > LifeOfRules)
                return loading_.loadRules(host, entry.url);
            if (!server.rules->isAllowed(entry.url)) {
                forbid(id, server);
            } else if (!passOver(id)) {
                host.queue.pop_front();
                return load(host, id);
            }
        }
        hosts_.release(host, host.due);
    }

    void forbid(PageID id, const ServerRules& server) {
        if (!server.complaint.isAbsent()) return fail(id, u"robots.txt: " + server.complaint);
        ++counts_.forbidden;
        giveErrorOfStart(id, u"forbidden by robots.txt");
        setDone(id);
    }

    /// Whether a page of a crawl that goes on was stored before that was ended.
    bool passOver(PageID id) {
        const FrontierEntry& entry = frontier_.entry(id);
        if (!entry.isResumed) return false;
        const auto page = options_.store->page(pageKey(entry.url, options_.keys));
        if (!page || (!entry.wasRead && !(page->fetched >= begun_))) return false;
        if (!entry.wasRead) addLinks(id, {.links = linksOf(*page)});
        setDone(id);
        return true;
    }

    static std::vector<URL> linksOf(const PageRecord& page) {
        std::vector<URL> links;
        for (const PageLink& link : page.links) links.push_back(link.url);
        return links;
    }

    void load(Host& host, PageID id) {
        ++counts_.requests;
        const URL& url = frontier_.entry(id).url;
        loading_.loadPage(host, id, url, knownVersion(id, url));
    }

    /// What the store tells of a page by which its server can say that it is the same still. Its
    /// links are kept for that case.
    KnownVersion knownVersion(PageID id, const URL& url) {
        if (!options_.store) return {};
        const auto page = options_.store->page(pageKey(url, options_.keys));
        if (!page || (page->entityTag.isEmpty() && page->lastModified.isEmpty())) return {};
        known_[id] = linksOf(*page);
        return {page->entityTag, page->lastModified};
    }

    // --- What comes ---

    void takeAnswers() {
        for (SiteAnswer& answer : loading_.takeAnswers()) {
            // A page that is to be tried again, or to be left, may be the first of the next.
            if (answer.server.isAbsent())
                takePage(answer);
            else
                takeRules(answer);
            hosts_.release(*answer.host, options_.clock.now() + pauseOf(*answer.host));
        }
    }

    double pauseOf(const Host& host) const {
        double pause = options_.delay;
        for (const auto& [name, server] : host.servers)
            if (server.rules)
                pause = std::max(
                    pause, std::min(server.rules->crawlDelay().value_or(0), options_.longestPause));
        return pause;
    }

    void takeRules(const SiteAnswer& answer) {
        ServerRules& server = answer.host->servers[answer.server];
        // A server that is too busy is asked again; one that goes on so forbids all.
        const bool isFailure = !answer.response || answer.error || isBusy(answer);
        if (isFailure && ++server.tries < options_.tries && isTemporary(answer))
            return backOff(*answer.host, answer.response);
        const std::int64_t status = answer.error ? 0 : answer.status();
        const bool isUnknown = status == 0 || status >= FirstFailure;
        server.complaint = isUnknown ? reasonOf(answer) : String();
        server.loaded = options_.clock.now();
        server.tries = 0;
        server.rules = RobotsRules::rulesOfAnswer(
            status, answer.data ? Bytes(*answer.data) : Bytes(), "velmo");
        answer.host->troubles = 0;
    }

    static bool isBusy(const SiteAnswer& answer) {
        return answer.status() == TooManyRequests || answer.status() >= FirstFailure;
    }
    static bool isTemporary(const SiteAnswer& answer) {
        if (answer.error) return isTemporaryNSURLError(&*answer.error);
        return isHTTPStatusCodeTemporaryError(answer.status());
    }

    void takePage(SiteAnswer& answer) {
        takeAnswerOf(answer);
        known_.erase(answer.id);
    }

    /// By what it is: a failure, a redirect, the same as before, or a page.
    void takeAnswerOf(SiteAnswer& answer) {
        const std::int64_t status = answer.status();
        const URL& url = frontier_.entry(answer.id).url;
        if (answer.error || !answer.response || isTemporary(answer)) {
            takeFailure(answer);
        } else if (const URL target = redirectOf(url, *answer.response); !target.isAbsent()) {
            redirect(answer.id, target);
        } else if (status == NotModified && known_.contains(answer.id)) {
            ++counts_.unchanged;
            addLinks(answer.id, {.links = known_[answer.id]});
            setDone(answer.id);
        } else if (!isHTTPStatusCodeOkay(status)) {
            fail(answer.id, u"HTTP status " + String::fromUTF8(std::to_string(status)));
        } else if (!isReadable(*answer.response) || kindOfAnswer(answer) == ContentKind::Binary) {
            ++counts_.others;
            giveErrorOfStart(answer.id, u"neither page nor feed nor text");
            setDone(answer.id);
        } else {
            answer.host->troubles = 0;
            give(std::move(answer));
        }
    }

    void takeFailure(const SiteAnswer& answer) {
        if (isTemporary(answer)) {
            backOff(*answer.host, answer.response);
            return tryAgain(answer.id, reasonOf(answer));
        }
        fail(answer.id, reasonOf(answer));
    }

    static String reasonOf(const SiteAnswer& answer) {
        if (answer.error) return answer.error->text;
        return answer.response ? u"HTTP status " + String::fromUTF8(std::to_string(answer.status()))
                               : String(u"no answer");
    }

    /// Leaves a host alone, for as long as it wishes or twice as long as the last time.
    void backOff(Host& host, const std::optional<URLResponse>& response) {
        const std::uint32_t doublings = std::min(host.troubles++, MostDoublings);
        double pause = std::max(FirstPause, options_.delay) * std::ldexp(1.0, int(doublings));
        if (response) pause = retryAfter(*response, today()).value_or(pause);
        host.due =
            std::max(host.due, options_.clock.now() + std::min(pause, options_.longestPause));
    }

    void tryAgain(PageID id, const std::optional<String>& reason) {
        FrontierEntry& entry = frontier_.entry(id);
        if (++entry.tries >= options_.tries)
            return fail(id, reason.value_or(u"asked for too often, it says"));
        if (!reason) backOffOf(entry.url);
        hosts_.add(entry.url, id, true);
    }

    /// A page that says that too many were asked for, which shows when it has been read.
    void backOffOf(const URL& url) {
        Host& host = hosts_.of(url);
        const std::uint32_t doublings = std::min(host.troubles++, MostDoublings);
        const double pause = std::max(FirstPause, options_.delay) * std::ldexp(1.0, int(doublings));
        hosts_.delay(url, options_.clock.now() + std::min(pause, options_.longestPause));
    }

    void fail(PageID id, const String& reason) {
        ++counts_.failed;
        giveErrorOfStart(id, reason);
        setDone(id);
    }

    void redirect(PageID id, const URL& location) {
        FrontierEntry entry = frontier_.entry(id);
        const URL target = Frontier::cleaned(location);
        if (target.isAbsent()) return fail(id, u"redirect to no address of the web");
        if (target == entry.url || ++entry.redirects > options_.redirects)
            return fail(id, u"too many redirects");
        // A start is where it leads to: what is followed from it is of that site.
        if (entry.level == 0) {
            frontier_.setBase(entry.start, target);
            notes_.addBase(entry.start, target);
        } else if (!frontier_.mayFollow(target, entry.level, entry.start)) {
            return setDone(id);
        }
        entry.url = target;
        if (frontier_.idOf(target) == id) {
            frontier_.restore(entry);
            notes_.addFound(entry);
            return hosts_.add(target, id, true);
        }
        add(entry);
        setDone(id);
    }

    // --- What is given ---

    void give(SiteAnswer&& answer) {
        ++counts_.pages;
        const auto given = std::make_shared<Given>(Given{.id = answer.id});
        const URL& url = frontier_.entry(answer.id).url;
        RobotsDirectives header;
        for (const HTTPHeader& field : answer.response->headers.all())
            if (isEqualToStringNoCase(field.name, u"X-Robots-Tag"))
                header.take(field.value, RobotsName);
        const ContentKind kind = kindOfAnswer(answer);
        SourcePage page = {.name = url.absoluteString(),
                           .url = url,
                           .bytes = std::move(answer.data).value_or(Data()),
                           .contentType = contentType(*answer.response),
                           .kind = kind,
                           .status = answer.status(),
                           .fetched = today(),
                           .entityTag = answer.response->headers.value(u"ETag"),
                           .lastModified = lastModified(*answer.response)};
        page.complete = [given, header](SourcePage& read) {
            given->hints.robots = header;
            if (read.kind == ContentKind::Page)
                given->hints = readCrawlHints(read, header, RobotsName);
            read.isLeftOut = given->hints.robots.noIndex || given->hints.isRateNotice;
            // Its links could not be told by the record alone, so it is to be loaded each time.
            if (given->hints.hasOtherLinks) read.entityTag = read.lastModified = String();
        };
        give(std::move(page), given);
    }

    void give(SourcePage&& page, std::shared_ptr<Given> given) {
        ready_.push_back(std::move(page));
        given_.push_back(std::move(given));
    }

    void giveError(const URL& url, const String& reason) {
        SourcePage page = {.name = url.absoluteString(), .url = url, .status = 0};
        page.error = complaint(reason);
        give(std::move(page), std::make_shared<Given>());
    }

    void giveErrorOfStart(PageID id, const String& reason) {
        const FrontierEntry& entry = frontier_.entry(id);
        if (entry.level == 0) giveError(entry.url, reason);
    }

    // --- Waiting ---

    /// Waits for an answer or for a host, if there is anything to wait for. Pages that are being
    /// read come first: whoever reads them is not held up.
    bool wait() {
        const std::optional<double> due = hosts_.nextDue();
        double seconds = LongestWait;
        if (due) seconds = std::clamp(*due - options_.clock.now(), 0.0, LongestWait);
        if (!loading_.isIdle())
            loading_.wait(seconds);
        else if (due && given_.empty())
            options_.clock.wait(seconds);
        return !loading_.isIdle();
    }

    bool isOver() const {
        return given_.empty() && loading_.isIdle() && !hosts_.nextDue().has_value();
    }

    const SiteOptions options_;
    Frontier frontier_;
    SiteHosts hosts_ = {};
    CrawlNotes notes_;
    SiteLoading loading_;
    std::optional<Date> begun_ = {};  ///< by a run that did not come to its end
    std::unordered_map<PageID, std::vector<URL>> known_ = {};  ///< links of pages asked for again
    std::deque<SourcePage> ready_ = {};
    std::deque<std::shared_ptr<Given>> given_ = {};  ///< the ready ones too
    SiteCounts counts_ = {};
};

SiteSource::SiteSource(const std::vector<URL>& starts, const SiteOptions& options)
    : crawl_(std::make_unique<Crawl>(starts, options)) {}

SiteSource::~SiteSource() = default;

PageSource::State SiteSource::next(SourcePage& page) { return crawl_->next(page); }
void SiteSource::didRead(const PageRecord&) { crawl_->didRead(); }

SourceProgress SiteSource::progress() const {
    const SiteCounts counts = crawl_->counts();
    const std::size_t done =
        counts.pages + counts.unchanged + counts.forbidden + counts.failed + counts.others;
    return {.done = done, .total = done + counts.waiting};
}

SiteCounts SiteSource::counts() const { return crawl_->counts(); }

}  // namespace velmo
