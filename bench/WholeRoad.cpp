// The whole road of a page: decoded, its links resolved and keyed, its text, its words counted, its
// language told and one query asked; beside a chain of what one would take for it, whose links are
// resolved but not keyed. Where the time of the road goes, and how much memory it takes. Bytes a
// second are those of one core.
#include <benchmark/benchmark.h>
#include <cld2/public/compact_lang_det.h>
#include <libxml/HTMLparser.h>
#include <libxml/uri.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <fstream>
#include <string>
#include <unordered_set>
#include <vector>

#include <velmocore/markup/Page.h>
#include <velmocore/query/QueryEvaluation.h>
#include <velmocore/query/QueryTerms.h>
#include <velmocore/text/WebRules.h>
#include <velmocore/url/PageKey.h>
#include <velmocore/words/LanguageFilter.h>
#include <velmocore/words/Words.h>

#include "Corpus.h"
#include "HtmlParse.h"
#include "HyperscanDatabase.h"

namespace velmo::bench {
namespace {

constexpr const char* Address = "http://h.org/a/b";

/// What both sides find, which must be much the same.
struct Found {
    std::size_t links = 0, words = 0, languages = 0, hits = 0;

    void tell(benchmark::State& state) const {
        const auto each = [&](const char* name, std::size_t number) {
            state.counters[name] =
                static_cast<double>(number) / static_cast<double>(state.iterations());
        };
        each("links", links), each("words", words), each("languages", languages);
        each("hits", hits);
    }
};

/// The parts of the road in their order. The page is scanned for its links; the text goes over the
/// same tags.
enum Part { Decoding, Links, Keys, Text, WordCount, Language, Query };
constexpr std::array PartNames = {"decode", "links", "keys", "text", "words", "language", "query"};

/// Times each part of each page's road since the one before was done; of all rounds the shortest
/// time counts, which is what a machine that others use adds least to.
class PartClock {
public:
    explicit PartClock(std::size_t pages) : shortest_(pages) {
        for (Times& times : shortest_) times.fill(Clock::duration::max());
    }

    void start() {
        page_ = (page_ + 1) % shortest_.size();
        last_ = Clock::now();
    }
    void endPart(Part part) {
        const Clock::time_point now = Clock::now();
        Clock::duration& shortest = shortest_[page_][part];
        shortest = std::min(shortest, now - last_);
        last_ = now;
    }
    /// In milliseconds of all rounds.
    void tell(benchmark::State& state) const {
        for (std::size_t part = 0; part < PartNames.size(); ++part) {
            std::chrono::duration<double, std::milli> time{};
            for (const Times& times : shortest_) time += times[part];
            state.counters[PartNames[part]] = time.count() * static_cast<double>(corpus().rounds);
        }
    }

private:
    using Clock = std::chrono::steady_clock;
    using Times = std::array<Clock::duration, PartNames.size()>;

    std::size_t page_ = 0;
    Clock::time_point last_;
    std::vector<Times> shortest_;
};

/// For roads that are timed as a whole.
struct NoClock {
    void start() {}
    void endPart(Part) {}
};

class OwnRoad {
public:
    explicit OwnRoad(const WebRules& web) : web_(web) {}

