// Helpers from a shell: both sides of a call, and what is told of one that fails.
#include "ToolFixture.h"

namespace velmo {
namespace {

class HelperTool : public Tool {
protected:
    void SetUp() override {
        Tool::SetUp();
        write("page.html", "<title>T\xC3\xA9</title><body><p>some <b>text</b> <a href=x.html>link</a>");
    }
    /// A line while a helper serves under "pages"; $H is the example helper.
    Outcome served(const std::string& line) const {
        return shell("export XDG_RUNTIME_DIR=$PWD; H=" VELMO_PAGE_HELPER
                     "; \"$V\" helper serve pages >log & "
                     "\"$V\" helper call --wait 20 pages title x >/dev/null; " +
                     line + "; code=$?; kill $!; wait $!; ls velmo >left; exit $code");
    }
};

TEST_F(HelperTool, ServesAndCalls) {
    const std::tuple<const char*, int, const char*, const char*> cases[] = {
        {"call pages text @page.html", 0, "T\u00E9\n\nsome text link\n", ""},
        {"call pages links @page.html http://h.org/a/", 0, "http://h.org/a/x.html\n", ""},
        {"call --json pages title '<title>A</title>'", 0,
         R"({"name":"pages","operation":"title","result":"A"})"
         "\n",
         ""},
        {"call pages title @@home", 0, "\n", ""},
        {"call --typed pages title 7", 2, "", "velmo: pages: a page is wanted, and its URL if there is one\n"},
        {"call pages none", 2, "", "velmo: pages: Unknown method none or interface org.velmo.Helper.\n"},
        {"call other text x", 2, "", "velmo: other: no helper serves under this name\n"},
        {"call pages text @none", 2, "", "velmo: none: No such file or directory\n"},
        {"list", 0, "pages: links stillBusy text title\n", ""},
        {"serve pages", 2, "", "velmo: pages: pages: another process has the name\n"},
        {"call --start $H org.example.pages text @page.html", 0, "T\u00E9\n\nsome text link\n", ""},
        {"call --start /none other text", 2, "",
         "velmo: Couldn't launch /none.\nvelmo: other: no helper serves under this name\n"},
    };
    for (const auto& [arguments, code, out, err] : cases) {
        const Outcome outcome = served("\"$V\" helper " + std::string(arguments));
        EXPECT_EQ(outcome.code, code) << arguments;
        EXPECT_EQ(outcome.out, out) << arguments;
        EXPECT_EQ(outcome.err, err) << arguments;
        EXPECT_EQ(read("left"), "") << arguments;
        EXPECT_EQ(read("log"), "serving pages: links text title\n");
    }
    EXPECT_EQ(shell("XDG_RUNTIME_DIR=$PWD \"$V\" helper list").code, 1);
}

}  // namespace
}  // namespace velmo
