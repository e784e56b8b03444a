// A table of 100 MB in quotes beside libcsv, and a bibliography of 10 MB beside btparse. All read
// bytes, so that decoding them is a part of our side; what is made of them is compared field by
// field before anything is measured.
#include <benchmark/benchmark.h>

#include <csv.h>
extern "C" {
#include <btparse.h>
}

#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <velmocore/readers/BibTeX.h>
#include <velmocore/readers/Sheets.h>

namespace velmo::bench {
namespace {

void require(bool isSame) {
    if (!isSame) throw std::runtime_error("the readers disagree");
}

template <class Text, class Work>
void eachRun(benchmark::State& state, const Text& text, Work work) {
    for (auto _ : state) benchmark::DoNotOptimize(work(text));
    state.SetBytesProcessed(static_cast<std::int64_t>(text.size() * state.iterations()));
}

// Tables.

constexpr std::size_t TableBytes = 100'000'000, EntriesBytes = 10'000'000;

/// Addresses and remarks; some with separators, quotes and line ends in them.
std::string makeTable(std::size_t bytes) {
    const char* const names[] = {"Ada Fox", "Bob \"\"Tea\"\" Miller", "Zo\xC3\xAB Brown, Jr.", ""};
    const char* const remarks[] = {"called on Monday, wants an offer for two rooms", "none",
                                   "will write:\nfirst the letter,\nthen the parcel",
                                   "said \"\"not before summer\"\" and hung up"};
    std::string table =
        "\"number\",\"name\",\"street\",\"city\",\"date\",\"amount\",\"remark\"\r\n";
    for (std::size_t i = 0; table.size() < bytes; ++i) {
        const std::string number = std::to_string(i);
        table += "\"" + number + "\",\"" + names[i % 4] + "\",\"" + number + " High Street\",\"" +
                 (i % 3 ? "Hamburg" : "Newcastle upon Tyne") + "\",\"2001-02-0" +
                 std::to_string(1 + i % 9) + "\",\"" + std::to_string(i % 1000) + ".50\",\"" +
                 remarks[i / 4 % 4] + "\"\r\n";
    }
    return table;
}

const std::string& table() {
    static const std::string made = makeTable(TableBytes);
    return made;
}

using PeerRows = std::vector<std::vector<std::string>>;

/// Calls the functions with each field and at the end of each row.
void parseCsv(const std::string& bytes, void (*field)(void*, std::size_t, void*),
              void (*row)(int, void*), void* data) {
    csv_parser parser;
    csv_init(&parser, 0);
    csv_parse(&parser, bytes.data(), bytes.size(), field, row, data);
    csv_fini(&parser, field, row, data);
    csv_free(&parser);
}

PeerRows rowsOfCsv(const std::string& bytes) {
    struct Making {
        PeerRows rows;
        std::vector<std::string> row;
    } making;
    parseCsv(
        bytes,
        [](void* units, std::size_t size, void* data) {
            static_cast<Making*>(data)->row.emplace_back(static_cast<char*>(units), size);
        },
        [](int, void* data) {
            auto& [rows, row] = *static_cast<Making*>(data);
            const std::size_t columns = row.size();
            rows.push_back(std::move(row));
            row = {};
            row.reserve(columns);
        },
        &making);
    return std::move(making.rows);
}

std::size_t bytesOfCsv(const std::string& bytes) {
    std::size_t total = 0;
    parseCsv(
        bytes,
        [](void*, std::size_t size, void* data) { *static_cast<std::size_t*>(data) += size; },
        [](int, void*) {}, &total);
    return total;
}

/// Rows that are kept: as views of the text, and with a string a field.
struct KeptRows {
    explicit KeptRows(const std::string& bytes) : text(String::fromUTF8(bytes)), rows(text) {}
    String text;
    SheetView rows;
};

std::vector<SheetRow> stringsOfVelmo(const std::string& bytes) {
    return valuesSeparatedByTab(String::fromUTF8(bytes)).rows;
}

std::size_t unitsOfWalk(const std::string& bytes) {
    std::size_t total = 0;
    forEachSheetRow(String::fromUTF8(bytes), [&](std::span<const SheetField> row) {
        for (const SheetField& field : row) total += field.units.size();
        return true;
    });
    return total;
}

void requireSameRows() {
    const std::string bytes = makeTable(TableBytes / 100);
    const KeptRows own(bytes);
    const std::vector<SheetRow> strings = stringsOfVelmo(bytes);
    const PeerRows peer = rowsOfCsv(bytes);
    require(own.rows.size() == peer.size() && strings.size() == peer.size());
    for (std::size_t i = 0; i < peer.size(); ++i) {
        require(own.rows[i].size() == peer[i].size() && strings[i].size() == peer[i].size());
        for (std::size_t k = 0; k < peer[i].size(); ++k) {
            require(own.rows[i][k].text() == strings[i][k]);
            require(strings[i][k].utf8() == peer[i][k]);
        }
    }
}

// Bibliographies.

/// Articles and books as reference programs export them, with macros for the journals.
std::string makeEntries(std::size_t bytes) {
    std::string text;
    for (int i = 0; i < 50; ++i)
        text += "@string{jrnl" + std::to_string(i) + " = \"Journal of Subject " +
                std::to_string(i) + "\"}\n";
    for (std::size_t i = 0; text.size() < bytes; ++i) {
        const std::string number = std::to_string(i);
        text += "\n@article{author" + number +
                ",\n  author = {Fox, Ada and Miller, Bob},\n  title = {{On the Steeping} of Tea, "
                "Part " +
                number + "},\n  journal = jrnl" + std::to_string(i % 50) +
                ",\n  year = 2001,\n  volume = \"12\",\n  pages = {" + number +
                "--99},\n  abstract = {We steep leaves in water near its boiling point and measure "
                "for several\n    minutes how the colour, the taste and the smell of the result "
                "change. Green leaves\n    need less heat than black ones.},\n  doi = {10.1000/x" +
                number + "},\n}\n";
    }
    return text;
}

const std::string& entries() {
    static const std::string made = makeEntries(EntriesBytes);
    return made;
}

using PeerEntry = std::vector<std::pair<std::string, std::string>>;

/// Strings as ours are: macros replaced, white space collapsed. Entries come one at a time from a
/// stream, which btparse needs.
std::vector<PeerEntry> entriesOfBtparse(const std::string& text) {
    std::vector<PeerEntry> list;
    std::FILE* const stream = fmemopen(const_cast<char*>(text.data()), text.size(), "r");
    bt_initialize();
    bt_set_stringopts(BTE_REGULAR, BTO_FULL);
    boolean isGood = 1;
    char name[] = "entries";
    while (AST* const entry = bt_parse_entry(stream, name, 0, &isGood)) {
        if (bt_entry_metatype(entry) == BTE_REGULAR) {
            PeerEntry fields = {{"@", bt_entry_key(entry)}};
            char* field = nullptr;
            for (AST* at = nullptr; (at = bt_next_field(entry, at, &field));) {
                char* const value = bt_get_text(at);
                fields.emplace_back(field, value);
                std::free(value);
            }
            list.push_back(std::move(fields));
        }
        bt_free_ast(entry);
    }
    bt_cleanup();
    std::fclose(stream);
    return list;
}

BibTeXEntries entriesOfVelmo(const std::string& text) {
    return BibTeXEntriesNamed(String::fromUTF8(text));
}

std::string withoutBraces(std::string text) {
    std::erase_if(text, [](char c) { return c == '{' || c == '}'; });
    return text;
}

void requireSameEntries() {
    const std::string text = makeEntries(EntriesBytes / 100);
    const BibTeXEntries own = entriesOfVelmo(text);
    const std::vector<PeerEntry> peer = entriesOfBtparse(text);
    require(own.entries.size() == peer.size());
    for (std::size_t i = 0; i < peer.size(); ++i) {
        require(own.entries[i].fields.size() == peer[i].size());
        for (std::size_t k = 0; k < peer[i].size(); ++k) {
            require(own.entries[i].fields[k].name.utf8() == peer[i][k].first);
            require(own.entries[i].fields[k].value.utf8() == withoutBraces(peer[i][k].second));
        }
    }
}

template <class Work>
void add(const char* name, const std::string& (*text)(), void (*check)(), Work work) {
    const auto run = [=](benchmark::State& state) {
        check();
        eachRun(state, text(), work);
    };
    benchmark::RegisterBenchmark(name, run)->Unit(benchmark::kMillisecond);
}

[[maybe_unused]] const bool isRegistered = [] {
    const auto keep = [](const std::string& bytes) { return KeptRows(bytes); };
    add("sheet-rows/velmo", table, requireSameRows, keep);
    add("sheet-rows/libcsv", table, requireSameRows, rowsOfCsv);
    add("sheet-strings/velmo", table, requireSameRows, stringsOfVelmo);
    add("sheet-strings/libcsv", table, requireSameRows, rowsOfCsv);
    add("sheet-walk/velmo", table, requireSameRows, unitsOfWalk);
    add("sheet-walk/libcsv", table, requireSameRows, bytesOfCsv);
    add("bibtex-entries/velmo", entries, requireSameEntries, entriesOfVelmo);
    add("bibtex-entries/btparse", entries, requireSameEntries, entriesOfBtparse);
    return true;
}();

}  // namespace
}  // namespace velmo::bench
