// Stores of pages searched from a shell.
#include <velmocore/gather/PageStore.h>
#include <velmocore/storage/KeyedData.h>

#include "ToolFixture.h"

namespace velmo {
namespace {

class SearchTool : public Tool {
protected:
    void SetUp() override {
        Tool::SetUp();
        PageStore store = PageStore::openForUpdating((folder_ / "s").string());
        PageRecord page;
        page.url = URL::URLWithString(u"http://www.h.org/a");
        page.key = u"http://h.org/a";
        page.title = u"All of\x1b[31m tea";
        page.text = u"All of tea\n\nGreen  tea, in a cup. Nothing here. Tea \U0001F375 again.";
        page.language = u"en";
        page.date = ReferenceDate;
        page.words = 10;
        store.put(page);
        page = {.key = u"http://l.org/", .title = u"Coffee", .text = u"Coffee\n\nA cup, but of what? Not of tea."};
        page.url = URL::URLWithString(page.key);
        page.words = 9;
        store.put(page);
        store = PageStore::openForUpdating((folder_ / "other").string());
        page = {.key = u"k", .text = u"Dies ist ein Tee."};
        store.put(page);
    }
};

TEST_F(SearchTool, ShowsWhatMatches) {
    EXPECT_EQ(shell("$V search --color=always 'green NEAR tea' s | sed 's/, [0-9.]* s$//'").out,
              "\x1b[32m1.\x1b[m All of^[[31m tea\n"
              "   \x1b[35mhttp://www.h.org/a\x1b[m  2001-01-01\n"
              "   All of \x1b[1;31mtea\x1b[m \x1b[1;31mGreen\x1b[m \x1b[1;31mtea\x1b[m, in a cup. Nothing here. "
              "\x1b[1;31mTea\x1b[m \U0001F375 again.\n"
              "1 of 2 pages\n");
    const struct {
        const char *arguments, *out;
        int code;
    } cases[] = {
        {"-c tea s", "2\n", 0},
        {"-c 'te?' s other", "3\n", 0},
        {"-c --plain 'te?' s other", "0\n", 1},
        {"-c --case-sensitive Tea s", "1\n", 0},
        {"-c --language=EN tea s", "1\n", 0},
        {"-c --host=org tea s", "2\n", 0},
        {"-c --since='1 Jan 2001' tea s", "1\n", 0},
        {"-c --before=2001-01-01 tea s", "0\n", 1},
        {"-c --since=never tea s", "", 2},
        {"-c tea s none", "2\n", 2},
        {"-q tea s", "", 0},
        {"-q water s", "", 1},
        {"tea", "", 2},
        {"--sort=size tea s", "", 2},
        {"--limit=1 --skip=5 tea s | sed 's/,.*//'", "2 of 2 pages\n", 0},
    };
    for (const auto& row : cases) {
        const Outcome there = shell(std::string("$V search ") + row.arguments);
        EXPECT_EQ(there.out, row.out) << row.arguments << there.err;
        EXPECT_EQ(there.code, row.code) << row.arguments;
    }
    EXPECT_EQ(shell("$V search tea none s -c").err, "velmo: none: No such file or directory\n");
}

TEST_F(SearchTool, TellsProgramsAll) {
    const auto lines = shell("$V search --json tea other s").lines();
    ASSERT_EQ(lines.size(), 2u);
    const Json& first = lines[0];
    EXPECT_EQ(first["url"], "http://www.h.org/a");
    EXPECT_EQ(first["key"], "http://h.org/a");
    EXPECT_EQ(first["date"], "2001-01-01T00:00:00Z");
    EXPECT_EQ(first["language"], "en");
    EXPECT_EQ(first["store"], "s");
    EXPECT_EQ(first["excerpt"], "All of tea Green tea, in a cup. Nothing here. Tea \U0001F375 again.");
    EXPECT_EQ(first["hits"], Json::parse("[[7,3],[17,3],[46,3]]"));
    EXPECT_EQ(first["hitCount"], 3);
    EXPECT_GT(first["score"], lines[1]["score"]);
    EXPECT_EQ(lines[1]["date"], nullptr);
    for (const auto& [order, title] :
         {std::pair("date", "All of"), {"url", "All of"}, {"hits", "All of"}, {"stored", "All of"}}) {
        const auto sorted = shell(std::string("$V search --json --length=0 --sort=") + order + " tea s").lines();
        ASSERT_EQ(sorted.size(), 2u);
        EXPECT_TRUE(sorted[0]["title"].get<std::string>().starts_with(title)) << order;
        EXPECT_EQ(sorted[0]["excerpt"], nullptr);
    }
}

}  // namespace
}  // namespace velmo
