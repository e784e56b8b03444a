// Which page of the site an address asks for, and what may not be asked.
#include <velmocore/gather/SearchSite.h>

#include <algorithm>
#include <chrono>
#include <optional>

#include <velmocore/gather/PageSearch.h>
#include <velmocore/query/QueryDiagnosis.h>
#include <velmocore/query/QueryTerms.h>

#include "gather/SiteFrame.h"
#include "gather/SitePage.h"
#include "gather/SiteResults.h"

namespace velmo {
namespace {

using namespace detail;
using Clock = std::chrono::steady_clock;

constexpr std::size_t LongestQuery = 1000, MostTerms = 64, ResultsOfFeed = 50;
/// As the tool reads them: one query means the same in a shell and in a browser.
constexpr QueryOptions Parsing = {.wildcard = true, .withinRuns = true};

/// The terms of a query, counted without a stack as deep as its parentheses.
std::size_t numberOfTerms(const QueryTerms& query) {
    std::size_t count = 0;
    std::vector<QueryTerms> left = {query};
    while (!left.empty() && count <= MostTerms) {
        const QueryTerms term = std::move(left.back());
        left.pop_back();
        count += term.isWord();
        for (std::size_t i = 0; i < term.numberOfChildren(); ++i) left.push_back(term.child(i));
    }
    return count;
}

std::vector<String> problemsOf(const String& query) {
    std::vector<String> problems;
    if (query.isEmpty()) return problems;
    for (const QueryProblem& problem : problemsOfQuery(query, Parsing))
        problems.push_back(problem.text);
    return problems;
}

Date startOfYear(int year) { return std::chrono::sys_days(std::chrono::year(year) / 1 / 1); }

}  // namespace

struct SearchSite::State {
    std::vector<PageStore> stores;
    SearchSiteOptions options;

    bool isKnownHost(std::string host) const {
        std::ranges::transform(host, host.begin(), [](unsigned char c) {
            return static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
        });
        return options.hosts.empty() ||
               std::ranges::find(options.hosts, host) != options.hosts.end();
    }

    std::string policy() const {
        return std::string("default-src 'none'; style-src 'self'; img-src 'self'") +
               (options.images ? " http: https:" : "") +
               "; form-action 'self'; base-uri 'none'; frame-ancestors 'none'";
    }

    SiteResponse refuse(int status, std::u16string_view reason) const {
        return {status, "text/html; charset=utf-8", sitePageOfStatus(status, reason)};
    }

    /// What a target asks of the pages; a year that no calendar has is left out.
    PageSearchOptions searchOptions(const SiteTarget& target, Clock::time_point end) const {
        PageSearchOptions search = {.order = target.order,
                                    .first = target.first,
                                    .limit = target.path == "/" ? ResultsAPage : ResultsOfFeed,
                                    .language = String::fromUTF8(target.language),
                                    .host = String::fromUTF8(target.host),
                                    .facets = target.path == "/",
                                    .threads = options.threads,
                                    .shouldStop = [end] { return Clock::now() >= end; }};
        if (target.year && *target.year > 0 && *target.year < 10000) {
            search.since = startOfYear(*target.year);
            search.before = startOfYear(*target.year + 1);
        }
        return search;
    }

    /// Searches, and hands what was found to the writer.
    template <class Write>
    std::string searched(const SiteTarget& target, Write write) const {
        const Clock::time_point start = Clock::now();
        const auto time = std::chrono::duration_cast<Clock::duration>(
            std::chrono::duration<double>(options.seconds));
        const String text = String::fromUTF8(target.query);
        const SearchResult result =
            searchPages(stores, QueryTerms(text, Parsing), searchOptions(target, start + time));
        const std::vector<String> problems = problemsOf(text);
        const std::chrono::duration<double> taken = Clock::now() - start;
        return write(SiteSearch{target, result, problems, taken.count(), options.images});
    }

