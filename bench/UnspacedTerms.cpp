// A word inside the runs of 5 MB of Chinese, beside a plain search for its units.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <string_view>

#include <velmocore/query/QueryHits.h>
#include <velmocore/query/WildcardSearch.h>

namespace velmo::bench {
namespace {

constexpr std::u16string_view Term = u"\u7FFB\u8BD1";

/// Characters as unequally frequent as in Chinese, in sentences of fifteen; the term stands in
/// one of a thousand.
const String& chinese() {
    static const String text = [] {
        std::mt19937 random(1);
        std::u16string units;
        while (units.size() < 2'500'000) {
            for (int i = 0; i < 15; ++i) {
                const double share = static_cast<double>(random() % 10000) / 10000;
                units += static_cast<char16_t>(0x4E00 + std::pow(share, 4) * 12000);
            }
            if (random() % 1000 == 0) units += Term;
            units += u'\u3002';
        }
        return String(units);
    }();
    return text;
}

template <class Search>
void count(benchmark::State& state, Search search) {
    const String& text = chinese();
    std::size_t hits = 0;
    for (auto _ : state) benchmark::DoNotOptimize(hits = search(text));
    state.SetBytesProcessed(static_cast<std::int64_t>(text.length() * 2 * state.iterations()));
    state.counters["hits"] = static_cast<double>(hits);
}

void countHits(benchmark::State& state, bool wildcard) {
    const QueryTerms terms(Term, {.wildcard = wildcard, .withinRuns = true});
    count(state, [&](const String& text) { return hitsOfQueryTerms(text, terms).size(); });
}

void countWildcards(benchmark::State& state, const char16_t* pattern) {
    const std::vector<String> wildcards{pattern};
    count(state, [&](const String& text) {
        return forEachWildcard(text, wildcards, [](Range) { return true; }, {.withinRuns = true});
    });
}

void countPlaces(benchmark::State& state) {
    count(state, [](std::u16string_view text) {
        std::size_t places = 0;
        for (std::size_t at = 0; (at = text.find(Term, at)) != text.npos; at += Term.size())
            ++places;
        return places;
    });
}

BENCHMARK_CAPTURE(countHits, plain, false)->Name("run-term/velmo")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(countHits, wildcard, true)
    ->Name("run-term-as-wildcard/velmo")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(countWildcards, star, u"\u7FFB\u8BD1*")
    ->Name("run-term-with-star/velmo")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(countPlaces)->Name("run-term/find")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmo::bench
