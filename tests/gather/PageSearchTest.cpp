#include <velmocore/gather/PageSearch.h>

#include <cmath>
#include <numeric>

#include <velmocore/markup/Page.h>
#include <velmocore/query/QueryHits.h>
#include <velmocore/words/Words.h>

#include "FolderFixture.h"

namespace velmo {
namespace {

Date dayOf(int day) { return Date(std::chrono::seconds(86400LL * day)); }

class PageSearchTest : public test::FolderTest {
protected:
    /// Puts pages into a store and opens it.
    PageStore storeOf(std::string_view name, std::span<const PageRecord> pages) const {
        PageStore store = PageStore::openForUpdating(at(name));
        for (const PageRecord& page : pages) store.put(page);
        store = {};
        return PageStore::openForReading(at(name));
    }
    static PageRecord pageOf(View address, View title, View body) {
        PageRecord page;
        page.url = URL::URLWithString(String(address));
        page.key = String(address);
        page.title = String(title);
        page.text = String(std::u16string(title).append(u"\n\n").append(body));
        page.words = static_cast<std::uint32_t>(numberOfWordsUsingDefaultSeparation(page.text));
        return page;
    }
    static SearchResult search(std::span<const PageStore> stores, View query, PageSearchOptions options = {}) {
        return searchPages(stores, QueryTerms(query, {.wildcard = true}), options);
    }
    static std::vector<std::u16string> keysOf(const SearchResult& result) {
        std::vector<std::u16string> keys;
        for (const SearchHit& hit : result.hits) keys.emplace_back(hit.key.view());
        return keys;
    }
};

/// All that a search tells but how many pages it had to look at.
std::string told(const SearchResult& result) {
    std::string all = std::to_string(result.pages) + " " + std::to_string(result.matching) + "\n";
    for (const SearchHit& hit : result.hits) {
        all += std::to_string(hit.store) + " " + hit.key.utf8() + " " + std::to_string(hit.score) + " " +
               std::to_string(hit.hitCount) + " " + hit.excerpt.utf8();
        for (const Range& range : hit.hits) all += " " + testing::PrintToString(range);
        all += "\n";
    }
    for (const auto& [name, count] : result.languages) all += name.utf8() + std::to_string(count);
    for (const auto& [name, count] : result.hosts) all += name.utf8() + std::to_string(count);
    for (const auto& [year, count] : result.years) all += std::to_string(year) + ":" + std::to_string(count) + "\n";
    return all;
}

/// Texts that are long enough for signatures, of words that are rarer and rarer.
std::vector<PageRecord> randomPages(std::mt19937& random, std::size_t count, View prefix) {
    std::vector<PageRecord> pages;
    for (std::size_t i = 0; i < count; ++i) {
        std::u16string text;
        for (std::size_t words = 20 + random() % 900; words > 0; --words) {
            const unsigned rarity = 1 + random() % 300;
            text += String::fromUTF8("word" + std::to_string(random() % rarity)).view();
            text += random() % 9 ? u' ' : u'.';
        }
        const String number = String::fromUTF8(std::to_string(i));
        PageRecord page;
        page.key = String(std::u16string(prefix).append(number.view()));
        page.url = URL::URLWithString(String(std::u16string(u"http://h").append(1, u"012"[i % 3]).append(u".org/")));
        page.title = String(text.substr(0, 6));
        page.language = i % 3 ? String(u"en") : String();
        if (i % 4) page.date = dayOf(static_cast<int>(random() % 9000));
        page.text = String(text);
        page.words = static_cast<std::uint32_t>(numberOfWordsUsingDefaultSeparation(page.text));
        pages.push_back(page);
    }
    return pages;
}

TEST_F(PageSearchTest, FindsTheSameWithAndWithoutSignaturesOnAnyThreads) {
    std::mt19937 random(3);
    std::vector<PageStore> stores;
    stores.push_back(storeOf("one", randomPages(random, 300, u"a")));
    stores.push_back(storeOf("two", randomPages(random, 150, u"b")));
    const char16_t* queries[] = {u"word299",
                                 u"word150 word7",
                                 u"word1* -word2",
                                 u"word280 OR word281",
                                 u"word20 NEAR/3 word3",
                                 u"~rd27",
                                 u"\"word1 word2\"",
                                 u"w?rd[23]88",
                                 u"-word0",
                                 u"word5 OPT word250",
                                 u"(word33 XOR word44) word0",
                                 u"nothing"};
    std::size_t spared = 0;
    for (const View query : queries) {
        for (const SearchOrder order : {SearchOrder::Relevance, SearchOrder::Newest, SearchOrder::Address,
                                        SearchOrder::Hits, SearchOrder::Stored}) {
            const PageSearchOptions plain = {
                .order = order, .first = 2, .limit = 20, .facets = true, .useSignatures = false, .threads = 1};
            PageSearchOptions fast = plain;
            fast.useSignatures = true;
            fast.threads = 3;
            const SearchResult slow = search(stores, query, plain), quick = search(stores, query, fast);
            ASSERT_EQ(told(quick), told(slow)) << String(query).utf8();
            EXPECT_EQ(slow.scanned, 450u);
            spared += slow.scanned - quick.scanned;
        }
    }
    EXPECT_GT(spared, 450u * 60 / 5);
}

TEST_F(PageSearchTest, OrdersByTheFormula) {
    std::mt19937 random(5);
    const std::vector<PageRecord> pages = randomPages(random, 200, u"p");
    const PageStore stores[] = {storeOf("s", pages)};
    const View words[] = {u"word60", u"word61"};
    const SearchResult result = search(stores, u"word60 OR word61", {.limit = 0});
    const double average = std::accumulate(pages.begin(), pages.end(), 0.0,
                                           [](double sum, const PageRecord& page) { return sum + page.words; }) /
                           static_cast<double>(pages.size());
    double having[2] = {};
    for (const PageRecord& page : pages)
        for (int i = 0; i < 2; ++i) having[i] += QueryTerms(words[i]).matchesString(page.text, Case::Insensitive);
    std::size_t matching = 0;
    for (const PageRecord& page : pages)
        matching += QueryTerms(u"word60 OR word61").matchesString(page.text, Case::Insensitive);
    ASSERT_EQ(result.matching, matching);
    for (const SearchHit& hit : result.hits) {
        const auto page = std::ranges::find(pages, hit.key, &PageRecord::key);
        double score = 0;
        for (int i = 0; i < 2; ++i) {
            const QueryTerms word(words[i]);
            const double count = static_cast<double>(hitsOfQueryTerms(page->text, word, Case::Insensitive).size()) +
                                 4 * static_cast<double>(hitsOfQueryTerms(page->title, word, Case::Insensitive).size());
            const double length = 0.25 + 0.75 * page->words / average;
            score += std::log(1 + (200 - having[i] + 0.5) / (having[i] + 0.5)) * count * 2.2 / (count + 1.2 * length);
        }
        EXPECT_NEAR(hit.score, score, 0.25 * score) << hit.key.utf8();
    }
    EXPECT_TRUE(std::ranges::is_sorted(result.hits, std::greater(), &SearchHit::score));
}

TEST_F(PageSearchTest, FiltersAndOrders) {
    PageRecord pages[] = {pageOf(u"http://b.org/1", u"Tea", u"Green tea and black tea. Cups."),
                          pageOf(u"http://www.b.org:80/2", u"Cups", u"Tea is for cups."),
                          pageOf(u"http://ab.org/3", u"Coffee", u"No leaves, as in tea."),
                          pageOf(u"http://u@a.org/4?q=/", u"Water", u"Tea, tea, tea, tea and tea!")};
    pages[0].language = u"en";
    pages[1].language = u"de";
    pages[0].date = dayOf(100);
    pages[1].date = dayOf(300);
    pages[3].fetched = dayOf(200);
    const PageStore stores[] = {storeOf("s", pages)};
    const struct {
        PageSearchOptions options;
        std::u16string keys;
    } cases[] = {
        {{.order = SearchOrder::Stored}, u"1 2 3 4"},
        {{.order = SearchOrder::Newest}, u"2 4 1 3"},
        {{.order = SearchOrder::Address}, u"3 1 4 2"},
        {{.order = SearchOrder::Hits}, u"4 1 2 3"},
        {{.order = SearchOrder::Hits, .first = 1, .limit = 2}, u"1 2"},
        {{.first = 9}, u""},
        {{.first = static_cast<std::size_t>(-1), .limit = static_cast<std::size_t>(-1)}, u""},
        {{.order = SearchOrder::Stored, .language = u"EN"}, u"1"},
        {{.order = SearchOrder::Stored, .host = u"B.org"}, u"1 2"},
        {{.order = SearchOrder::Stored, .host = u"a.org"}, u"4"},
        {{.order = SearchOrder::Stored, .since = dayOf(200)}, u"2 4"},
        {{.order = SearchOrder::Stored, .since = dayOf(100), .before = dayOf(200)}, u"1"},
        {{.order = SearchOrder::Stored, .comparison = WildcardComparison::Exact}, u"1 3 4"},
    };
    for (const auto& c : cases) {
        const SearchResult result = search(stores, u"tea", c.options);
        std::u16string keys;
        for (const std::u16string& key : keysOf(result)) {
            if (!keys.empty()) keys += u' ';
            keys += key[key.find_first_of(u"1234")];
        }
        EXPECT_EQ(keys, c.keys) << &c - cases;
    }
    EXPECT_EQ(search(stores, u"cups").hits.front().key, u"http://www.b.org:80/2");  // in the title
    EXPECT_EQ(search(stores, u"-()").matching, 0u);
    EXPECT_EQ(search(stores, u"-()").pages, 4u);
    const SearchResult facets = search(stores, u"tea", {.facets = true});
    EXPECT_EQ(facets.hosts.size(), 4u);
    EXPECT_EQ(facets.languages.at(u""), 2u);
    EXPECT_EQ(facets.years.at(1970), 3u);
}

TEST_F(PageSearchTest, TellsExcerptsOnOneLine) {
    const PageRecord pages[] = {
        pageOf(u"k:1", u"A  title", u"Nothing is\there.\n\nThe  quick\u00A0brown fox, 2.4 m.\nAnd more\n\nof   a fox"),
        pageOf(u"k:2", u"No", u"ani\tmal")};
    const PageStore stores[] = {storeOf("s", pages)};
    const auto shown = [&](View query, std::size_t length) {
        const SearchResult result = search(stores, query, {.limit = 1, .excerptLength = length});
        if (result.hits.empty()) return std::u16string(u"none");
        std::u16string text(result.hits[0].excerpt.view());
        for (auto hit = result.hits[0].hits.rbegin(); hit != result.hits[0].hits.rend(); ++hit)
            text.insert(hit->end(), u"]").insert(hit->location, u"[");
        return text;
    };
    EXPECT_EQ(shown(u"fox", 300), u"A title Nothing is here. The quick brown [fox], 2.4 m. And more of a [fox]");
    EXPECT_EQ(shown(u"fox", 40), u"The quick brown [fox], 2.4 m \u2026 of a [fox]");
    EXPECT_EQ(shown(u"\"brown fox\" OR fox OR quick", 40), u"The [quick] [brown fox], 2.4 m \u2026 of a [fox]");
    EXPECT_EQ(shown(u"-fox", 300), u"No ani mal");
    EXPECT_EQ(shown(u"fox", 0), u"");
    EXPECT_TRUE(search(stores, u"fox", {.excerptLength = 0}).hits[0].excerpt.isAbsent());
}

/// All words of real pages, and parts of them, are found where they stand.
TEST_F(PageSearchTest, FindsTheWordsOfRealPages) {
    std::vector<PageRecord> pages;
    for (const char* name : {"cc-about-en.html", "httpd-de-iso-8859-1.html", "httpd-ja-utf8.html",
                             "httpd-ru-koi8-r.html", "httpd-tr-utf8.html", "readability-v8-blog.html"}) {
        const std::string bytes = test::readPage(name);
        const Page page(bytes);
        PageRecord& record = pages.emplace_back();
        record.key = String::fromUTF8(name);
        record.text = page.plainText();
    }
    const PageStore stores[] = {storeOf("s", pages)};
    std::mt19937 random(7);
    std::size_t cases = 0, scanned = 0;
    for (const PageRecord& page : pages) {
        for (const String& word : wordsUsingDefaultSeparation(page.text)) {
            if (word.length() < 5 || random() % 12) continue;
            const std::u16string part(word.view().substr(1, 3));
            for (const QueryTerms& query :
                 {QueryTerms(word), QueryTerms(u"~" + part), QueryTerms(u"?" + part + u"*", {.wildcard = true})}) {
                std::size_t matching = 0;
                for (const PageRecord& other : pages) matching += query.matchesString(other.text);
                const SearchResult result = searchPages(stores, query, {.excerptLength = 0, .threads = 1});
                ASSERT_EQ(result.matching, matching) << word.utf8();
                scanned += result.scanned;
                ++cases;
            }
        }
    }
    EXPECT_GT(cases, 500u);
    EXPECT_LT(scanned, cases * pages.size() * 2 / 3);
}

}  // namespace
}  // namespace velmo
