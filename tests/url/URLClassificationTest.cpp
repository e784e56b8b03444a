#include <velmocore/url/URLClassification.h>

#include <cctype>
#include <filesystem>
#include <map>
#include <set>

#include <velmocore/text/CharacterTests.h>
#include <velmocore/text/Comparison.h>
#include <velmocore/text/FastSearch.h>
#include <velmocore/text/Finding.h>
#include <velmocore/text/Removal.h>
#include <velmocore/text/Trimming.h>

#include "TestSupport.h"
#include "url/ClassificationTables.h"

namespace velmo {
namespace {

using detail::LinkTable;
using Rows = std::span<const std::string_view>;

std::map<LinkTable, Rows> allTables() {
    std::map<LinkTable, Rows> all;
    for (const auto& tables : {detail::advertisementTables(), detail::bookmarkletTables(), detail::pageKindTables()})
        for (const detail::LinkTableRows& table : tables) all[table.table] = table.rows;
    return all;
}

/// The tests as they are told, row by row and step by step.
struct Reference {
    std::map<LinkTable, Rows> tables = allTables();

    bool holds(const String& s, std::size_t least, LinkTable table) const {
        return s.length() >= least && fastContainsSubCStrings(s, tables.at(table), &lowerCharsTable());
    }
    static bool has(const String& s, std::u16string_view word) { return s.view().find(word) != s.view().npos; }
    static bool hasAlone(const String& s, std::u16string_view word) {
        const std::size_t at = s.view().find(word);
        if (at == s.view().npos) return false;
        return at == 0 || std::u16string_view(u"EOPeop").find(s[at - 1]) == std::u16string_view::npos;
    }
    static bool hasAdName(const String& s) {
        const String trimmed = stringByTrimmingSuffixCharacter(s, u'/');
        const std::string name = std::filesystem::path(trimmed.utf8()).filename().string();
        if (name.size() < 8) return false;
        const String units = String::fromUTF8(name);
        return (name.size() >= 11 && has(units, u"counter") && containsSubstring(units, u"htm", Case::Insensitive)) ||
               hasPrefixNoCase(units, u"banner.");
    }
    bool isAdvertisement(const String& s, bool common) const {
        if (s.length() < 4) return false;
        if (holds(s, 12, LinkTable::AdSense) || holds(s, 12, LinkTable::ImageAds)) return true;
        if (holds(s, 5, LinkTable::AdFragments)) return true;
        if (!has(s, u"apple.") && !has(s, u"adsoftheworld.com") && !has(s, u"/adsk/") &&
            holds(s, 0, LinkTable::AdPaths))
            return true;
        if (hasAlone(s, u"adserver") || hasAlone(s, u"ads.")) return true;
        return (common && holds(s, 9, LinkTable::AdvertiserHosts)) || hasAdName(s);
    }
    URLClasses classes(const String& s, bool common) const {
        return {.imageAd = holds(s, 12, LinkTable::ImageAds),
                .adSense = holds(s, 12, LinkTable::AdSense) || holds(s, 12, LinkTable::ImageAds),
                .advertisement = isAdvertisement(s, common),
                .bookmarklet = (holds(s, 16, LinkTable::QueriedBookmarklets) && has(s, u"?")) ||
                               holds(s, 18, LinkTable::Bookmarklets),
                .recaptcha = holds(s, 27, LinkTable::Recaptchas),
                .translation = holds(s, 22, LinkTable::Translations),
                .topicOrThread = holds(s, 13, LinkTable::Topics) ||
                                 (countNumbers(s) >= 2 && hasSuffixNoCase(stringByRemovingDigits(s), u"-t-.html")),
                .forum = holds(s, 4, LinkTable::Forums),
                .cached = holds(s, 12, LinkTable::Caches)};
    }
};

URLClasses oneByOne(const String& s, bool common) {
    return {.imageAd = stringURLIsImageAd(s),
            .adSense = stringURLIsAdSense(s),
            .advertisement = stringURLIsAdvertisementIncludingCommonHosts(s, common),
            .bookmarklet = stringURLIsBookmarklet(s),
            .recaptcha = stringURLIsRecaptcha(s),
            .translation = stringURLIsTranslation(s),
            .topicOrThread = stringURLIsTopicOrThread(s),
            .forum = stringURLIsForum(s),
            .cached = stringURLIsCached(s)};
}

void expectSameAnswers(const Reference& reference, const String& s) {
    for (bool common : {false, true}) {
        const URLClasses expected = reference.classes(s, common);
        EXPECT_TRUE(classesOfStringURL(s, common) == expected && oneByOne(s, common) == expected)
            << s << " advertisement " << expected.advertisement;
    }
}

TEST(URLClassification, TablesAreWellFormed) {
    const std::set<std::string_view> withoutEffect = {"/AdSearchService/adSearch?", "/AdSearchService/adSearch?s"};
    ASSERT_EQ(allTables().size(), 12u);
    for (const auto& [table, rows] : allTables()) {
        EXPECT_EQ(std::set(rows.begin(), rows.end()).size(), rows.size());
        for (std::string_view row : rows) {
            const bool isPlain = row.size() >= 4 && std::all_of(row.begin(), row.end(), [](unsigned char c) {
                                     return std::isgraph(c) && !std::isupper(c);
                                 });
            EXPECT_NE(isPlain, withoutEffect.contains(row)) << row;
            if (table == LinkTable::QueriedBookmarklets) { EXPECT_NE(row.find('?'), row.npos) << row; }
        }
    }
}

TEST(URLClassification, AnswersAsTold) {
    const std::pair<std::string_view, View> cases[] = {
        {"iaA", u"http://AD.doubleclick.net/AD/x"},
        {"aA", u"http://h.com/google/box?x"},
        {"A",
         u"http://h.org/AdSearchService/adSearch?s http://h.org/x?b&adid=7 http://h.org/ads http://www.APPLE.com/ads "
         u"http://xads.org/ ads.x http://h.org/xadserver http://www.surveymonkey.com/ http://h.org/counter.html "
         u"http://h.org/BANNER.x"},
        {"",
         u"http://h.org/adsk/ http://www.apple.com/ads http://heads.org/x http://xADS.org/ http://shopads.org/xads. "
         u"http://h.org/loadserveR http://h.org/oadserver http://h.org/Counter.html http://h.org/banner. "
         u"http://h.org/banner.gif/x x/translate?hl=d http://h.org/a-b-t-3.html http://h.org/"},
        {"b", u"http://digg.com/submit?url=x http://facebook.com/sharer.php"},
        {"r", u"https://api.recaptcha.net/noscript?k=1"},
        {"t", u"http://h.org/translate?hl=de"},
        {"T", u"http://h.org/viewTopic.php http://h.org/a-12-T-3.HTML http://h.org/a-1-t-2.html3"},
        {"f", u"http://h.org/phpBB3/"},
        {"c", u"http://h.org/search?q=cache:x"},
        {"", u""}};
    for (const auto& [classes, strings] : cases)
        for (const auto& string : test::wordsOf(strings)) {
            const URLClasses got = classesOfStringURL(string);
            const bool values[] = {got.imageAd,       got.adSense,   got.advertisement,
                                   got.bookmarklet,   got.recaptcha, got.translation,
                                   got.topicOrThread, got.forum,     got.cached};
            std::string letters;
            for (std::size_t i = 0; i < std::size(values); ++i)
                if (values[i]) letters += "iaAbrtTfc"[i];
            EXPECT_EQ(letters, classes) << String(string);
            expectSameAnswers(Reference(), string);
        }
    EXPECT_FALSE(stringURLIsAdvertisementIncludingCommonHosts(u"http://www.surveymonkey.com/", false));
    EXPECT_TRUE(stringURLIsForum(URL::URLWithString(u"http://forum.org")));
    EXPECT_FALSE(stringURLIsForum(URL()));
}

/// Texts made of rows, whole and damaged, in both cases, and of what the other tests look at.
TEST(URLClassification, SameAsRowByRowOnRandomLinks) {
    const Reference reference;
    std::vector<std::string_view> pieces = {"adserver", "ads.", "apple.",   "/adsk/", "counter", "htm",
                                            "banner.",  "/",    "-t-.html", "?",      "e",       "\u212A",
                                            "1",        "22",   "\u00E4",   "http://"};
    const std::size_t plain = pieces.size();
    for (const auto& [table, rows] : reference.tables) pieces.insert(pieces.end(), rows.begin(), rows.end());
    std::mt19937 random(7);
    const auto below = [&](std::size_t bound) { return random() % bound; };
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (std::size_t i = below(5); i-- > 0;) {
            std::string piece(pieces[below(below(2) ? plain : pieces.size())]);
            if (below(4) == 0) piece.erase(below(piece.size()), 1);
            if (below(4) == 0)
                std::transform(piece.begin(), piece.end(), piece.begin(),
                               [](unsigned char c) { return std::toupper(c); });
            text += piece;
        }
        expectSameAnswers(reference, String::fromUTF8(text));
    }
}

TEST(URLClassification, SameAsRowByRowOnRealLinks) {
    const Reference reference;
    std::size_t links = 0;
    for (const auto& page : std::filesystem::directory_iterator(VELMO_PAGES)) {
        const std::string text = test::readFile(page.path());
        for (std::size_t at = 0; (at = text.find("href=\"", at)) != text.npos; ++links) {
            at += 6;
            expectSameAnswers(reference, String::fromUTF8(text.substr(at, text.find('"', at) - at)));
        }
    }
    EXPECT_GT(links, 1000u);
}

}  // namespace
}  // namespace velmo
