// Pages of a store from a shell.
#include <velmocore/gather/PageStore.h>
#include <velmocore/storage/KeyedData.h>

#include "ToolFixture.h"

namespace velmo {
namespace {

class ShowTool : public Tool {
protected:
    void SetUp() override {
        Tool::SetUp();
        PageStore store = PageStore::openForUpdating((folder_ / "s").string());
        PageRecord page;
        page.url = URL::URLWithString(u"http://www.h.org/a/?utm_source=x");
        page.key = u"http://h.org/a";
        page.title = u"Two\nlines \x1b";
        page.text = u"the text";
        page.language = u"en";
        page.date = ReferenceDate;
        page.words = 2;
        page.links = {{URL::URLWithString(u"http://l.org/"), u"link", {}},
                      {URL::URLWithString(u"http://m.org/"), {}, {}}};
        page.bytes = Data{'<', 'p', '>', 0};
        store.put(page);
        PageRecord other;
        other.key = u"k";
        other.text = u"another";
        store.put(other);
    }
};

TEST_F(ShowTool, PrintsWhatIsKept) {
    const struct {
        const char *arguments, *out;
        int code;
    } cases[] = {
        {"s http://h.org/a", "the text\n", 0},
        {"s 'http://www.h.org/a/?utm_medium=y'", "the text\n", 0},  // leads to the key
        {"s www.h.org/a", "the text\n", 0},
        {"--field language s http://h.org/a", "en\n", 0},
        {"--field author s http://h.org/a", "", 1},
        {"--field autor s http://h.org/a", "", 2},
        {"--links s http://h.org/a", "http://l.org/\tlink\nhttp://m.org/\n", 0},
        {"--links s k", "", 0},
        {"--bytes s k", "", 2},
        {"s http://h.org/b", "", 2},
        {"none k", "", 2},
        {". k", "", 2},
        {"s", "", 2},
    };
    for (const auto& row : cases) {
        const Outcome there = shell(std::string("$V show ") + row.arguments);
        EXPECT_EQ(there.out, row.out) << row.arguments << there.err;
        EXPECT_EQ(there.code, row.code) << row.arguments;
    }
    EXPECT_EQ(shell("$V show --bytes s http://h.org/a").out, std::string("<p>\0", 4));
    EXPECT_EQ(shell("$V show s http://h.org/b").err, "velmo: s: no page http://h.org/b\n");
    EXPECT_EQ(shell("$V show none k").err, "velmo: none: No such file or directory\n");
    const std::string fields = shell("$V show --fields s http://h.org/a").out;
    EXPECT_NE(fields.find("title: Two lines"), fields.npos) << fields;
    EXPECT_NE(fields.find("date: 2001-01-01T00:00:00Z\n"), fields.npos) << fields;
    const auto objects = shell("$V show --json s http://h.org/a k").lines();
    ASSERT_EQ(objects.size(), 2u);
    EXPECT_EQ(objects[0]["links"][0], Json::parse(R"({"url":"http://l.org/","text":"link","thumbnail":null})"));
    EXPECT_EQ(objects[0]["bytes"], "PHA+AA==");
    EXPECT_EQ(objects[1]["text"], "another");
    EXPECT_EQ(objects[1]["url"], nullptr);
}

TEST_F(ShowTool, CountsWhatStoresHold) {
    const Outcome outcome = shell("$V store stats --json s none");
    EXPECT_EQ(outcome.code, 2);
    Json object = outcome.lines().at(0);
    EXPECT_EQ(object["size"], std::filesystem::file_size(folder_ / "s"));
    object.erase("size"), object.erase("bytes");
    EXPECT_EQ(object, Json::parse(R"({"file":"s","pages":2,"damaged":0,"words":2,
        "languages":[{"name":"","pages":1},{"name":"en","pages":1}],
        "hosts":[{"name":"","pages":1},{"name":"www.h.org","pages":1}],"years":[{"name":"2001","pages":1}]})"));
    EXPECT_NE(shell("$V store stats -n 1 s").out.find("hosts\n           1  -\n              and 1 more\n"),
              std::string::npos);
    std::string damaged = read("s");
    damaged[damaged.size() - 20] ^= 1;  // in the records of the last page
    write("s", damaged);
    EXPECT_EQ(shell("$V store stats --json s").lines().at(0)["damaged"], 1);
    EXPECT_EQ(shell("$V show s k").code, 2);
    EXPECT_EQ(shell("$V show s http://h.org/a").code, 0);
}

}  // namespace
}  // namespace velmo
