// A query over stores of pages. The library searches; here is read what is asked for, and shown what
// was found. All stores are searched together, so that the best of all come first.
#include <fmt/core.h>

#include <chrono>
#include <memory>

#include <velmocore/gather/PageSearch.h>
#include <velmocore/platform/DateFormat.h>
#include <velmocore/readers/Dates.h>

#include "Commands.h"
#include "PageStores.h"
#include "QueryOptions.h"
#include "SearchOptions.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

struct Options {
    std::string query, language, host, since, before;
    std::vector<std::string> stores;
    QueryParseOptions parse;
    PageSearchOptions search;
    std::uint64_t first = 0, limit = 10, length = 300, jobs = defaultJobs();
    bool countOnly = false;
};

/// The stores that can be read, and how they were named.
std::optional<Date> instantOf(std::string_view option, const std::string& text) {
    if (text.empty()) return std::nullopt;
    const std::optional<Date> read = date(String::fromUTF8(text), {.offsets = true});
    if (!read) throw UsageError(fmt::format("{}: '{}' is no date", option, text));
    return read;
}

PageSearchOptions searchOptions(const Options& options, WildcardComparison comparison) {
    PageSearchOptions search = options.search;
    search.first = options.first;
    search.limit = options.countOnly ? 1 : options.limit;
    search.excerptLength = options.length;
    search.threads = options.jobs;
    search.language = String::fromUTF8(options.language);
    search.host = String::fromUTF8(options.host);
    search.since = instantOf("--since", options.since);
    search.before = instantOf("--before", options.before);
    search.comparison = comparison;
    return search;
}

String dateOf(const SearchHit& hit) { return hit.date ? stringInISO8601(*hit.date) : String(); }

void printObject(const SearchHit& hit, const OpenStores& stores, Report& report) {
    JsonArray hits;
    for (const Range& range : hit.hits) hits.push_back(JsonArray{range.location, range.length});
    report.printObject({{"url", hit.url.absoluteString()},
                        {"title", hit.title},
                        {"date", dateOf(hit)},
                        {"language", hit.language},
                        {"score", hit.score},
                        {"excerpt", hit.excerpt},
                        {"hits", std::move(hits)},
                        {"key", hit.key},
                        {"hitCount", hit.hitCount},
                        {"store", stores.names[hit.store]}});
}

/// Three lines: what it is, where and of when, and what it says.
void printHit(const SearchHit& hit, std::size_t rank, Report& report) {
    Line head = report.line();
    head.add(Line::Color::Number, fmt::format("{}.", rank)).add(" ");
    head.add(oneLine(hit.title.isEmpty() ? hit.key : hit.title));
    report.printLine(head);
    Line place = report.line();
    const String& address = hit.url.absoluteString();
    place.add("   ").add(Line::Color::File, oneLine(address.isEmpty() ? hit.key : address));
    if (hit.date) place.add("  " + dateOf(hit).utf8().substr(0, 10));
    report.printLine(place);
    if (hit.excerpt.isEmpty()) return;
    Line excerpt = report.line();
    excerpt.add("   ");
    addHighlighted(excerpt, hit.excerpt, hit.hits);
    report.printLine(excerpt);
}

/// With commas between the thousands.
std::string grouped(std::size_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t place = digits.size(); place > 3; place -= 3) digits.insert(place - 3, ",");
    return digits;
}

void run(Report& report, const Options& options) {
    if (options.stores.empty()) throw UsageError("STORE is required");
    const auto start = std::chrono::steady_clock::now();
    const Query query = readQuery(report, options.query, options.parse, options.search.comparison);
    const PageSearchOptions search = searchOptions(options, query.comparison);
    report.flush();
    const OpenStores stores = openedPageStores(report, options.stores);
    const SearchResult found = searchPages(stores.open, query.terms, search);
    report.noteHit(found.matching > 0);
    if (report.session().isQuiet) return;
    if (options.countOnly) return report.printLine(std::to_string(found.matching));
    std::size_t rank = options.first;
    for (const SearchHit& hit : found.hits) {
        if (report.json())
            printObject(hit, stores, report);
        else
            printHit(hit, ++rank, report);
    }
    if (report.json()) return;
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    report.printLine(fmt::format("{} of {} pages, {:.2f} s", grouped(found.matching),
                                 grouped(found.pages), time.count()));
}

std::vector<Option> searchingOptions(Options& options) {
    return {
        choice("--sort", "NAME", options.search.order,
               "what comes first: relevance, the newest date, url, the most hits, or the order in "
               "which pages were stored",
               {{"relevance", SearchOrder::Relevance},
                {"date", SearchOrder::Newest},
                {"url", SearchOrder::Address},
                {"hits", SearchOrder::Hits},
                {"stored", SearchOrder::Stored}}),
        number("-n,--limit", "N", options.limit, "how many pages are shown, 0 for all"),
        number("--skip", "N", options.first, "how many are passed over before these"),
        text("--language", "KEY", options.language, "only pages in a language, as en"),
        text("--host", "HOST", options.host, "only pages of a host and of those below it"),
        text("--since", "DATE", options.since,
             "only pages from then on, by their date, else by when they were fetched; as velmo "
             "date reads it"),
        text("--before", "DATE", options.before, "only pages from before then"),
        number("--length", "N", options.length, "of an excerpt, in UTF-16 units, 0 for none"),
        jobsOption(options.jobs),
    };
}

}  // namespace

Command makeSearchCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Search stores of pages, the best first, with excerpts",
        .examples = {"velmo search 'cup* NEAR/5 tea' pages.store",
                     "velmo search --sort=date --limit=20 'tea OR coffee' pages.store"},
        .arguments = {required(
                          "QUERY", options->query,
                          "words, patterns, \"phrases\" and operators; see velmo help queries"),
                      list("STORE", options->stores, "what velmo gather --store has made")},
        .run = [options](Report& report) { run(report, *options); },
    };
    command.add(searchingOptions(*options));
    command.add(queryParseOptions(options->parse));
    command.add(comparisonOptions(options->search.comparison));
    Option count = flag("-c,--count", options->countOnly, "only how many pages match");
    count.excludes = "--json";
    command.add({std::move(count), flag("-q,--quiet", session.isQuiet, "print nothing"),
                 colorOption(session), jsonFlag(session, "one JSON object a page")});
    return command;
}

}  // namespace velmo::tool
