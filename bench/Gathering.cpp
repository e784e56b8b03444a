// A folder of pages gathered into a store, beside what one would write of two libraries: the text of
// each page by libxml2, and a full-text table of SQLite. VELMO_BENCH_GATHER says how many MB; the
// pages are those of examples/site with words of their own, so that no two have the same text.
#include <benchmark/benchmark.h>
#include <libxml/HTMLparser.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>

#include <velmocore/gather/FolderSource.h>
#include <velmocore/gather/Gathering.h>
#include <velmocore/platform/Log.h>
#include <velmocore/words/LanguageFilter.h>

#include "Corpus.h"
#include "HtmlParse.h"

namespace velmo::bench {
namespace {

namespace fs = std::filesystem;

std::size_t wantedBytes() {
    const char* megabytes = std::getenv("VELMO_BENCH_GATHER");
    return (megabytes ? std::strtoul(megabytes, nullptr, 10) : 20) * 1000000;
}

std::string ownWords(std::mt19937& random) {
    constexpr const char* Words[] = {"tea", "cup", "ferret", "river", "stone", "letter", "signal"};
    std::string words = "<p>";
    for (int i = 0; i < 60; ++i)
        words += Words[random() % std::size(Words)] + std::to_string(random() % 100000) + " ";
    return words + "</p>";
}

/// Those that say so, or nothing, of themselves: a peer that goes by another charset would end early.
std::vector<std::string> pagesInUTF8() {
    std::vector<std::string> pages;
    for (std::size_t i = 0; i < corpus().pages.size(); ++i)
        if (corpus().pages[i] == corpus().utf8[i]) pages.push_back(corpus().pages[i]);
    return pages;
}

/// Made at first use, and gone with the program.
struct Folder {
    const fs::path path =
        fs::temp_directory_path() / ("velmo-bench-gather-" + std::to_string(getpid()));
    const fs::path pages = path / "pages", store = path / "store";
    std::size_t bytes = 0, count = 0;

    Folder() {
        const std::vector<std::string> own = pagesInUTF8();
        std::mt19937 random(1);
        for (const std::size_t wanted = wantedBytes(); bytes < wanted; ++count) {
            std::string page = own[count % own.size()];
            page.insert(std::min(page.rfind("</body>"), page.size()), ownWords(random));
            const fs::path folder = pages / std::to_string(count / 1000);
            fs::create_directories(folder);
            std::ofstream(folder / (std::to_string(count) + ".html"), std::ios::binary) << page;
            bytes += page.size();
        }
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
};

const Folder& folder() {
    static const Folder folder;
    return folder;
}

void gatherVelmo(benchmark::State& state) {
    setLogHandler([](std::string_view) {});
    const LanguageFilter languages = LanguageFilter(languageLists());
    for (auto _ : state) {
        fs::remove(folder().store);
        FolderSource source(folder().pages.string(),
                            {.base = URL::URLWithString(u"http://h.org/")});
        PageStore store = PageStore::openForUpdating(folder().store.string());
        const GatherSummary summary = gatherPages(
            source, {.reading = {.languages = &languages}, .threads = 2, .store = &store},
            [](GatheredPage&) { return true; });
        if (summary.pages != folder().count || !summary.isStored)
            state.SkipWithError("not all was gathered");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(folder().bytes * state.iterations()));
}
BENCHMARK(gatherVelmo)
    ->Name("gather/velmo")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1)
    ->Repetitions(3);

/// What the peer's handlers collect of a page.
struct Collected {
    std::string title, text;
    int raw = 0;
    bool isInTitle = false;
};

bool isNamed(const xmlChar* name, const char* wanted) {
    return !std::strcmp(reinterpret_cast<const char*>(name), wanted);
}
bool isRaw(const xmlChar* name) { return isNamed(name, "script") || isNamed(name, "style"); }

htmlSAXHandler makeHandler() {
    htmlSAXHandler handler{};
    handler.startElement = [](void* data, const xmlChar* name, const xmlChar**) {
        auto& page = *static_cast<Collected*>(data);
        page.raw += isRaw(name);
        if (isNamed(name, "title")) page.isInTitle = true;
    };
    handler.endElement = [](void* data, const xmlChar* name) {
        auto& page = *static_cast<Collected*>(data);
        page.raw -= isRaw(name);
        if (isNamed(name, "title")) page.isInTitle = false;
    };
    handler.characters = [](void* data, const xmlChar* text, int length) {
        auto& page = *static_cast<Collected*>(data);
        if (page.raw > 0) return;
        const std::string_view piece(reinterpret_cast<const char*>(text),
                                     static_cast<std::size_t>(length));
        page.text += piece;
        if (page.isInTitle) page.title += piece;
    };
    return handler;
}

Collected collectedOf(const std::string& bytes) {
    static htmlSAXHandler handler = makeHandler();
    Collected page;
    parseHtml(bytes, handler, page);
    return page;
}

/// A table of pages with an index of their words.
class Table {
public:
    explicit Table(const std::string& path) {
        sqlite3_open(path.c_str(), &database_);
        execute("CREATE VIRTUAL TABLE page USING fts5(url, title, text)");
        execute("BEGIN");
        sqlite3_prepare_v2(database_, "INSERT INTO page VALUES (?, ?, ?)", -1, &insert_, nullptr);
    }
    ~Table() {
        execute("COMMIT");
        sqlite3_finalize(insert_);
        sqlite3_close(database_);
    }
    void add(const std::string& url, const Collected& page) {
        bind(1, url), bind(2, page.title), bind(3, page.text);
        sqlite3_step(insert_);
        sqlite3_reset(insert_);
    }

private:
    void bind(int column, const std::string& text) {
        sqlite3_bind_text(insert_, column, text.data(), static_cast<int>(text.size()),
                          SQLITE_STATIC);
    }
    void execute(const char* statement) {
        sqlite3_exec(database_, statement, nullptr, nullptr, nullptr);
    }

    sqlite3* database_ = nullptr;
    sqlite3_stmt* insert_ = nullptr;
};

void gatherPeers(benchmark::State& state) {
    const std::string path = folder().path / "table";
    for (auto _ : state) {
        fs::remove(path);
        Table table(path);
        for (const auto& entry : fs::recursive_directory_iterator(folder().pages)) {
            if (!entry.is_regular_file()) continue;
            std::ifstream file(entry.path(), std::ios::binary);
            std::string bytes(entry.file_size(), '\0');
            file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
            table.add(entry.path(), collectedOf(bytes));
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(folder().bytes * state.iterations()));
}
BENCHMARK(gatherPeers)
    ->Name("gather/libxml2+fts5")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1)
    ->Repetitions(3);

}  // namespace
}  // namespace velmo::bench
