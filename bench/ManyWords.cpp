// Many words at once, beside Hyperscan and RE2. Each side is made ready once, ahead of the time
// that is measured, and is asked for each text whether any of the words stands in it, without
// regard to case; it may stop at the first one. The last case asks for all places instead.
//
// A word ends for the peers at \b, for which _ is part of a word and a letter outside ASCII is
// none; the words are chosen so that this makes no difference to the counts.
#include <benchmark/benchmark.h>
#include <re2/re2.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <velmocore/query/QueryEvaluation.h>
#include <velmocore/query/QueryHits.h>
#include <velmocore/query/QueryTerms.h>

#include "Corpus.h"
#include "HyperscanDatabase.h"

namespace velmo::bench {
namespace {

using Words = std::vector<std::string>;

bool isLetter(char c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; }
bool isPartOfWord(char c) {
    return isLetter(c) || (c >= '0' && c <= '9') || c == '_' || static_cast<signed char>(c) < 0;
}

using Counts = std::map<std::string, std::size_t>;

/// How often each row of units that are part of words stands in the texts, in lower case.
Counts countsOf(bool (*isPart)(char)) {
    Counts result;
    for (const std::string& text : corpus().textsUtf8) {
        for (std::size_t i = 0, end = 0; i < text.size(); i = end + 1) {
            for (end = i; end < text.size() && isPart(text[end]);) ++end;
            std::string word = text.substr(i, end - i);
            for (char& c : word)
                if (isLetter(c)) c = static_cast<char>(c | 0x20);
            ++result[word];
        }
    }
    return result;
}

/// The words of ASCII letters that stand alone wherever they stand.
const Counts& wordCounts() {
    static const Counts counts = [] {
        const Counts pieces = countsOf(isLetter);
        Counts whole = countsOf(isPartOfWord);
        std::erase_if(whole, [&](const auto& entry) {
            const auto piece = pieces.find(entry.first);
            return piece == pieces.end() || piece->second != entry.second;
        });
        return whole;
    }();
    return counts;
}

/// Words that stand in the texts but once, from all over the alphabet.
Words rareWords(std::size_t count) {
    Words once, result;
    for (const auto& [word, times] : wordCounts())
        if (times == 1 && word.size() >= 4) once.push_back(word);
    for (std::size_t i = 0; i < count; ++i) result.push_back(once[i * once.size() / count]);
    return result;
}

/// Words that begin and end as those of the texts do, and are none of them.
Words absentWords(std::size_t count) {
    Words all;
    for (const auto& [word, times] : wordCounts())
        if (word.size() >= 5) all.push_back(word);
    std::mt19937 random(17);
    std::set<std::string> made;
    while (made.size() < count) {
        const std::string &head = all[random() % all.size()], &tail = all[random() % all.size()];
        std::string word = head.substr(0, 3) + tail.substr(tail.size() / 2);
        if (!wordCounts().contains(word)) made.insert(std::move(word));
    }
    return {made.begin(), made.end()};
}

Words commonWords(std::size_t count) {
    std::vector<std::pair<std::size_t, std::string>> byCount;
    for (const auto& [word, times] : wordCounts())
        if (word.size() >= 2) byCount.emplace_back(times, word);
    std::ranges::sort(byCount, std::greater<>());
    Words result;
    for (std::size_t i = 0; i < count; ++i) result.push_back(byCount[i].second);
    return result;
}

Words sixRareWords() { return {"zebra", "quantum", "violin", "harbour", "saffron", "glacier"}; }
Words tenWords() {
    Words words = sixRareWords();
    words.insert(words.end(), {"walnut", "trumpet", "orchid", "lantern"});
    return words;
}

std::string joined(const Words& words, std::string_view separator) {
    std::string result;
    for (const std::string& word : words) result.append(result.empty() ? "" : separator) += word;
    return result;
}

/// Adds up what ask(text) gives.
template <class Texts, class Ask>
void count(benchmark::State& state, const Texts& texts, Ask ask) {
    std::size_t hits = 0;
    eachPage(state, texts, [&](const auto& text) { hits += ask(text); });
    state.counters["hits"] = static_cast<double>(hits / state.iterations());
}

/// In quotes, as common words are operators as well.
QueryTerms anyOf(const Words& words) {
    return QueryTerms(String::fromUTF8("\"" + joined(words, "\" OR \"") + "\""));
}

void anyVelmo(benchmark::State& state, Words (*words)()) {
    const QueryTerms query = anyOf(words());
    count(state, corpus().texts,
          [&](const String& text) { return query.matchesString(text, Case::Insensitive); });
}

void anyHyperscan(benchmark::State& state, Words (*words)()) {
    const auto database = HyperscanDatabase::ofWords(words());
    count(state, corpus().textsUtf8, [&](const std::string& text) { return database.anyIn(text); });
}

void anyRe2(benchmark::State& state, Words (*words)()) {
    RE2::Options options;
    options.set_case_sensitive(false);
    options.set_max_mem(256 << 20);
    const RE2 expression("\\b(?:" + joined(words(), "|") + ")\\b", options);
    count(state, corpus().textsUtf8,
          [&](const std::string& text) { return RE2::PartialMatch(text, expression); });
}

void allVelmo(benchmark::State& state, Words (*words)()) {
    const QueryTerms query = anyOf(words());
    count(state, corpus().texts, [&](const String& text) {
        return hitsOfQueryTerms(text, query, Case::Insensitive).size();
    });
}

void allHyperscan(benchmark::State& state, Words (*words)()) {
    const auto database = HyperscanDatabase::ofWords(words());
    count(state, corpus().textsUtf8, [&](const std::string& text) {
        std::size_t places = 0;
        database.scan(text, [&](unsigned) { return ++places, false; });
        return places;
    });
}

using Run = void (*)(benchmark::State&, Words (*)());

void add(const std::string& name, Run run, Words (*words)()) {
    benchmark::RegisterBenchmark(name.c_str(), run, words)->Unit(benchmark::kMillisecond);
}
void addAny(const std::string& name, Words (*words)()) {
    add(name + "/velmo", anyVelmo, words);
    add(name + "/hyperscan", anyHyperscan, words);
    add(name + "/re2", anyRe2, words);
}

[[maybe_unused]] const bool isRegistered = [] {
    addAny("words-6-rare", sixRareWords);
    addAny("words-10", tenWords);
    addAny("words-100-rare", [] { return rareWords(100); });
    addAny("words-100-absent", [] { return absentWords(100); });
    addAny("words-100-common", [] { return commonWords(100); });
    addAny("words-1000", [] { return absentWords(1000); });
    add("words-100-places/velmo", allVelmo, [] { return rareWords(100); });
    add("words-100-places/hyperscan", allHyperscan, [] { return rareWords(100); });
    return true;
}();

}  // namespace
}  // namespace velmo::bench
