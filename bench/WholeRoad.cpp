// The whole road of a page: decoded, its links resolved and keyed, its text, its words counted, its
// language told and one query asked; beside a chain of what one would take for it. And how much
// memory it takes. Bytes a second are those of one core.
#include <benchmark/benchmark.h>
#include <cld2/public/compact_lang_det.h>
#include <libxml/HTMLparser.h>
#include <libxml/uri.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <string>
#include <unordered_set>
#include <vector>

#include <velmocore/markup/Page.h>
#include <velmocore/platform/Resources.h>
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

class OwnRoad {
public:
    explicit OwnRoad(const WebRules& web) : web_(web) {}

    void follow(const std::string& bytes, Found& found) const {
        const Page page(Bytes(bytes), {.url = url_, .web = web_});
        std::unordered_set<String, StringHash> keys;
        for (const URL& link : page.links()) keys.insert(pageKey(link));
        const String& text = page.plainText();
        found.links += keys.size();
        found.words += numberOfWordsUsingDefaultSeparation(text);
        found.languages += !languages_.languageOfText(text).isAbsent();
        found.hits += query_.matchesString(text, Case::Insensitive);
    }

private:
    const WebRules web_;
    const URL url_ = URL::URLWithString(String::fromUTF8(Address));
    const LanguageFilter languages_ = LanguageFilter(velmoResourcesDirectory());
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

/// Links are resolved, but not simplified.
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
