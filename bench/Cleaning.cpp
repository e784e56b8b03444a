// White space and case of page texts, beside loops over ICU's tests of characters.
#include <benchmark/benchmark.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <string>
#include <vector>

#include <velmocore/text/Collapsing.h>
#include <velmocore/text/ConversionTables.h>
#include <velmocore/text/Folding.h>
#include <velmocore/text/Trimming.h>

#include "Corpus.h"

namespace velmo::bench {
namespace {

void collapseVelmo(benchmark::State& state) {
    eachPage(state, corpus().texts, [](const String& text) {
        benchmark::DoNotOptimize(stringByRemovingMultipleWhiteSpaces(text));
    });
}
BENCHMARK(collapseVelmo)->Name("collapse/velmo")->Unit(benchmark::kMillisecond);

void collapseIcu(benchmark::State& state) {
    eachPage(state, corpus().texts, [](const String& text) {
        std::u16string out;
        bool isInRun = false;
        for (const char16_t unit : text) {
            const bool isWhite = u_isWhitespace(unit);
            if (!isWhite)
                out += unit;
            else if (!isInRun)
                out += u' ';
            isInRun = isWhite;
        }
        benchmark::DoNotOptimize(out);
    });
}
BENCHMARK(collapseIcu)->Name("collapse/icu-loop")->Unit(benchmark::kMillisecond);

void lowerVelmo(benchmark::State& state) {
    eachPage(state, corpus().texts, [](const String& text) {
        benchmark::DoNotOptimize(stringByApplyingConversionTable(text, &lowerCharsTable()));
    });
}
BENCHMARK(lowerVelmo)->Name("lower-case/velmo")->Unit(benchmark::kMillisecond);

void lowerIcu(benchmark::State& state) {
    std::vector<char16_t> out(1'000'000);
    eachPage(state, corpus().texts, [&](const String& text) {
        UErrorCode status = U_ZERO_ERROR;
        benchmark::DoNotOptimize(
            u_strFoldCase(out.data(), static_cast<std::int32_t>(out.size()), text.characters(),
                          static_cast<std::int32_t>(text.length()), U_FOLD_CASE_DEFAULT, &status));
    });
}
BENCHMARK(lowerIcu)->Name("lower-case/icu")->Unit(benchmark::kMillisecond);

// Nothing to trim off: the time must not depend on the length. Here the peers are longer texts.
template <std::size_t Length>
void trim(benchmark::State& state) {
    const String text = std::u16string(Length, u'x');
    for (auto _ : state) benchmark::DoNotOptimize(stringByTrimmingSpacesAndFeeds(text, true));
}
BENCHMARK(trim<1>)->Name("trim-nothing/velmo");
BENCHMARK(trim<100>)->Name("trim-nothing/100");
BENCHMARK(trim<10'000>)->Name("trim-nothing/10k");
BENCHMARK(trim<1'000'000>)->Name("trim-nothing/1M");
BENCHMARK(trim<10'000'000>)->Name("trim-nothing/10M");

}  // namespace
}  // namespace velmo::bench
