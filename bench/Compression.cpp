// 100 MB of pages inflated in memory, beside the plain loop over zlib with the same portion.
#include <benchmark/benchmark.h>
#include <zlib.h>

#include <array>

#include <velmocore/storage/Compression.h>

#include "Corpus.h"

namespace velmo::bench {
namespace {

constexpr std::size_t Size = 100'000'000;

const Data& packed() {
    static const Data data = [] {
        Data pages;
        pages.reserve(Size);
        while (pages.size() < Size)
            for (const std::string& page : corpus().pages)
                pages.insert(pages.end(), page.begin(), page.end());
        return *dataByGzippingData(pages);
    }();
    return data;
}

void inflateVelmo(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(dataByInflatingData(packed()));
}
BENCHMARK(inflateVelmo)->Name("inflate/velmo")->Unit(benchmark::kMillisecond);

void inflateZlib(benchmark::State& state) {
    for (auto _ : state) {
        Data out;
        std::array<std::uint8_t, 16384> portion;
        z_stream stream = {};
        stream.next_in = const_cast<Bytef*>(packed().data());
        stream.avail_in = static_cast<uInt>(packed().size());
        inflateInit2(&stream, 47);
        for (int status = Z_OK; status == Z_OK;) {
            stream.next_out = portion.data();
            stream.avail_out = portion.size();
            status = inflate(&stream, Z_NO_FLUSH);
            out.insert(out.end(), portion.begin(), portion.end() - stream.avail_out);
        }
        inflateEnd(&stream);
        benchmark::DoNotOptimize(out);
    }
}
BENCHMARK(inflateZlib)->Name("inflate/zlib-loop")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmo::bench
