#include <sys/xattr.h>

#include <velmocore/readers/Sheets.h>
#include <velmocore/text/CharacterSets.h>

#include <filesystem>

#include "TestSupport.h"

namespace velmo {
namespace {

/// A row a line, its fields between bars.
std::u16string shown(const std::vector<SheetRow>& rows) {
    std::u16string text;
    for (const SheetRow& row : rows) {
        for (const String& field : row) text.append(u"|").append(field.view());
        text += u"|\n";
    }
    return text;
}

TEST(Sheets, ReadsFieldsBySeparatorsAndQuotes) {
    const struct {
        View text, quoted, unquoted;
    } cases[] = {
        {u"", u"", u""},
        {u"a", u"|a|\n", u""},
        {u"a,b;c,d\n", u"|a|b;c|d|\n", u"|a|b;c|d|\n"},
        {u"a\tb,c\n", u"|a\tb|c|\n", u"|a\tb|c|\n"},  // a tie goes to the comma
        {u"a,b;c\n", u"|a,b|c|\n", u"|a,b|c|\n"},     // and this one to the semicolon
        {u"a\tb\tc,d;e\n", u"|a|b|c,d;e|\n", u"|a|b|c,d;e|\n"},
        {u"\"a;b;c\",d\n", u"|a;b;c|d|\n", u"|\"a|b|c\",d|\n"},
        {u"\"a;\"\";b;c\",d\n", u"|a;\";b;c|d|\n", u"|\"a|\"\"|b|c\",d|\n"},
        {u"a;b\r\n\r\n;;\n\u2028c;d\x03"
         "e",
         u"|a|b|\n|c|d|\n|e|\n", u"|a|b|\n|c|d|\n"},
        {u"a;b;", u"|a|b||\n", u"|a|b|\n"},
        {u"a;b", u"|a|b|\n", u"|a||\n"},
        {u"\uFEFF\"a\";\"\"\n", u"|a||\n", u"|\"a\"|\"\"|\n"},
        {u"x\"y\";\"z\"w\n", u"|x\"y\"|\"z\"w|\n", u"|x\"y\"|\"z\"w|\n"},
        {u"\"a\nb\";c\n", u"|a\nb|c|\n", u"|\"a|\n|b\"|c|\n"},
        {u"\"a\"\"\";b\n", u"|a\"|b|\n", u"|\"a\"\"\"|b|\n"},
        {u"\"a\"\";b\"\n", u"|a\"|b\"|\n", u"|\"a\"\"|b\"|\n"},  // not doubled before a separator
        {u"a;\"", u"|a||\n", u"|a||\n"},
        {u"a;\"b\n", u"|a|\"b\n|\n", u"|a|\"b|\n"},
    };
    for (const auto& [text, quoted, unquoted] : cases) {
        EXPECT_EQ(String(shown(valuesSeparatedByTab(text).rows)), quoted) << String(text);
        EXPECT_EQ(String(shown(valuesSeparatedByTab(text, {.quoted = false}).rows)), unquoted) << String(text);
    }
}

/// The rules one unit after the other, for quoted values.
std::vector<SheetRow> slowRows(View text, std::size_t maxRows, bool isStandard) {
    std::size_t tabs = 0, commas = 0, semicolons = 0;
    bool isInside = false;
    for (const char16_t unit : text) {
        isInside ^= unit == u'"';
        if (!isInside) tabs += unit == u'\t', commas += unit == u',', semicolons += unit == u';';
    }
    const char16_t separator = tabs > commas && tabs > semicolons ? u'\t' : commas > semicolons ? u',' : u';';
    std::vector<SheetRow> rows;
    SheetRow row;
    bool isDoubled = false, hasText = false;
    for (std::size_t i = 0, start = 0; i <= text.size(); ++i) {
        if (i < text.size() && text[i] == u'"' && i == start) {
            for (++i; i < text.size(); ++i) {
                if (text[i] != u'"') continue;
                if (text.substr(i + 1, 1) != u"\"" || (!isStandard && text.substr(i + 2, 1) == View(&separator, 1)))
                    break;
                isDoubled = true, ++i;
            }
            i = std::min(i + 1, text.size());
        }
        const bool isEnd = i == text.size() || isFeedUnit(text[i]);
        if (!isEnd && text[i] != separator) continue;
        if (!isEnd || start != i || !row.empty())
            hasText |= addQuotedField2Line(row, text.substr(start, i - start), isDoubled);
        isDoubled = false, start = i + 1;
        if (!isEnd || row.empty()) continue;
        if (std::exchange(hasText, false)) rows.push_back(row);
        row.clear();
        if (rows.size() >= maxRows) break;
    }
    return rows;
}

TEST(Sheets, AgreesWithTheRulesUnitByUnit) {
    std::mt19937 random(1);
    for (int round = 0; round < 20000; ++round) {
        const View alphabet = round % 2 ? u"\"\"\",;\t\nab" : u"\",,,;\r\n\u2028\uFEFF\uFFFD\u0500abcdefghijklmnop";
        const std::u16string text = test::randomText(random, alphabet, random() % (round % 10 ? 40 : 400));
        const std::size_t maxRows = round % 3 ? AllRows : random() % 4;
        const bool isStandard = round % 5 == 0;
        const SheetOptions options{.maxRows = maxRows, .standardQuotes = isStandard};
        const Sheet sheet = valuesSeparatedByTab(text, options);
        ASSERT_EQ(String(shown(sheet.rows)), String(shown(slowRows(text, maxRows, isStandard)))) << String(text);
        const SheetView view(text, options);
        ASSERT_EQ(view.size(), sheet.rows.size());
        for (std::size_t i = 0; i < view.size(); ++i)
            for (std::size_t k = 0; k < view[i].size(); ++k) ASSERT_EQ(view[i][k].text(), sheet.rows[i][k]);
    }
}

TEST(Sheets, TellsItsShape) {
    const Sheet sheet = valuesSeparatedByTab(u";a\n;;\n;b\n");
    EXPECT_EQ(sheet.numberOfColumns, 3u);
    EXPECT_TRUE(sheet.definition);  // no row has a first field
    EXPECT_FALSE(valuesSeparatedByTab(u";a\nb\n").definition);
    EXPECT_EQ(valuesSeparatedByTab(u"\na;b\nc;d\n", {.maxRows = 0}).rows.size(), 1u);
    EXPECT_EQ(valuesSeparatedByTab(u";\na;b\n", {.maxRows = 0}).rows.size(), 0u);
}

TEST(Sheets, ReadsFilesByTheirNames) {
    const auto read = [](const std::string& name) {
        const auto sheet = sheetWithContentsOfFile(test::dataPath(name), UTF8StringEncoding);
        return sheet ? String(shown(sheet->rows)) : String();
    };
    EXPECT_EQ(read("sheets/comma_in_quotes.csv"),
              u"|first|last|address|city|zip|\n|John|Doe|120 any st.|Anytown, WW|08123|\n");
    EXPECT_EQ(read("sheets/escaped_quotes.csv"), u"|a|b|\n|1|ha \"ha\" ha|\n|3|4|\n");
    EXPECT_EQ(read("sheets/newlines.csv"), u"|a|b|c|\n|1|2|3|\n|Once upon \na time|5|6|\n|7|8|9|\n");
    EXPECT_EQ(read("sheets/none.csv"), String());
    EXPECT_EQ(read("gzip.html"), String());
    const auto entries = sheetWithText(u"@a{k, x = 1}@b{z = 2, x = 3}", SheetFormat::BibTeX);
    EXPECT_EQ(String(shown(entries->rows)), u"|@|x|z|\n|k|1||\n||3|2|\n");
    EXPECT_TRUE(sheetWithText(u"a;b\n", SheetFormat::ID2XF)->definition);
    for (const char* name : {"a.csv", "a.TSV", "a.Tdf", "a.tab", "a.id2xf", "a.BIB", "a.txt", "csv"}) {
        static constexpr int Formats[] = {1, 2, 2, 2, 3, 4, 0, 0};
        static int i = 0;
        EXPECT_EQ(static_cast<int>(sheetFormatOfFile(name)), Formats[i++]) << name;
    }
}

TEST(Sheets, TakesTheDefinitionFromAnAttribute) {
    const std::string path = (std::filesystem::temp_directory_path() / "velmo-definition.csv").string();
    std::ofstream(path) << "a;b\n";
    EXPECT_FALSE(sheetWithContentsOfFile(path, 0)->definition);
    const bool isSet = setxattr(path.c_str(), "user.com.velmo-works.tsv-header", "yes", 3, 0) == 0;
    EXPECT_EQ(sheetWithContentsOfFile(path, 0)->definition, isSet);
    std::filesystem::remove(path);
}

/// Entries with a field that no other has would make a table with the square of their number.
TEST(Sheets, RefusesEntriesThatMakeATableBeyondMeasure) {
    std::u16string text;
    for (int i = 0; i < 10000; ++i) {
        const std::string number = std::to_string(i);
        text.append(u"@a{k,").append(number.begin(), number.end()).append(u"=1}");
    }
    EXPECT_FALSE(sheetWithText(text, SheetFormat::BibTeX));
}

}  // namespace
}  // namespace velmo
