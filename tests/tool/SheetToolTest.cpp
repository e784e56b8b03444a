// Sheets from a shell: what an input is, and rows there and back.
#include "ToolFixture.h"

namespace velmo {
namespace {

class SheetTool : public Tool {};

TEST_F(SheetTool, WritesWhatItReads) {
    write("a.csv", "\xEF\xBB\xBFname,note\r\n\"2\"\"\",\"a,b\nc\"\r\n");
    write("b.tab", "caf\xE9\tx\ny\tz\n");
    const Outcome read = shell("gzip -k a.csv; touch a.txt; $V sheet --json a.csv a.csv.gz missing.csv b.tab");
    EXPECT_EQ(read.code, 2);
    EXPECT_NE(read.err.find("velmo: missing.csv: "), read.err.npos);
    const std::vector<Json> all = read.lines();
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0]["rows"].dump(), R"([["name","note"],["2\"","a,b\nc"]])");
    EXPECT_EQ(all[1]["rows"], all[0]["rows"]);
    EXPECT_EQ(all[2]["rows"][0][0], "caf\u00E9");
    EXPECT_EQ(shell("$V sheet --json a.txt").lines()[0]["rows"], nullptr);
    const Outcome again = shell("$V sheet --json a.csv | $V sheet --write | $V sheet --json --format csv");
    EXPECT_EQ(again.lines()[0]["rows"], all[0]["rows"]);
    EXPECT_EQ(shell("$V sheet --charset koi8-r -n 1 b.tab").out, "caf\u0418\tx\n");
}

TEST_F(SheetTool, TakesRowsWhereverTheyStand) {
    EXPECT_EQ(run("sheet --write", R"([["a", 1, null], []] {"rows": [[true, 2.50]], "x": 3} ["\"q\""])").out,
              "\"a\";\"1\";\"\"\n\"true\";\"2.50\"\n\"\"\"q\"\"\"\n");
    for (const char* input : {"[", "[[\"a\", []]]", "[\"a\", {}]", "nonsense"})
        EXPECT_EQ(run("sheet --write", input).code, 2) << input;
    EXPECT_EQ(run("sheet --write", "").code, 0);
    EXPECT_EQ(run("sheet --write", std::string(1000000, '[')).code, 2);
}

}  // namespace
}  // namespace velmo
