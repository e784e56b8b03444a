// Peer: the tokenizer of html5ever, called from Rust (html5ever/peer.rs). It reads UTF-8 and gives UTF-8;
// every attribute is decoded. Links are given as they stand, each as often as it stands there;
// text is not changed but for entities and line ends.
#include <benchmark/benchmark.h>

#include "peers/Inputs.h"

extern "C" std::size_t peer_html5ever(const char* page, std::size_t length, bool links);

namespace velmo::bench {
namespace {

void links(benchmark::State& state) {
    countEachPage(state, pagesInUtf8(), [](const std::string& page) {
        return peer_html5ever(page.data(), page.size(), true);
    });
}
BENCHMARK(links)->Name("links/html5ever")->Unit(benchmark::kMillisecond);

void plainText(benchmark::State& state) {
    countEachPage(state, pagesInUtf8(), [](const std::string& page) {
        return peer_html5ever(page.data(), page.size(), false);
    });
}
BENCHMARK(plainText)->Name("plain-text/html5ever")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmo::bench
