// What the links of the pages are, by all table predicates, beside the same asked row by
// row: each row looked for on its own in the folded link, and each table by the search for
// any of many keywords.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <string>
#include <vector>

#include <velmocore/markup/Links.h>
#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/text/ConversionTables.h>
#include <velmocore/text/FastSearch.h>
#include <velmocore/url/AdvertisementFilter.h>
#include <velmocore/url/SearchEngines.h>
#include <velmocore/url/URLClassification.h>

#include "Corpus.h"
#include "url/ClassificationTables.h"
#include "url/SearchEngineTables.h"

namespace velmo::bench {
namespace {

/// All links of the pages, as URLs of one site, so that each has a host.
const std::vector<URL>& links() {
    static const std::vector<URL> made = [] {
        const URL base = URL::URLWithString(u"https://www.example.org/docs/index.html");
        std::vector<URL> urls;
        for (const std::string& page : corpus().pages)
            for (const String& link : htmlLinks(stringWithMarkupData(Bytes(page))).links)
                if (const URL url = URL::URLWithString(link, base); !url.isAbsent())
                    urls.push_back(url);
        return urls;
    }();
    return made;
}

/// Calls work for each link and tells the benchmark how many there were.
template <class Work>
void eachLink(benchmark::State& state, Work work) {
    for (auto _ : state)
        for (const URL& url : links()) benchmark::DoNotOptimize(work(url));
    state.SetItemsProcessed(static_cast<std::int64_t>(links().size() * state.iterations()));
}

void classifyVelmo(benchmark::State& state) {
    eachLink(state, [](const URL& url) {
        const URLClasses classes = classesOfStringURL(url);
        return classes.advertisement + classes.forum + isSearchEngine(url);
    });
}
BENCHMARK(classifyVelmo)->Name("classify/velmo")->Unit(benchmark::kMillisecond);

/// A list of 50,000 rules of the usual kinds, none of which names a page of the corpus.
const std::u16string& filterRules() {
    static const std::u16string made = [] {
        std::string rules;
        for (int i = 0; i < 50000; ++i) {
            const std::string n = std::to_string(i);
            rules += i % 5 < 3   ? "||ads" + n + ".example" + n + ".com^\n"
                     : i % 5 < 4 ? "||shop" + n + ".com/banners/" + n + "/\n"
                                 : "/ad-frame-" + n + ".\n";
        }
        return std::u16string(String::fromUTF8(rules).view());
    }();
    return made;
}

void filterVelmo(benchmark::State& state) {
    static const AdvertisementFilter filter(filterRules());
    eachLink(state, [](const URL& url) { return filter.matches(url); });
}
BENCHMARK(filterVelmo)->Name("ad-filter/velmo")->Unit(benchmark::kMillisecond);

std::vector<detail::LinkTableRows> allTables() {
    std::vector<detail::LinkTableRows> all;
    for (const auto& tables :
         {detail::advertisementTables(), detail::bookmarkletTables(), detail::pageKindTables()})
        all.insert(all.end(), tables.begin(), tables.end());
    return all;
}

void classifyRows(benchmark::State& state) {
    std::vector<std::u16string> rows, hosts;
    for (const detail::LinkTableRows& table : allTables())
        for (std::string_view row : table.rows) rows.emplace_back(row.begin(), row.end());
    for (std::string_view row : detail::searchEngineHosts())
        hosts.emplace_back(row.begin(), row.end());
    const ConversionTable& lower = lowerCharsTable();
    std::u16string folded;
    const auto fold = [&](std::u16string_view text) {
        folded.assign(text);
        for (char16_t& unit : folded) unit = lower[unit];
    };
    const auto holds = [&](const std::u16string& row) { return folded.find(row) != folded.npos; };
    eachLink(state, [&](const URL& url) {
        fold(url.absoluteString());
        auto hits = std::count_if(rows.begin(), rows.end(), holds);
        fold(url.part(URLPart::Host));
        return hits + std::count_if(hosts.begin(), hosts.end(), holds);
    });
}
BENCHMARK(classifyRows)->Name("classify/row-by-row")->Unit(benchmark::kMillisecond);

void classifyTables(benchmark::State& state) {
    const std::vector<detail::LinkTableRows> tables = allTables();
    const ConversionTable* lower = &lowerCharsTable();
    eachLink(state, [&](const URL& url) {
        int hits = 0;
        for (const detail::LinkTableRows& table : tables)
            hits += fastContainsSubCStrings(url.absoluteString(), table.rows, lower);
        return hits +
               fastContainsSubCStrings(url.part(URLPart::Host), detail::searchEngineHosts(), lower);
    });
}
BENCHMARK(classifyTables)->Name("classify/table-by-table")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmo::bench
