// Pages put into a store and read from it, compressed and plain. VELMO_BENCH_PAGES says how many; each
// has a text of about 10 KB, made of the words of real pages, and no two have the same.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <random>

#include <velmocore/gather/PageStore.h>
#include <velmocore/words/Words.h>

#include "Corpus.h"

namespace velmo::bench {
namespace {

std::size_t numberOfPages() {
    const char* number = std::getenv("VELMO_BENCH_PAGES");
    return number ? std::strtoul(number, nullptr, 10) : 10000;
}

/// A file that goes with the program.
struct File {
    const std::string path =
        std::filesystem::temp_directory_path() / ("velmo-bench-pages-" + std::to_string(getpid()));
    ~File() {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
};

/// Real texts with a few words of their own between each two lines.
std::vector<PageRecord> madePages() {
    std::mt19937 random(1);
    std::vector<PageRecord> pages(100);
    for (std::size_t i = 0; i < pages.size(); ++i) {
        std::u16string text;
        while (text.size() < 10000) {
            const String& real = corpus().texts[random() % corpus().texts.size()];
            const std::size_t start = random() % (real.length() + 1);
            text += std::u16string_view(real).substr(start, 1000 + random() % 1000);
            text += u' ';
        }
        pages[i].title = u"A page";
        pages[i].text = text;
        pages[i].words = static_cast<std::uint32_t>(numberOfWordsUsingDefaultSeparation(text));
    }
    return pages;
}

PageRecord numbered(const PageRecord& page, std::size_t number) {
    PageRecord other = page;
    other.key = String::fromUTF8("http://h.org/" + std::to_string(number));
    other.url = URL::URLWithString(other.key);
    other.text = std::u16string(page.text) + std::u16string(other.key);
    return other;
}

std::size_t fill(const std::string& path, bool compress) {
    static const std::vector<PageRecord> pages = madePages();
    std::filesystem::remove(path);
    PageStore store = PageStore::openForUpdating(path);
    std::size_t units = 0;
    for (std::size_t i = 0; i < numberOfPages(); ++i) {
        const PageRecord page = numbered(pages[i % pages.size()], i);
        units += page.text.length();
        if (store.put(page, dataFromPageRecord(page, {.compressText = compress})) !=
            PutResult::Added)
            std::abort();
    }
    if (!store.synchronize()) std::abort();
    return units;
}

void putPages(benchmark::State& state) {
    static const File file;
    std::size_t units = 0;
    for (auto _ : state) units = fill(file.path, state.range(0) != 0);
    state.SetBytesProcessed(static_cast<std::int64_t>(units * state.iterations()));
    state.counters["file"] = static_cast<double>(std::filesystem::file_size(file.path));
}
BENCHMARK(putPages)
    ->Name("pages-put")
    ->ArgName("packed")
    ->Arg(1)
    ->Arg(0)
    ->Unit(benchmark::kMillisecond);

void readPages(benchmark::State& state) {
    static const File files[2];
    const std::string& path = files[state.range(0)].path;
    const std::size_t units = fill(path, state.range(0) != 0);
    for (auto _ : state) {
        std::size_t read = 0;
        const PageStore store = PageStore::openForReading(path);
        store.forEachPage([&](const StoredPage& page) {
            read += page.text().length();
            return true;
        });
        if (read != units) state.SkipWithError("not all was read");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(units * state.iterations()));
}
BENCHMARK(readPages)
    ->Name("pages-read")
    ->ArgName("packed")
    ->Arg(1)
    ->Arg(0)
    ->Unit(benchmark::kMillisecond);

void openPages(benchmark::State& state) {
    static const File file;
    fill(file.path, false);
    for (auto _ : state) benchmark::DoNotOptimize(PageStore::openForReading(file.path));
}
BENCHMARK(openPages)->Name("pages-open")->Unit(benchmark::kMillisecond);

void putUnchanged(benchmark::State& state) {
    static const File file;
    fill(file.path, true);
    const std::vector<PageRecord> pages = madePages();
    PageStore store = PageStore::openForUpdating(file.path);
    for (auto _ : state)
        for (std::size_t i = 0; i < numberOfPages(); ++i)
            if (store.put(numbered(pages[i % pages.size()], i)) != PutResult::Unchanged)
                std::abort();
}
BENCHMARK(putUnchanged)->Name("pages-put-again")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmo::bench
