// The language of page texts, beside CLD2.
#include <benchmark/benchmark.h>
#include <cld2/public/compact_lang_det.h>

#include <velmocore/words/LanguageFilter.h>

#include "Corpus.h"

namespace velmo::bench {
namespace {

void languageVelmo(benchmark::State& state) {
    const LanguageFilter filter(languageLists());
    std::size_t decided = 0;
    eachPage(state, corpus().texts,
             [&](const String& text) { decided += !filter.languageOfText(text).isAbsent(); });
    state.counters["decided"] = static_cast<double>(decided / state.iterations());
}
BENCHMARK(languageVelmo)->Name("language/velmo")->Unit(benchmark::kMillisecond);

void languageVelmoToday(benchmark::State& state) {
    const LanguageFilter filter(languageLists(), LanguageRules::today());
    std::size_t decided = 0;
    eachPage(state, corpus().texts,
             [&](const String& text) { decided += !filter.languageOfText(text).isAbsent(); });
    state.counters["decided"] = static_cast<double>(decided / state.iterations());
}
BENCHMARK(languageVelmoToday)->Name("language-web/velmo")->Unit(benchmark::kMillisecond);

void languageCld2(benchmark::State& state) {
    std::size_t decided = 0;
    eachPage(state, corpus().textsUtf8, [&](const std::string& text) {
        bool isReliable = false;
        CLD2::DetectLanguage(text.data(), static_cast<int>(text.size()), true, &isReliable);
        decided += isReliable;
    });
    state.counters["decided"] = static_cast<double>(decided / state.iterations());
}
BENCHMARK(languageCld2)->Name("language/cld2")->Unit(benchmark::kMillisecond);
BENCHMARK(languageCld2)->Name("language-web/cld2")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmo::bench
