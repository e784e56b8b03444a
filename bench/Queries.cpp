// Queries and excerpts, beside Xapian, Hyperscan and SQLite's full-text search.
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <xapian.h>

#include <stdexcept>
#include <string>
#include <vector>

#include <velmocore/query/Occurrences.h>
#include <velmocore/query/QueryEvaluation.h>
#include <velmocore/query/QueryTerms.h>

#include "Corpus.h"
#include "HyperscanDatabase.h"

namespace velmo::bench {
namespace {

// Parsing.

const char* const Queries[] = {
    "(apache OR nginx) \"configuration file\" module -windows request",
    "license AND (commons OR creative) \"public domain\" author work",
    "\"web server\" (virtual OR dedicated) host NEAR/5 address name",
    "(document OR page) title \"style sheet\" script -frame link",
    "kernel (driver OR module) NOT network \"source code\" release",
    "(\"first page\" OR \"last page\") index chapter note author",
};

void parseVelmo(benchmark::State& state) {
    std::vector<String> queries;
    for (const char* query : Queries) queries.push_back(String::fromUTF8(query));
    for (auto _ : state)
        for (const String& query : queries) benchmark::DoNotOptimize(QueryTerms(query));
}
BENCHMARK(parseVelmo)->Name("query-parse/velmo")->Unit(benchmark::kMicrosecond);

void parseXapian(benchmark::State& state) {
    Xapian::QueryParser parser;
    const std::vector<std::string> queries(std::begin(Queries), std::end(Queries));
    for (auto _ : state)
        for (const std::string& query : queries)
            benchmark::DoNotOptimize(parser.parse_query(query));
}
BENCHMARK(parseXapian)->Name("query-parse/xapian")->Unit(benchmark::kMicrosecond);

// Matching: whether a text holds the words of a query. In the first case one word decides
// for most texts; in the second, all texts are read for all words to the end.

struct MatchCase {
    const char16_t* query;
    const char* words[6];
    const char* combination;
    unsigned negated = 0;  // the number of a word that must not occur, and is in no combination
};
constexpr MatchCase SomeHold = {u"(apache OR commons) (license OR document) module server",
                                {"apache", "commons", "license", "document", "module", "server"},
                                "(1|2)&(3|4)&5&6"};
/// Hyperscan has no word for what stands near; it is asked for the same words anywhere.
constexpr MatchCase NearAndNot = {u"(apache OR commons) license -windows (server NEAR/10 module)",
                                  {"apache", "commons", "license", "windows", "server", "module"},
                                  "(1|2)&3&5&6",
                                  4};
constexpr MatchCase NoneHolds = {u"zebra OR quantum OR violin OR harbour OR saffron OR glacier",
                                 {"zebra", "quantum", "violin", "harbour", "saffron", "glacier"},
                                 "1|2|3|4|5|6"};

void matchVelmo(benchmark::State& state, const MatchCase& c) {
    const QueryTerms query(c.query);
    std::size_t hits = 0;
    eachPage(state, corpus().texts,
             [&](const String& text) { hits += query.matchesString(text, Case::Insensitive); });
    state.counters["hits"] = static_cast<double>(hits / state.iterations());
}

class HyperscanQuery {
public:
    explicit HyperscanQuery(const MatchCase& c)
        : negated_(c.negated), database_(expressionsOf(c)) {}

    /// The scan ends where the combination holds first, or the negated word stands; if there is
    /// one, the combination holds only when all has been read. (With ! in a combination, it is
    /// told to hold before.)
    bool matches(const std::string& text) const {
        bool holds = false;
        database_.scan(text, [&](unsigned id) {
            holds = id != negated_;
            return negated_ == 0 || !holds;
        });
        return holds;
    }

private:
    /// A combination takes no \b behind a word, so that words at the very end of a text are missed;
    /// no text here ends with one.
    static std::vector<HyperscanDatabase::Expression> expressionsOf(const MatchCase& c) {
        std::vector<HyperscanDatabase::Expression> expressions;
        for (unsigned id = 1; const char* word : c.words) {
            const unsigned quiet = id == c.negated ? 0 : HS_FLAG_QUIET;
            expressions.push_back(
                {std::string("\\b") + word + "\\W", HS_FLAG_CASELESS | quiet, id++});
        }
        expressions.push_back({c.combination, HS_FLAG_COMBINATION, 7});
        return expressions;
    }

