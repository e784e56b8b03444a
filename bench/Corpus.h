// What the benchmarks read: the pages of examples/site, over and over, up to 25 MB; or those
// below the folder that the environment's VELMO_BENCH_SITE names. A page is
// read from the same place each time: it is as warm as one that has just come from the
// network.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

#include <velmocore/platform/String.h>

namespace velmo::bench {

struct Corpus {
    std::vector<std::string> pages;  ///< as they are on disk, in all their charsets
    std::vector<std::string> utf8;   ///< the same pages in UTF-8
    std::vector<String> texts;       ///< their plain text
    std::vector<std::string> textsUtf8;
    std::size_t rounds = 0;  ///< how often all pages make 25 MB
};

/// Read once, at first use.
const Corpus& corpus();

/// Where the lists of languages are. Throws if this program finds none: a road that tells no
/// language would be too fast.
std::string languageLists();

inline std::size_t lengthOf(const std::string& bytes) { return bytes.size(); }
inline std::size_t lengthOf(const String& units) { return units.length(); }

/// Calls work for each element, as many rounds as make 25 MB of pages, and tells the
/// benchmark how many bytes, or units, that was.
template <class Elements, class Work>
void eachPage(benchmark::State& state, const Elements& elements, Work work) {
    std::size_t bytes = 0;
    for (const auto& element : elements) bytes += lengthOf(element);
    const std::size_t rounds = corpus().rounds;
    for (auto _ : state)
        for (std::size_t round = 0; round < rounds; ++round)
            for (const auto& element : elements) work(element);
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes * rounds * state.iterations()));
}

}  // namespace velmo::bench
