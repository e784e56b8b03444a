// What both sides read. A page of the corpus counts here only if it is UTF-8, since these peers read
// nothing else; our side finds that out by itself, as for any page.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

#include "Corpus.h"

namespace velmo::bench {

/// The pages that are UTF-8.
const std::vector<std::string>& pagesInUtf8();

/// 64 KB of lines of the plain text that has most Chinese characters, and of that with most Cyrillic
/// letters.
const std::vector<std::string>& chineseText();
const std::vector<std::string>& russianText();

/// One text for both sides.
struct Text {
    String units;
    std::string utf8;
};

constexpr char PageURL[] = "https://www.example.org/docs/2.4/en/mod/page.html";

/// The links of all pages, as they stand there, and resolved against PageURL.
const std::vector<Text>& linksOfPages();
const std::vector<Text>& urlsOfLinks();

/// Calls work for each page, as eachPage() does, and tells the benchmark what each found: whether
/// both sides did the same is seen there. Work gives a number.
template <class Work>
void countEachPage(benchmark::State& state, const std::vector<std::string>& pages, Work work) {
    std::uint64_t found = 0;
    eachPage(state, pages, [&](const std::string& page) { found += work(page); });
    state.counters["found"] = static_cast<double>(found / state.iterations() / corpus().rounds);
}

/// The texts many times over in an order that no branch predictor learns by heart.
std::vector<const Text*> shuffled(const std::vector<Text>& texts);

/// The same for texts: work gives the length of a URL, 0 if it finds none.
template <class Work>
void countEachText(benchmark::State& state, const std::vector<Text>& texts, Work work) {
    const std::vector<const Text*> order = shuffled(texts);
    std::uint64_t urls = 0, units = 0;
    for (auto _ : state)
        for (const Text* text : order) {
            const std::size_t length = work(*text);
            urls += length > 0;
            units += length;
        }
    state.counters["found"] = static_cast<double>(urls / state.iterations());
    state.counters["units"] = static_cast<double>(units / state.iterations());
    state.SetItemsProcessed(static_cast<std::int64_t>(order.size() * state.iterations()));
}

}  // namespace velmo::bench
