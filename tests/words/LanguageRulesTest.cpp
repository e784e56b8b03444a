#include <velmocore/words/LanguageRules.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <sstream>

#include <velmocore/platform/Resources.h>
#include <velmocore/words/LanguageFilter.h>

#include "TestSupport.h"

namespace velmo {
namespace {

const LanguageFilter& today() {
    static const LanguageFilter filter(velmoResourcesDirectory(), LanguageRules::today());
    return filter;
}

/// The lines of a file of two columns.
std::vector<std::pair<std::string, String>> rowsOf(const std::string& file) {
    std::vector<std::pair<std::string, String>> rows;
    std::istringstream lines(test::readFile(test::dataPath(file)));
    for (std::string line; std::getline(lines, line);)
        if (const std::size_t tab = line.find('\t'); tab != line.npos)
            rows.emplace_back(line.substr(0, tab), String::fromUTF8(line.substr(tab + 1)));
    return rows;
}

// One or two sentences each, which no list was made from. Too short for some; Malay passes for Indonesian.
TEST(LanguageRules, NameTheFirstArticle) {
    const auto rows = rowsOf("first-article.tsv");
    ASSERT_EQ(rows.size(), 59u);
    int right = 0;
    for (const auto& [tag, text] : rows) {
        const std::string found = today().languageTagOfText(text).utf8();
        EXPECT_TRUE(found.empty() || found == tag || tag == "ms") << tag << " as " << found;
        right += found == tag;
    }
    EXPECT_GE(right, 55);
}

TEST(LanguageRules, TellByScriptsFormsAndLetters) {
    const std::pair<View, String> cases[] = {
        {u"", {}},
        {u"1990 12:30 ...", {}},
        {u"\u3053\u308C\u306F\u65E5\u672C\u8A9E\u306E\u672C", u"ja"},
        {u"\u9019\u662F\u4E2D\u6587\u7684\u66F8", u"zh-Hant"},
        {u"\u8FD9\u662F\u4E2D\u6587\u7684\u4E66", u"zh-Hans"},
        {u"\u65E5\u672C\u6C34\u706B", u"zh"},  // of either form
        {u"\uD55C\uAD6D\uC5B4 \u6F22\u5B57 \uBB38\uC7A5", u"ko"},
        {u"\u0E20\u0E32\u0E29\u0E32\u0E44\u0E17\u0E22 by name", u"th"},
        {u"\u0E20\u0E32 in a sentence of another language", u"en"},
        {u"\u0995\u09F0\u09BF\u09AC\u09B2\u09C8 \u09AC\u09F0", u"as"},  // letters that Bengali lacks
        {u"\u0433\u04E9\u0437\u0434\u04AF\u04A3 \u0431\u0430\u0441\u043A\u0430\u043D", {}},  // no words of a list
        {u"Lorem ipsum dolor sit amet, consectetur adipiscing elit, sed do eiusmod tempor incididunt ut labore et "
         u"dolore magna aliqua. Ut enim ad minim veniam, quis nostrud exercitation ullamco laboris nisi ut aliquip.",
         {}},
        {u"Pellentesque habitant morbi tristique senectus et netus et malesuada fames ac turpis egestas.", {}},
    };
    for (const auto& [text, tag] : cases) EXPECT_EQ(today().languageTagOfText(text), tag) << utf8(text);
}

TEST(LanguageRules, AreOneByOne) {
    const String thai = u"\u0E20\u0E32\u0E29\u0E32\u0E44\u0E17\u0E22";
    const String czech = u"p\u0159i tom je to tak a bylo by tu jen";
    const LanguageFilter off(velmoResourcesDirectory(), LanguageRules());
    EXPECT_EQ(off.languages(), LanguageFilter(velmoResourcesDirectory()).languages());
    const LanguageFilter scripts(velmoResourcesDirectory(), {.scripts = true});
    EXPECT_EQ(scripts.languages().size(), 24u);
    EXPECT_EQ(scripts.languageOfText(thai), u"TH");
    const LanguageFilter words(velmoResourcesDirectory(), {.words = true});
    EXPECT_GT(words.languages().size(), 90u);
    EXPECT_TRUE(words.languageOfText(thai).isAbsent());
    EXPECT_EQ(today().languageOfText(czech), u"CS");
}

TEST(LanguageRules, FilterByWhatIsTold) {
    LanguageFilter filter(velmoResourcesDirectory(), LanguageRules::today());
    const String thai = u"\u0E20\u0E32\u0E29\u0E32\u0E44\u0E17\u0E22";
    const std::pair<String, bool> cases[] = {{String(), false}, {u"th", false}, {u"uk", true}, {u"de", true}};
    for (const auto& [chosen, expected] : cases) {
        filter.setLanguage(chosen);
        EXPECT_EQ(filter.filterText(thai), expected) << chosen;
        EXPECT_FALSE(filter.filterText(u"xyzzy"));
    }
}

struct Row {
    int right = 0, undecided = 0, wrong = 0;
    std::map<std::string, int> mistaken;
};

std::string field(const std::string& line, const std::string& name) {
    const std::size_t start = line.find("\"" + name + "\": \"") + name.size() + 5;
    return line.substr(start, line.find('"', start) - start);
}

void print(const std::string& kind, const std::map<std::string, Row>& rows) {
    std::printf("%-10s language   right  undecided  wrong\n", kind.c_str());
    for (const auto& [language, row] : rows) {
        std::string as;
        for (const auto& [tag, count] : row.mistaken) as += ' ' + tag + ' ' + std::to_string(count);
        std::printf("%-10s %-8s %7d %10d %6d %s\n", kind.c_str(), language.c_str(), row.right, row.undecided, row.wrong,
                    as.c_str());
    }
}

// VELMO_WEB_LANGUAGE_SAMPLES names what scripts/language-samples --web wrote, to be measured only.
TEST(LanguageRules, Measure) {
    const char* samples = std::getenv("VELMO_WEB_LANGUAGE_SAMPLES");
    if (!samples) GTEST_SKIP() << "no samples named";
    std::map<std::string, std::map<std::string, Row>> kinds;
    std::istringstream lines(test::readFile(samples));
    for (std::string line; std::getline(lines, line);) {
        const std::string language = field(line, "lang");
        Row& row = kinds[field(line, "kind")][language];
        const std::string tag = today().languageTagOfText(String::fromUTF8(field(line, "text"))).utf8();
        if (tag.empty())
            ++row.undecided;
        else if (tag == language)
            ++row.right;
        else
            ++row.wrong, ++row.mistaken[tag];
    }
    for (const auto& [kind, rows] : kinds) print(kind, rows);
}

}  // namespace
}  // namespace velmo
