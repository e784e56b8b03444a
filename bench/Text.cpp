// Work on the plain text of pages, beside RE2, ICU's word break iterator and zlib.
#include <benchmark/benchmark.h>
#include <re2/re2.h>
#include <unicode/ubrk.h>
#include <zlib.h>

#include <memory>
#include <string>
#include <vector>

#include <velmocore/query/WordSearch.h>
#include <velmocore/text/Checksums.h>
#include <velmocore/words/Words.h>

#include "Corpus.h"

namespace velmo::bench {
namespace {

const char* const Words[] = {"server",  "document", "license", "apache", "configuration",
                             "commons", "module",   "request", "kernel", "schnell"};

void wordsVelmo(benchmark::State& state) {
    std::vector<String> words;
    for (const char* word : Words) words.push_back(String::fromUTF8(word));
    std::uint64_t hits = 0;
    eachPage(state, corpus().texts, [&](const String& text) {
        for (const String& word : words) hits += countWord(text, word, Case::Insensitive);
    });
    state.counters["hits"] = static_cast<double>(hits / state.iterations());
}
BENCHMARK(wordsVelmo)->Name("ten-words/velmo")->Unit(benchmark::kMillisecond);

void wordsRe2(benchmark::State& state) {
    std::vector<std::unique_ptr<RE2>> patterns;
    for (const char* word : Words)
        patterns.push_back(std::make_unique<RE2>(std::string("(?i)\\b") + word + "\\b"));
    std::uint64_t hits = 0;
    eachPage(state, corpus().textsUtf8, [&](const std::string& text) {
        for (const auto& pattern : patterns)
            for (re2::StringPiece rest(text); RE2::FindAndConsume(&rest, *pattern);) ++hits;
    });
    state.counters["hits"] = static_cast<double>(hits / state.iterations());
}
BENCHMARK(wordsRe2)->Name("ten-words/re2")->Unit(benchmark::kMillisecond);

void countVelmo(benchmark::State& state) {
    std::uint64_t words = 0;
    eachPage(state, corpus().texts,
             [&](const String& text) { words += numberOfWordsUsingDefaultSeparation(text); });
    state.counters["words"] = static_cast<double>(words / state.iterations());
}
BENCHMARK(countVelmo)->Name("word-count/velmo")->Unit(benchmark::kMillisecond);

void countIcu(benchmark::State& state) {
    UErrorCode status = U_ZERO_ERROR;
    UBreakIterator* iterator = ubrk_open(UBRK_WORD, "en", nullptr, 0, &status);
    std::uint64_t words = 0;
    eachPage(state, corpus().texts, [&](const String& text) {
        ubrk_setText(iterator, text.characters(), static_cast<std::int32_t>(text.length()),
                     &status);
        while (ubrk_next(iterator) != UBRK_DONE)
            words += ubrk_getRuleStatus(iterator) >= UBRK_WORD_NONE_LIMIT;
    });
    ubrk_close(iterator);
    state.counters["words"] = static_cast<double>(words / state.iterations());
}
BENCHMARK(countIcu)->Name("word-count/icu")->Unit(benchmark::kMillisecond);

void crcVelmo(benchmark::State& state) {
    eachPage(state, corpus().pages,
             [](const std::string& page) { benchmark::DoNotOptimize(CRC32(Bytes(page))); });
}
BENCHMARK(crcVelmo)->Name("crc32/velmo")->Unit(benchmark::kMillisecond);

void crcZlib(benchmark::State& state) {
    eachPage(state, corpus().pages, [](const std::string& page) {
        benchmark::DoNotOptimize(::crc32(0, reinterpret_cast<const Bytef*>(page.data()),
                                         static_cast<uInt>(page.size())));
    });
}
BENCHMARK(crcZlib)->Name("crc32/zlib")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmo::bench