    unsigned negated_;
    HyperscanDatabase database_;
};

void matchHyperscan(benchmark::State& state, const MatchCase& c) {
    const HyperscanQuery query(c);
    std::size_t hits = 0;
    eachPage(state, corpus().textsUtf8,
             [&](const std::string& text) { hits += query.matches(text); });
    state.counters["hits"] = static_cast<double>(hits / state.iterations());
}

void registerMatch(const std::string& name, const MatchCase& c) {
    const auto add = [&](const char* peer, void (*run)(benchmark::State&, const MatchCase&)) {
        benchmark::RegisterBenchmark((name + peer).c_str(), run, c)->Unit(benchmark::kMillisecond);
    };
    add("/velmo", matchVelmo);
    add("/hyperscan", matchHyperscan);
}
[[maybe_unused]] const bool isRegistered =
    (registerMatch("query-match", SomeHold), registerMatch("query-match-none", NoneHolds),
     registerMatch("query-match-near", NearAndNot), true);

void matchXapian(benchmark::State& state) {
    Xapian::QueryParser parser;
    const Xapian::Query query =
        parser.parse_query("(apache OR commons) AND (license OR document) AND module AND server",
                           Xapian::QueryParser::FLAG_DEFAULT);
    std::size_t hits = 0;
    eachPage(state, corpus().textsUtf8, [&](const std::string& text) {
        Xapian::WritableDatabase database(std::string(), Xapian::DB_BACKEND_INMEMORY);
        Xapian::Document document;
        Xapian::TermGenerator generator;
        generator.set_document(document);
        generator.index_text(text);
        database.add_document(document);
        Xapian::Enquire enquire(database);
        enquire.set_query(query);
        hits += enquire.get_mset(0, 1).size();
    });
    state.counters["hits"] = static_cast<double>(hits / state.iterations());
}
BENCHMARK(matchXapian)->Name("query-match/xapian")->Unit(benchmark::kMillisecond);

// Matching, and an excerpt of 300 units of what matches.

void excerptVelmo(benchmark::State& state) {
    const String text = u"(apache OR commons) (license OR document)";
    const QueryTerms query(text);
    const auto wildcards = QueryTerms::queryTermsWithWildcard(text).plusWildcards().value();
    const AssemblyOptions options{.comparison = WildcardComparison::CaseInsensitive,
                                  .ellipsizeAfterNCharacters = 300};
    std::size_t hits = 0;
    eachPage(state, corpus().texts, [&](const String& page) {
        if (!query.matchesString(page, Case::Insensitive)) return;
        ++hits;
        benchmark::DoNotOptimize(assembleOccurrencesOfWildcards(page, wildcards, options));
    });
    state.counters["hits"] = static_cast<double>(hits / state.iterations());
}
BENCHMARK(excerptVelmo)->Name("query-excerpt/velmo")->Unit(benchmark::kMillisecond);

/// All texts in one full-text index in memory.
class FullTextIndex {
public:
    explicit FullTextIndex(const std::vector<std::string>& texts) {
        sqlite3_open(":memory:", &database_);
        sqlite3_exec(database_, "CREATE VIRTUAL TABLE page USING fts5(text)", nullptr, nullptr,
                     nullptr);
        sqlite3_stmt* insert = prepare("INSERT INTO page VALUES (?)");
        for (const std::string& text : texts) {
            sqlite3_bind_text(insert, 1, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
            sqlite3_step(insert);
            sqlite3_reset(insert);
        }
        sqlite3_finalize(insert);
        // 300 units are about 50 words.
        select_ = prepare(
            "SELECT snippet(page, 0, '', '', '...', 50) FROM page WHERE page MATCH "
            "'(apache OR commons) AND (license OR document)'");
    }
    ~FullTextIndex() {
        sqlite3_finalize(select_);
        sqlite3_close(database_);
    }
    FullTextIndex(const FullTextIndex&) = delete;
    FullTextIndex& operator=(const FullTextIndex&) = delete;

    std::size_t excerpts() {
        std::size_t hits = 0;
        for (; sqlite3_step(select_) == SQLITE_ROW; ++hits)
            benchmark::DoNotOptimize(sqlite3_column_text(select_, 0));
        sqlite3_reset(select_);
        return hits;
    }

private:
    sqlite3_stmt* prepare(const char* statement) {
        sqlite3_stmt* prepared = nullptr;
        if (sqlite3_prepare_v2(database_, statement, -1, &prepared, nullptr) != SQLITE_OK)
            throw std::runtime_error(sqlite3_errmsg(database_));
        return prepared;
    }

    sqlite3* database_ = nullptr;
    sqlite3_stmt* select_ = nullptr;
};

void excerptSqlite(benchmark::State& state) {
    FullTextIndex index(corpus().textsUtf8);
    std::size_t hits = 0;
    for (auto _ : state)
        for (std::size_t round = 0; round < corpus().rounds; ++round) hits += index.excerpts();
    state.counters["hits"] = static_cast<double>(hits / state.iterations());
}
BENCHMARK(excerptSqlite)->Name("query-excerpt/sqlite-fts5")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmo::bench
