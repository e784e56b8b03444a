// Pages in a store searched, beside ripgrep over the same texts as files and the index of SQLite's
// FTS5. The texts have the words of examples/site, shuffled, and each some names of its own, as the
// words of a collection never come to an end. VELMO_SEARCH_MB tells how many megabytes of them are
// made; all are in the page cache. What is measured of ours includes opening the store.
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>

#include <velmocore/gather/PageSearch.h>
#include <velmocore/words/Words.h>

#include "Corpus.h"

namespace velmo::bench {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t ShortestPage = 2000, LongestPage = 30000;
/// One page in so many has the rare word.
constexpr std::size_t Rarity = 5000;
constexpr const char* RareWord = "Xylographer";

std::size_t bytesWanted() {
    const char* megabytes = std::getenv("VELMO_SEARCH_MB");
    return (megabytes ? std::strtoull(megabytes, nullptr, 10) : 20) * 1'000'000;
}

/// Texts, one after the other.
class Texts {
public:
    Texts() {
        for (const String& text : corpus().texts) {
            std::vector<std::string> words;
            for (const String& word : wordsUsingWhiteSeparation(text)) words.push_back(word.utf8());
            if (words.size() > 50) pages_.push_back(std::move(words));
        }
    }

    std::string next() {
        const auto& own = pages_[random_() % pages_.size()];
        const std::size_t size = ShortestPage + random_() % (LongestPage - ShortestPage);
        std::string text = name() + " " + own[random_() % own.size()] + "\n\n";
        while (text.size() < size) {
            const auto& words = random_() % 4 ? own : pages_[random_() % pages_.size()];
            text += random_() % 50 ? words[random_() % words.size()] : name();
            text += random_() % 12 ? " " : "\n";
        }
        if (number_++ % Rarity == Rarity / 2) text += RareWord;
        return text + "\n";
    }

private:
    std::string name() {
        static constexpr const char* Syllables[] = {"ba", "den", "gor", "hil", "ka",  "lum", "mi",
                                                    "no", "pra", "ris", "su",  "tov", "ul",  "wen"};
        std::string name;
        for (int i = 0; i < 4; ++i) name += Syllables[random_() % std::size(Syllables)];
        return name;
    }

    std::mt19937 random_{1};
    std::vector<std::vector<std::string>> pages_;
    std::size_t number_ = 0;
};

void check(int result, int wanted = SQLITE_OK) {
    if (result != wanted) std::abort();
}

/// The texts in three forms.
class Collection {
public:
    Collection() {
        fs::create_directories(folder_ / "texts");
        check(sqlite3_open((folder_ / "index.db").c_str(), &database_));
        run("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; PRAGMA mmap_size=8000000000;"
            "CREATE VIRTUAL TABLE pages USING fts5(title, body); BEGIN");
        PageStore store = PageStore::openForUpdating(storePath());
        Texts texts;
        for (std::size_t bytes = 0, number = 0; bytes < bytesWanted(); ++number) {
            const std::string text = texts.next();
            bytes += text.size();
            add(store, text, std::to_string(number));
        }
        run("COMMIT; INSERT INTO pages(pages) VALUES('optimize')");
    }
    ~Collection() {
        sqlite3_close(database_);
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }

    fs::path storePath() const { return folder_ / "pages.store"; }
    fs::path textsPath() const { return folder_ / "texts"; }
    fs::path scratchPath() const { return folder_ / "scratch"; }
    sqlite3* database() const { return database_; }

private:
    void run(const char* statements) {
        check(sqlite3_exec(database_, statements, nullptr, nullptr, nullptr));
    }

