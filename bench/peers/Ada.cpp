// Peer: ada, URLs by the URL standard. Parsing normalises: hosts, escapes, dot segments, ports.
// It reads UTF-8 and keeps anchors; so does our side where it follows the same standard ("-web"). Our
// own rules also put right what people get wrong, and leave out what is no link to a page.
#include <ada.h>
#include <benchmark/benchmark.h>

#include "peers/Inputs.h"

namespace velmo::bench {
namespace {

void resolve(benchmark::State& state) {
    const auto page = ada::parse<ada::url_aggregator>(PageURL);
    countEachText(state, linksOfPages(), [&](const Text& link) -> std::size_t {
        const auto url = ada::parse<ada::url_aggregator>(link.utf8, &*page);
        return url ? url->get_href().size() : 0;
    });
}
BENCHMARK(resolve)->Name("resolve/ada")->Unit(benchmark::kMillisecond);
BENCHMARK(resolve)->Name("resolve-web/ada")->Unit(benchmark::kMillisecond);

/// Nothing is cut off, no escape is resolved.
void normalize(benchmark::State& state) {
    countEachText(state, urlsOfLinks(), [](const Text& text) -> std::size_t {
        const auto url = ada::parse<ada::url_aggregator>(text.utf8);
        return url ? url->get_href().size() : 0;
    });
}
BENCHMARK(normalize)->Name("normalize-web/ada")->Unit(benchmark::kMillisecond);
BENCHMARK(normalize)->Name("simplify/ada")->Unit(benchmark::kMillisecond);
BENCHMARK(normalize)->Name("page-key/ada")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmo::bench
