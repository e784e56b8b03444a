// Attributes and location files from a shell.
#include "ToolFixture.h"

namespace velmo {
namespace {

class AttributesTool : public Tool {};

TEST_F(AttributesTool, SetsReadsAndRemoves) {
    write("a", "x");
    write("b", "x");
    if (shell("$V attributes set k v a").code != 0) GTEST_SKIP() << "no attributes in the temporary folder";
    const std::tuple<const char*, int, std::string> cases[] = {
        {"set --as base64 bytes AAH/ a b", 0, "a: set bytes\nb: set bytes\n"},
        {"get bytes b", 0, std::string("\0\1\xFF", 3)},
        {"get k a b", 0, "==> a <==\nv\n"},
        {"get k b none", 2, ""},
        {"list --no-dereference link", 1, ""},
        {"set --as base64 k AAH a", 2, ""},
        {"list --values --json -r .", 0,
         R"({"file":"./a","attributes":[{"name":"bytes","type":"data","value":"AAH/"},{"name":"k","type":"string","value":"v"}]})"
         "\n{\"file\":\"./b\",\"attributes\":[{\"name\":\"bytes\",\"type\":\"data\",\"value\":\"AAH/\"}]}\n"},
        {"tags --set Red --set 'to do' a --json", 0, "{\"file\":\"a\",\"tags\":[\"Red\",\"to do\"]}\n"},
        {"tags a b", 0, "==> a <==\nRed\nto do\n"},
        {"source --set http://h/ a", 0, "a: set source\n"},
        {"source a b --json", 0, "{\"file\":\"a\",\"source\":\"http://h/\"}\n{\"file\":\"b\",\"source\":null}\n"},
        {"remove k b --json", 1, "{\"file\":\"b\",\"name\":\"k\",\"removed\":false}\n"},
    };
    shell("ln -s a link");
    for (const auto& [arguments, code, out] : cases) {
        const Outcome outcome = shell("$V attributes " + std::string(arguments));
        EXPECT_EQ(outcome.code, code) << arguments << outcome.err;
        EXPECT_EQ(outcome.out, out) << arguments;
    }
}

TEST_F(AttributesTool, MakesAndReadsLocations) {
    EXPECT_EQ(shell("$V location --create http://h/?a=1 a.webloc b.url").out,
              "a.webloc: http://h/?a=1\nb.url: http://h/?a=1\n");
    EXPECT_EQ(read("b.url"), "[InternetShortCut]\nURL=http://h/?a=1\n");
    EXPECT_EQ(shell("$V location --create http://h/ a.webloc").err,
              "velmo: a.webloc: is there already; --force replaces it\n");
    EXPECT_EQ(shell("$V location --create http://i/ --force --json b.url").out,
              "{\"file\":\"b.url\",\"url\":\"http://i/\"}\n");
    write("c.txt", "http://h/");
    EXPECT_EQ(shell("$V location -r .").out, "./a.webloc: http://h/?a=1\n./b.url: http://i/\n");
    EXPECT_EQ(shell("$V location c.txt --json").out, "{\"file\":\"c.txt\",\"url\":null,\"name\":null}\n");
    EXPECT_EQ(shell("$V location none.url a.webloc").err, "velmo: none.url: No such file or directory\n");
    EXPECT_EQ(shell("$V location - < a.webloc && $V location < b.url").out, "http://h/?a=1\nhttp://i/\n");
}

}  // namespace
}  // namespace velmo
