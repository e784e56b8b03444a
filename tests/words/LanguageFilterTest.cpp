#include <velmocore/words/LanguageFilter.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <thread>

#include <velmocore/platform/Resources.h>
#include <velmocore/text/CharacterSets.h>
#include <velmocore/text/Folding.h>
#include <velmocore/words/Words.h>

#include "TestSupport.h"

namespace velmo {
namespace {

const Strings keys = {u"DE", u"EN", u"FR"};
const std::vector<Strings> lists = {
    {u"und", u"nicht", u"eine", u"\u00FCber", u"das", u"wir"},
    {u"the", u"and", u"not", u"one", u"das", u"over"},
    {u"les", u"des", u"une", u"pas", u"\u00E9t\u00E9", u"sur"},
};

std::u16string times(std::size_t count, View part) { return test::repeated(part, count); }

TEST(LanguageFilter, DecidesByLeadMarginAndShare) {
    const LanguageFilter filter(keys, lists);
    const std::u16string english = u"the and not one ", greek = u"\u03BB\u03CC\u03B3\u03BF\u03C2 ";
    const std::pair<std::u16string, String> cases[] = {
        {u"", {}},
        {u"UND Nicht eINE das", u"DE"},
        {u"und nicht eine", {}},                                                // three words only
        {times(2, english) + u"the and " + times(3, u"les des une pas "), {}},  // 10 against 12
        {times(2, english) + u"the and " + times(3, u"les des une pas ") + u"sur ", u"FR"},
        {english + times(150, u"word "), u"EN"},  // 4 of 154
        {english + times(156, u"word "), {}},     // 4 of 160 are not more than a fortieth
        {english + times(156, u"ab "), u"EN"},    // words that are too short do not count
        {times(3, u"\u1F00\u03BB\u03BB\u03AC "), u"EL"},
        {times(3, u"\u65E5\u672C\u8A9E "), u"**"},
        {times(3, u"\u00DFa\u00DF "), u"**"},  // no Latin letter under the edges
        {times(3, u"\u00FCb\u00FC "), {}},
        {english + times(7, greek) + times(40, u"1990 "), u"EL"},  // numbers are no half
        {u"wo\u0434 wo\u0434 wo\u0434", u"**"},                    // the first unit tells the script
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(filter.languageOfText(text), expected) << utf8(text);
    EXPECT_EQ(filter.ISOLanguageCodeOfText(times(3, u"\u65E5\u672C\u8A9E ")), 0x2A2A);
    EXPECT_EQ(filter.ISOLanguageCodeOfText(u"unclear"), 0);
}

TEST(LanguageFilter, FiltersOtherLanguages) {
    LanguageFilter filter(keys, lists);
    const std::tuple<String, std::u16string, bool> cases[] = {
        {String(), times(9, u"the and not one "), false},
        {u"de", times(9, u"the and not one "), true},
        {u"de", u"the and not one und und", false},              // by two only
        {u"de", u"the and not one und und und und und", false},  // own hits of one word count
        {u"xx", times(9, u"the and not one "), false},
        {u"el", times(4, u"\u0434\u043E\u043C "), true},
    };
    for (const auto& [language, text, expected] : cases) {
        filter.setLanguage(language);
        EXPECT_EQ(filter.filterText(text), expected) << language << " / " << utf8(text);
    }
}

TEST(LanguageFilter, Settings) {
    LanguageFilter filter(keys, lists);
    EXPECT_TRUE(filter.language().isAbsent());
    EXPECT_EQ(filter.ISOLanguageCode(), 0);
    filter.setLanguage(u"en");
    EXPECT_EQ(filter.language(), u"EN");
    EXPECT_EQ(filter.ISOLanguageCode(), 0x454E);
    filter.setLanguage(u"xy");
    EXPECT_EQ(filter.language(), u"XY");
    filter.setLanguage(u"eng");
    EXPECT_TRUE(filter.language().isAbsent());
    EXPECT_EQ(LanguageFilter::ISOCodeForLanguage(u"\u00E4\u0142"), 0xC441);
    EXPECT_EQ(LanguageFilter::ISOCodeForLanguage(u"E"), 0);

    EXPECT_EQ(filter.minWordLen(), 3u);
    filter.setMinWordLen(2);
    EXPECT_EQ(filter.minWordLen(), 3u);
    filter.setMinWordLen(4);
    EXPECT_TRUE(filter.languageOfText(u"the and not one the and not one").isAbsent());
    LanguageFilter moved = std::move(filter);
    EXPECT_EQ(moved.minWordLen(), 4u);

    const LanguageFilter empty(Strings{}, {});
    EXPECT_TRUE(empty.languageOfText(times(9, u"\u0434\u043E\u043C ")).isAbsent());
    EXPECT_FALSE(empty.filterText(u"a") || empty.stopWordRatioOfText(u"abc") != 0);
}

TEST(LanguageFilter, Lists) {
    EXPECT_EQ(LanguageFilter(keys, lists).languages(), (Strings{u"EN", u"DE", u"FR"}));
    EXPECT_EQ(LanguageFilter(keys, lists, true).languageOfText(u"UBER und nicht eine"), u"DE");
    EXPECT_TRUE(LanguageFilter(keys, lists).languageOfText(u"UBER und nicht eine").isAbsent());
    EXPECT_DEATH(LanguageFilter(keys, std::span(lists).first(2)),
                 "Classes/LanguageFilter:[0-9]+: .*cnt==\\[keys count\\]");
}

TEST(LanguageFilter, Directories) {
    namespace fs = std::filesystem;
    const fs::path folder = fs::path(testing::TempDir()) / "velmo-stop-words";
    fs::remove_all(folder);
    fs::create_directories(folder / "StopWordsXX");  // a list that cannot be read
    EXPECT_TRUE(LanguageFilter(keys, lists).writeToDirectory(folder));
    EXPECT_EQ(test::readFile(folder / "StopWordsFR"), "des\nles\npas\nsur\nune\n\xC3\xA9t\xC3\xA9");
    std::ofstream(folder / "StopWordsGen") << "the and not one";
    std::ofstream(folder / "Other") << "the and not one";
    std::ofstream(folder / "stopwordsIT") << "che, non; per sono\nit's a.b";
    std::ofstream(folder / "StopWordsYY") << "\xFC"
                                             "ber ruq muq luq duq";  // not UTF-8
    const LanguageFilter read(folder.string());
    EXPECT_EQ(read.languages(), (Strings{u"EN", u"DE", u"FR", u"XX", u"YY", u"IT"}));
    EXPECT_TRUE(read.languageOfText(u"ruq muq luq duq").isAbsent());
    EXPECT_EQ(read.languageOfText(u"che non per sono"), u"IT");
    EXPECT_EQ(read.languageOfText(u"und nicht eine \u00FCber"), u"DE");
    EXPECT_FALSE(read.writeToDirectory(folder / "missing"));
    fs::remove_all(folder);
    EXPECT_TRUE(LanguageFilter(folder.string()).languages().empty());
    EXPECT_TRUE(LanguageFilter(folder.string()).writeToDirectory(folder));
}

TEST(LanguageFilter, ThreadsShareAFilter) {
    LanguageFilter filter(keys, lists);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&filter, t] {
            for (int i = 0; i < 500; ++i) {
                if (t == 0) filter.setLanguage(i % 2 ? u"DE" : u"FR");
                EXPECT_EQ(filter.languageOfText(u"the and not one"), u"EN");
                (void)filter.filterText(u"the and not one");
            }
        });
    for (auto& thread : threads) thread.join();
}

/// The rules once more, with strings and sets.
struct SlowFilter {
    std::vector<std::pair<std::string, std::set<std::string>>> languages;
    std::map<std::string, std::size_t> hits;
    std::map<std::string, std::set<std::string>> distinct;
    std::size_t words = 0, units = 0, oddWords = 0, oddUnits = 0;
    std::map<std::string, std::pair<std::size_t, std::size_t>> scripts;
    std::string winner;
    std::size_t best = 0, previous = 0;

