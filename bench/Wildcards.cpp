// Wildcards over the plain text of pages, beside word patterns of RE2; and fuzzy words beside
// plain ones.
#include <benchmark/benchmark.h>
#include <re2/re2.h>

#include <string>
#include <vector>

#include <velmocore/query/WildcardSearch.h>

#include "Corpus.h"

namespace velmo::bench {
namespace {

struct Pattern {
    const char* wildcard;
    const char* expression;
};

constexpr Pattern Patterns[] = {
    {"data*", R"(\bdata\w*)"}, {"*base", R"(\b\w*base\b)"},         {"*tab*", R"(\b\w*tab\w*)"},
    {"d?t*", R"(\bd\wt\w*)"},  {"[a-d]*ing", R"(\b[a-d]\w*ing\b)"},
};

void countHits(benchmark::State& state, const char* wildcard, WildcardComparison comparison) {
    const std::vector<String> wildcards{String::fromUTF8(wildcard)};
    std::uint64_t hits = 0;
    eachPage(state, corpus().texts, [&](const String& text) {
        hits += forEachWildcard(text, wildcards, [](Range) { return true; },
                                {.comparison = comparison});
    });
    state.counters["hits"] = static_cast<double>(hits / state.iterations());
}

void countHitsRe2(benchmark::State& state, const std::string& expression) {
    const RE2 pattern(expression);
    std::uint64_t hits = 0;
    eachPage(state, corpus().textsUtf8, [&](const std::string& text) {
        for (re2::StringPiece rest(text); RE2::FindAndConsume(&rest, pattern);) ++hits;
    });
    state.counters["hits"] = static_cast<double>(hits / state.iterations());
}

const bool added = [] {
    using enum WildcardComparison;
    for (const auto& [wildcard, expression] : Patterns)
        for (const auto& [name, comparison, flags] :
             {std::tuple("exact", Exact, ""), std::tuple("case", CaseInsensitive, "(?i)")}) {
            const std::string title = std::string("wildcard-") + name + "-" + wildcard;
            const std::string peer = std::string(flags) + expression;
            benchmark::RegisterBenchmark((title + "/velmo").c_str(), countHits, wildcard,
                                         comparison)
                ->Unit(benchmark::kMillisecond);
            benchmark::RegisterBenchmark((title + "/re2").c_str(), countHitsRe2, peer)
                ->Unit(benchmark::kMillisecond);
        }
    for (const char* word : {"analogy", "server"}) {
        const std::string title = std::string("fuzzy-word-") + word;
        benchmark::RegisterBenchmark((title + "/velmo").c_str(), countHits, word,
                                     CaseInsensitive | Fuzzy)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((title + "/plain").c_str(), countHits, word, CaseInsensitive)
            ->Unit(benchmark::kMillisecond);
    }
    return true;
}();

}  // namespace
}  // namespace velmo::bench