    SiteResponse results(const SiteTarget& target) const {
        MarkupWriter out;
        beginSitePage(out, String::fromUTF8(target.query), target);
        // The field stands in the browser while the search goes on.
        return {
            .contentType = "text/html; charset=utf-8", .body = out.take(), .rest = [this, target] {
                return searched(target, [](const SiteSearch& search) {
                    MarkupWriter page;
                    writeResults(page, search);
                    writeQueryHelp(page, search.result.hits.empty());
                    endSitePage(page);
                    return page.take();
                });
            }};
    }

    SiteResponse home(const SiteTarget& target) const {
        std::size_t pages = 0;
        for (const PageStore& store : stores) pages += store.numberOfPages();
        MarkupWriter out;
        beginSitePage(out, u"Pages", target);
        out << "<p class=\"start\">";
        out.number(pages);
        out << " pages to search.</p>";
        writeQueryHelp(out, true);
        endSitePage(out);
        return {.contentType = "text/html; charset=utf-8", .body = out.take()};
    }

    SiteResponse page(const SiteTarget& target) const {
        const auto page = target.store < stores.size()
                              ? stores[target.store].page(String::fromUTF8(target.key))
                              : std::nullopt;
        if (!page) return refuse(404, u"There is no such page");
        const QueryTerms query(String::fromUTF8(target.query), Parsing);
        return {.contentType = "text/html; charset=utf-8",
                .body = sitePageOf({*page, target, query, options.images})};
    }

    SiteResponse forPrograms(const SiteTarget& target, const std::string& host) const {
        if (target.path == "/search.json")
            return {.contentType = "application/json",
                    .rest = [this, target] { return searched(target, jsonOfResults); }};
        return {.contentType = "application/atom+xml; charset=utf-8", .rest = [this, target, host] {
                    return searched(target, [&](const SiteSearch& search) {
                        return feedOfResults(search, "http://" + host);
                    });
                }};
    }

    SiteResponse respond(const SiteRequest& request) const {
        if (!isKnownHost(request.host)) return refuse(421, u"This site has another name");
        if (request.method != "GET" && request.method != "HEAD")
            return refuse(405, u"Pages can only be read");
        const std::optional<SiteTarget> target = readSiteTarget(request.target);
        if (!target) return refuse(414, u"The address is too long, or none");
        if (target->path == "/style.css")
            return {.contentType = "text/css; charset=utf-8",
                    .body = std::string(siteStyleSheet())};
        if (target->path == "/icon.svg")
            return {.contentType = "image/svg+xml", .body = std::string(siteIcon())};
        return respondWithSearch(*target, request.host);
    }

    SiteResponse respondWithSearch(const SiteTarget& target, const std::string& host) const {
        const String query = String::fromUTF8(target.query);
        if (query.length() > LongestQuery || numberOfTerms(QueryTerms(query, Parsing)) > MostTerms)
            return refuse(400, u"The query is too long");
        if (target.path == "/page") return page(target);
        if (target.path == "/feed" || target.path == "/search.json")
            return forPrograms(target, host);
        if (target.path != "/") return refuse(404, u"There is no such page");
        return target.query.empty() ? home(target) : results(target);
    }
};

SearchSite::SearchSite(std::vector<PageStore> stores, SearchSiteOptions options)
    : state_(std::make_unique<const State>(State{std::move(stores), std::move(options)})) {}
SearchSite::SearchSite(SearchSite&&) noexcept = default;
SearchSite& SearchSite::operator=(SearchSite&&) noexcept = default;
SearchSite::~SearchSite() = default;

SiteResponse SearchSite::respond(const SiteRequest& request) const {
    SiteResponse response = state_->respond(request);
    response.headers.insert(response.headers.end(),
                            {{"Content-Security-Policy", state_->policy()},
                             {"X-Content-Type-Options", "nosniff"},
                             {"Referrer-Policy", "no-referrer"},
                             {"Cross-Origin-Opener-Policy", "same-origin"},
                             {"Cross-Origin-Resource-Policy", "same-origin"},
                             {"Cache-Control", "no-store"}});
    if (response.status == 405) response.headers.emplace_back("Allow", "GET, HEAD");
    return response;
}

}  // namespace velmo