    template <class Clock = NoClock>
    void follow(const std::string& bytes, Found& found, Clock&& clock = {}) const {
        clock.start();
        const Page page(Bytes(bytes), {.url = url_, .web = web_});
        clock.endPart(Decoding);
        const std::vector<URL>& links = page.links();
        clock.endPart(Links);
        std::unordered_set<String, StringHash> keys;
        for (const URL& link : links) keys.insert(pageKey(link));
        found.links += keys.size();
        clock.endPart(Keys);
        const String& text = page.plainText();
        clock.endPart(Text);
        found.words += numberOfWordsUsingDefaultSeparation(text);
        clock.endPart(WordCount);
        found.languages += !languages_.languageOfText(text).isAbsent();
        clock.endPart(Language);
        found.hits += query_.matchesString(text, Case::Insensitive);
        clock.endPart(Query);
    }

private:
    const WebRules web_;
    const URL url_ = URL::URLWithString(String::fromUTF8(Address));
    const LanguageFilter languages_ = LanguageFilter(languageLists());
    const QueryTerms query_ = QueryTerms(u"apache OR commons OR license OR module");
};

void ownRoad(benchmark::State& state, const WebRules& web) {
    const OwnRoad road(web);
    Found found;
    eachPage(state, corpus().pages, [&](const std::string& page) { road.follow(page, found); });
    found.tell(state);
}
void describedRoad(benchmark::State& state) { ownRoad(state, {}); }
void roadOfToday(benchmark::State& state) { ownRoad(state, WebRules::today()); }
BENCHMARK(describedRoad)->Name("whole-road/velmo")->Unit(benchmark::kMillisecond);
BENCHMARK(roadOfToday)->Name("whole-road-today/velmo")->Unit(benchmark::kMillisecond);

/// What the peer's handlers collect in one pass.
struct Collected {
    std::vector<std::string> links;
    std::string text;
    int raw = 0;
};

bool isNamed(const xmlChar* name, const char* wanted) {
    return !std::strcmp(reinterpret_cast<const char*>(name), wanted);
}
bool isRaw(const xmlChar* name) { return isNamed(name, "script") || isNamed(name, "style"); }

htmlSAXHandler makeHandler() {
    htmlSAXHandler handler{};
    handler.startElement = [](void* data, const xmlChar* name, const xmlChar** attributes) {
        auto& page = *static_cast<Collected*>(data);
        page.raw += isRaw(name);
        if (!isNamed(name, "a") && !isNamed(name, "area")) return;
        for (; attributes && attributes[0]; attributes += 2)
            if (isNamed(attributes[0], "href") && attributes[1])
                page.links.emplace_back(reinterpret_cast<const char*>(attributes[1]));
    };
    handler.endElement = [](void* data, const xmlChar* name) {
        static_cast<Collected*>(data)->raw -= isRaw(name);
    };
    handler.characters = [](void* data, const xmlChar* text, int length) {
        auto& page = *static_cast<Collected*>(data);
        if (page.raw <= 0)
            page.text.append(reinterpret_cast<const char*>(text), static_cast<std::size_t>(length));
    };
    return handler;
}

Collected collectedOf(const std::string& bytes, htmlSAXHandler& handler) {
    Collected page;
    parseHtml(bytes, handler, page);
    return page;
}

/// Words as a simple loop has them.
std::size_t wordsOf(const std::string& text) {
    std::size_t words = 0;
    bool inWord = false;
    for (const char byte : text) {
        const bool isSpace = static_cast<unsigned char>(byte) <= ' ';
        words += !isSpace && !inWord;
        inWord = !isSpace;
    }
    return words;
}

/// Links are resolved, but no key is made of them.
void chain(benchmark::State& state) {
    htmlSAXHandler handler = makeHandler();
    const auto patterns = HyperscanDatabase::ofWords({"apache", "commons", "license", "module"});
    Found found;
    eachPage(state, corpus().pages, [&](const std::string& bytes) {
        const Collected page = collectedOf(bytes, handler);
        std::unordered_set<std::string> keys;
        for (const std::string& link : page.links) {
            xmlChar* url = xmlBuildURI(reinterpret_cast<const xmlChar*>(link.c_str()),
                                       reinterpret_cast<const xmlChar*>(Address));
            if (url) keys.emplace(reinterpret_cast<const char*>(url));
            xmlFree(url);
        }
        bool isReliable = false;
        CLD2::DetectLanguage(page.text.data(), static_cast<int>(page.text.size()), true,
                             &isReliable);
        found.links += keys.size();
        found.words += wordsOf(page.text);
        found.languages += isReliable;
        found.hits += patterns.anyIn(page.text);
    });
    found.tell(state);
}
BENCHMARK(chain)->Name("whole-road/libxml2+cld2+hyperscan")->Unit(benchmark::kMillisecond);

/// The own road with the time of each part.
void roadParts(benchmark::State& state, const WebRules& web) {
    const OwnRoad road(web);
    Found found;
    PartClock clock(corpus().pages.size());
    eachPage(state, corpus().pages,
             [&](const std::string& page) { road.follow(page, found, clock); });
    clock.tell(state);
}
void partsOfRoad(benchmark::State& state) { roadParts(state, {}); }
void partsOfRoadToday(benchmark::State& state) { roadParts(state, WebRules::today()); }
BENCHMARK(partsOfRoad)->Name("whole-road-parts/velmo")->Unit(benchmark::kMillisecond);
BENCHMARK(partsOfRoadToday)->Name("whole-road-parts-today/velmo")->Unit(benchmark::kMillisecond);

/// What the kernel says of this process, in bytes: VmRSS, or VmHWM, the most since it was reset.
double memoryOf(const char* name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(name))
            return std::strtod(line.c_str() + std::strlen(name) + 1, nullptr) * 1024;
    return 0;
}

/// The most memory that the road of one long page takes beside the page, a byte of it.
void roadMemory(benchmark::State& state) {
    constexpr std::size_t Length = 64'000'000;
    const auto& pages = corpus().utf8;
    const auto most = std::ranges::max_element(pages, {}, [&](const std::string& page) {
        return corpus().texts[static_cast<std::size_t>(&page - pages.data())].length();
    });
    std::string page;
    while (page.size() < Length) page += *most;
    const OwnRoad road({});
    Found found;
    for (auto _ : state) {
        std::ofstream("/proc/self/clear_refs") << 5 << std::flush;
        const double before = memoryOf("VmRSS:");
        road.follow(page, found);
        state.counters["bytes a byte"] =
            (memoryOf("VmHWM:") - before) / static_cast<double>(page.size());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(page.size() * state.iterations()));
}
BENCHMARK(roadMemory)
    ->Name("whole-road-memory/velmo")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

}  // namespace
}  // namespace velmo::bench