    void add(PageStore& store, const std::string& text, const std::string& number) {
        // A thousand files a folder.
        const fs::path folder =
            textsPath() / number.substr(0, number.size() - std::min<std::size_t>(3, number.size()));
        fs::create_directories(folder);
        std::ofstream(folder / (number + ".txt"), std::ios::binary) << text;
        const std::string title = text.substr(0, text.find('\n'));
        PageRecord page;
        page.key = String::fromUTF8(number);
        page.url = URL::URLWithString(String::fromUTF8("http://h.org/" + number));
        page.title = String::fromUTF8(title);
        page.text = String::fromUTF8(text);
        page.words = static_cast<std::uint32_t>(numberOfWordsUsingDefaultSeparation(page.text));
        if (store.put(page) != PutResult::Added) std::abort();
        if (!insert_)
            check(sqlite3_prepare_v2(database_, "INSERT INTO pages VALUES(?, ?)", -1, &insert_,
                                     nullptr));
        sqlite3_bind_text(insert_, 1, title.data(), static_cast<int>(title.size()), SQLITE_STATIC);
        sqlite3_bind_text(insert_, 2, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
        check(sqlite3_step(insert_), SQLITE_DONE);
        sqlite3_reset(insert_);
    }

    const fs::path folder_ =
        fs::temp_directory_path() / ("velmo-bench-search-" + std::to_string(getpid()));
    sqlite3* database_ = nullptr;
    sqlite3_stmt* insert_ = nullptr;
};

const Collection& collection() {
    static const Collection made;
    return made;
}

void searchVelmo(benchmark::State& state, const char16_t* query, PageSearchOptions options) {
    const QueryTerms terms(query);
    SearchResult found;
    collection();
    for (auto _ : state) {
        const PageStore stores[] = {PageStore::openForReading(collection().storePath())};
        found = searchPages(stores, terms, options);
        benchmark::DoNotOptimize(found);
    }
    state.counters["pages"] = static_cast<double>(found.pages);
    state.counters["scanned"] = static_cast<double>(found.scanned);
    state.counters["matching"] = static_cast<double>(found.matching);
}

/// The names of the files with a word, without regard to case.
void searchRipgrep(benchmark::State& state, const char* word) {
    const std::string command = std::string("rg --no-config --no-ignore -i -w -l ") + word + " " +
                                collection().textsPath().string() + " > " +
                                collection().scratchPath().string();
    for (auto _ : state)
        if (std::system(command.c_str()) != 0) state.SkipWithError("ripgrep found nothing");
}

void searchSQLite(benchmark::State& state, const char* query) {
    sqlite3_stmt* statement = nullptr;
    check(sqlite3_prepare_v2(collection().database(),
                             "SELECT title, bm25(pages, 5.0, 1.0), snippet(pages, 1, '<', '>', "
                             "'...', 48) FROM pages WHERE pages MATCH ? ORDER BY rank LIMIT 10",
                             -1, &statement, nullptr));
    std::size_t rows = 0;
    for (auto _ : state) {
        sqlite3_bind_text(statement, 1, query, -1, SQLITE_STATIC);
        for (rows = 0; sqlite3_step(statement) == SQLITE_ROW; ++rows)
            benchmark::DoNotOptimize(sqlite3_column_text(statement, 2));
        sqlite3_reset(statement);
    }
    if (rows == 0) state.SkipWithError("SQLite found nothing");
    sqlite3_finalize(statement);
}

const auto add = [](const char* name, auto... arguments) {
    return benchmark::RegisterBenchmark(name, arguments...)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
};

[[maybe_unused]] const auto* registered = [] {
    const PageSearchOptions usual = {}, plain = {.useSignatures = false};
    add("search-rare/velmo", searchVelmo, u"xylographer", usual);
    add("search-rare/ripgrep", searchRipgrep, RareWord);
    add("search-rare/fts5", searchSQLite, "xylographer");
    constexpr auto* SixTerms = u"license NEAR/20 creative module server engine webassembly";
    add("search-six-scanned/velmo", searchVelmo, SixTerms, plain);
    add("search-six-scanned/ripgrep", searchRipgrep, "webassembly");
    add("search-six/velmo", searchVelmo, SixTerms, usual);
    return add("search-six/fts5", searchSQLite,
               "NEAR(license creative, 20) AND module AND server AND engine AND webassembly");
}();

}  // namespace
}  // namespace velmo::bench