    static std::string scriptOf(char16_t unit) {
        if (unit >= 0x400 && unit < 0x500) return "RU";
        if (unit >= 0x590 && unit < 0x600) return "HE";
        if (unit >= 0x600 && unit < 0x700) return "AR";
        return unit >= 0x370 && unit < 0x400 ? "EL" : "**";
    }
    void scan(const String& text) {
        for (const String& word : wordsUsingDefaultSeparation(text, 3)) {
            ++words;
            units += word.length();
            const auto isLetter = [](char16_t c) { return alphaCharacterSetRep().contains(c); };
            const char16_t first = word[0], last = word[word.length() - 1];
            if (!isLetter(first) || !isLetter(last)) {
                ++oddWords;
                oddUnits += word.length();
            } else if (umlautsToLowerAscii(first) < 128 && umlautsToLowerAscii(last) < 128) {
                const std::string folded = stringByApplyingConversionTable(word, &lowerCharsTable()).utf8();
                for (const auto& [key, stopWords] : languages)
                    if (stopWords.contains(folded)) ++hits[key], distinct[key].insert(folded);
            } else {
                auto& script = scripts[scriptOf(first)];
                ++script.first;
                script.second += word.length();
            }
        }
    }
    void race(bool withScripts) {
        const auto enter = [&](const std::string& key, std::size_t count) {
            if (count > best) previous = best, best = count, winner = key;
        };
        for (const auto& [key, stopWords] : languages)
            if (distinct[key].size() >= 4) enter(key, hits[key]);
        if (!withScripts) return;
        for (const std::string key : {"**", "RU", "HE", "EL", "AR"})
            if (scripts[key].second >= (units - oddUnits) / 2 || scripts[key].first >= (words - oddWords) / 2)
                enter(key, scripts[key].first);
    }
};

TEST(LanguageFilter, RandomTextsAgreeWithASlowFilter) {
    std::mt19937 random(5);
    std::vector<std::string> vocabulary;
    for (const std::u16string& word :
         test::wordsOf(u"aaa bbb cccccccccc dddddddddddddddddd eee fff ggg hhh iii jjj kk 12x lll \u0434\u043E\u043C "
                       u"\u00DFaa\u00DF mmm Nn\u00E4 ooo4 "
                       u"\u03BB\u03CC\u03B3\u03BF\u03C2 \u05E9\u05DC\u05D5\u05DD \u0645\u0631\u062D\u0628\u0627"))
        vocabulary.push_back(utf8(word));
    std::map<std::string, int> found;
    for (int round = 0; round < 5000; ++round) {
        SlowFilter slow;
        Strings names;
        std::vector<Strings> words;
        for (const char* key : {"EN", "AA", "BB"}) {
            std::set<std::string> list;
            for (int i = 0; i < 8; ++i) list.insert(vocabulary[random() % 10]);
            names.push_back(String::fromUTF8(key));
            words.emplace_back();
            for (const std::string& word : list) words.back().push_back(String::fromUTF8(word));
            slow.languages.emplace_back(key, list);
        }
        std::string text;
        // A few words of a stretch of the vocabulary, so that now one and now the other leads.
        const std::size_t size = vocabulary.size(), length = random() % (round % 100 ? 60 : 1500);
        const std::size_t from = random() % 2 * (random() % size), stretch = 1 + random() % (size - from);
        for (std::size_t i = 0; i < length; ++i) text += vocabulary[from + random() % stretch] + " ";
        const String string = String::fromUTF8(text);
        slow.scan(string);

        LanguageFilter filter(names, words);
        SlowFilter ratio = slow, all = slow;
        ratio.race(false);
        double expectedRatio = 0;
        for (const auto& [key, stopWords] : ratio.languages)
            if (key == ratio.winner)
                expectedRatio = static_cast<double>(ratio.best) / static_cast<double>(ratio.words) /
                                std::sqrt(static_cast<double>(stopWords.size()) / 750);
        ASSERT_DOUBLE_EQ(filter.stopWordRatioOfText(string), expectedRatio) << text;

        all.race(true);
        const bool leads = !all.winner.empty() && all.best > all.words / 40;
        const bool isClear = leads && all.best - all.previous >= 3;
        ASSERT_EQ(filter.languageOfText(string).utf8(), isClear ? all.winner : "") << text;
        if (isClear) ++found[all.winner];
        for (const char* chosen : {"AA", "RU", "AR"}) {
            filter.setLanguage(String::fromUTF8(chosen));
            const std::size_t own = std::string(chosen) == "AA" ? all.hits[chosen] : all.scripts[chosen].first;
            ASSERT_EQ(filter.filterText(string), leads && all.winner != chosen && all.best >= own + 3)
                << text << chosen;
        }
    }
    for (const char* key : {"EN", "AA", "BB", "**", "RU", "HE", "EL", "AR"}) EXPECT_GT(found[key], 20) << key;
}

struct Row {
    int right = 0, undecided = 0, wrong = 0;
    std::set<std::string> mistaken;
};

/// Counts by language; short paragraphs count only in scripts that need no stop words. The
/// file has a JSON object a line.
std::map<std::string, Row> confusion(const std::string& path, const LanguageFilter& filter) {
    const auto field = [](const std::string& line, const std::string& name) {
        const std::size_t start = line.find("\"" + name + "\": \"") + name.size() + 5;
        std::size_t end = start;
        while (line[end] != '"' || line[end - 1] == '\\') ++end;
        return line.substr(start, end - start);
    };
    const std::map<std::string, std::string> keysOf = {{"ru", "RU"}, {"ja", "**"}, {"ko", "**"}};
    std::map<std::string, Row> rows;
    std::istringstream lines(test::readFile(path));
    for (std::string line; std::getline(lines, line);) {
        const std::string text = field(line, "text"), language = field(line, "lang");
        if (wordsUsingWhiteSeparation(String::fromUTF8(text)).size() < 60 && !keysOf.contains(language)) continue;
        Row& row = rows[language];
        std::string expected = keysOf.contains(language) ? keysOf.at(language) : language;
        for (char& c : expected) c = static_cast<char>(std::toupper(c));
        const String found = filter.languageOfText(String::fromUTF8(text));
        if (found.isAbsent())
            ++row.undecided;
        else if (found.utf8() == expected)
            ++row.right;
        else
            ++row.wrong, row.mistaken.insert(found.utf8());
    }
    return rows;
}

// VELMO_LANGUAGE_SAMPLES names another file of the same form, to be measured only.
TEST(LanguageFilter, NamesNoSampleWrongly) {
    const LanguageFilter filter(velmoResourcesDirectory());
    EXPECT_EQ(filter.languages().size(), 24u);
    const char* other = std::getenv("VELMO_LANGUAGE_SAMPLES");
    int right = 0;
    std::printf("language   right  undecided  wrong\n");
    for (const auto& [language, row] : confusion(other ? other : test::dataPath("httpd-paragraphs.jsonl"), filter)) {
        std::string as;
        for (const std::string& key : row.mistaken) as += ' ' + key;
        std::printf("%-8s %7d %10d %6d%s\n", language.c_str(), row.right, row.undecided, row.wrong, as.c_str());
        EXPECT_TRUE(other || row.wrong == 0) << language;
        right += row.right;
    }
    EXPECT_TRUE(other || right >= 15) << right;
}

// The lists are as the library itself would write them.
TEST(LanguageFilter, ResourcesAreClean) {
    namespace fs = std::filesystem;
    const fs::path folder = fs::path(testing::TempDir()) / "velmo-resources";
    fs::create_directories(folder);
    ASSERT_TRUE(LanguageFilter(velmoResourcesDirectory()).writeToDirectory(folder));
    int count = 0;
    for (const auto& file : fs::directory_iterator(folder)) {
        const std::string name = file.path().filename(), list = test::readFile(file.path());
        EXPECT_EQ(list, test::readFile(velmoResourcesDirectory() + "/" + name)) << name;
        EXPECT_TRUE(isLowerCaseString(String::fromUTF8(list))) << name;
        ++count;
    }
    EXPECT_EQ(count, 24);
    fs::remove_all(folder);
}

}  // namespace
}  // namespace velmo
