// Peer: simdutf, UTF-8 to UTF-16. It gives up at the first fault, where we put replacement characters;
// these texts have none.
#include <benchmark/benchmark.h>
#include <simdutf.h>

#include <algorithm>
#include <memory>

#include "peers/Inputs.h"

namespace velmo::bench {
namespace {

std::size_t convert(const std::string& text, char16_t* units) {
    const simdutf::result result =
        simdutf::convert_utf8_to_utf16le_with_errors(text.data(), text.size(), units);
    benchmark::DoNotOptimize(units);
    return result.error == simdutf::SUCCESS ? result.count : 0;
}

/// Into a new array, as we do, of as many units as there are bytes: none is counted before.
void utf8(benchmark::State& state, const std::vector<std::string>& texts) {
    countEachPage(state, texts, [](const std::string& text) {
        return convert(text, std::unique_ptr<char16_t[]>(new char16_t[text.size()]).get());
    });
}
void utf8Pages(benchmark::State& state) { utf8(state, corpus().utf8); }
void utf8Chinese(benchmark::State& state) { utf8(state, chineseText()); }
void utf8Russian(benchmark::State& state) { utf8(state, russianText()); }
BENCHMARK(utf8Pages)->Name("utf8-pages/simdutf")->Unit(benchmark::kMillisecond);
BENCHMARK(utf8Chinese)->Name("utf8-chinese/simdutf")->Unit(benchmark::kMillisecond);
BENCHMARK(utf8Russian)->Name("utf8-russian/simdutf")->Unit(benchmark::kMillisecond);

/// Into one array that is kept: less than our side does, which makes a string. What its kernel
/// alone takes.
void utf8Kept(benchmark::State& state, const std::vector<std::string>& texts) {
    std::size_t most = 0;
    for (const std::string& text : texts) most = std::max(most, text.size());
    const std::unique_ptr<char16_t[]> kept(new char16_t[most]);
    countEachPage(state, texts, [&](const std::string& text) { return convert(text, kept.get()); });
}
void keptPages(benchmark::State& state) { utf8Kept(state, corpus().utf8); }
void keptChinese(benchmark::State& state) { utf8Kept(state, chineseText()); }
void keptRussian(benchmark::State& state) { utf8Kept(state, russianText()); }
BENCHMARK(keptPages)->Name("utf8-pages/simdutf-kept")->Unit(benchmark::kMillisecond);
BENCHMARK(keptChinese)->Name("utf8-chinese/simdutf-kept")->Unit(benchmark::kMillisecond);
BENCHMARK(keptRussian)->Name("utf8-russian/simdutf-kept")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmo::bench
