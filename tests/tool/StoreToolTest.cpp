// Keyed data and stores from a shell.
#include "ToolFixture.h"

namespace velmo {
namespace {

class StoreTool : public Tool {};

TEST_F(StoreTool, RecordsAreListsOfStringsToo) {
    const std::string list = (folder_ / "list").string();
    EXPECT_EQ(run("records --write-strings " + list, "one\r\n\ntwo\nth\xC3\xA9\n").code, 0);
    EXPECT_EQ(run("records --strings " + list).out, "one\ntwo\nth\xC3\xA9\n");
    EXPECT_EQ(run("records --strings --json " + list).lines().at(0)["strings"], Json({"one", "two", "th\xC3\xA9"}));
    const std::string records(
        "VWdt\0\0\0\1\0\0\0\2\0\0\0\0\1\2VWda\0\0\0\2\x40\x59\0\0\0\0\0\0VWst\0\0\0\3\0\0\0\1\0\0\0\0\xFF?", 52);
    const Json all = run("records --json " + write("r", records)).lines().at(0);
    EXPECT_FALSE(all["valid"]);
    EXPECT_EQ(all["records"], Json::parse(R"([{"tag":"VWdt","key":1,"value":"AQI="},
        {"tag":"VWda","key":2,"value":100.0},{"tag":"VWst","key":3,"value":null}])"));
    EXPECT_EQ(run("records r nowhere").code, 2);
    EXPECT_EQ(run("records --write-strings /dev/full", "x\n").code, 2);
}

TEST_F(StoreTool, StoresAreMadeReadAndMended) {
    const std::string text = "the text of a note, the text of a note, the text of a note\n";
    write("a", text);
    write("b", std::string("\0\xFF", 2));
    EXPECT_EQ(shell("$V store append s a b none --json").code, 2);
    EXPECT_EQ(shell("$V store append s a --compress --block-size 512").out, "a at 93\n");
    const auto list = shell("$V store list --json s").lines();
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[1], Json::parse(R"({"offset":75,"length":18,"size":2,"compressed":false})"));
    EXPECT_EQ(list[2], Json::parse(R"({"offset":93,"length":512,"size":59,"compressed":true})"));
    EXPECT_EQ(shell("$V store get s 93").out, text);
    EXPECT_EQ(shell("$V store get s 75 --json").lines().at(0)["data"], "AP8=");
    EXPECT_EQ(shell("$V store update s 75 a").code, 2);
    EXPECT_EQ(shell("$V store update s 93 b && $V store get s 93").out, "updated 93\n" + std::string("\0\xFF", 2));
    EXPECT_EQ(shell("$V store delete s 75; $V store delete s 75; $V store get s 75").code, 2);
    for (const char* line : {"store get s 1", "store delete s 1", "store list none", "store update none 0 a",
                             "store delete none 0", "store append . a", "store optimize s a", "store salvage s a"})
        EXPECT_EQ(shell("$V " + std::string(line)).code, 2) << line;
    EXPECT_FALSE(std::filesystem::exists(folder_ / "none"));
    EXPECT_EQ(shell("$V store check s").out, "s: 2 blocks, 1 deleted, 0 damages\n");
    EXPECT_EQ(shell("$V store optimize s t").code, 0);
    EXPECT_EQ(read("t").size(), 75u + 18);

    std::string damaged = read("s");
    damaged[6] = '\1';  // a length
    write("s", damaged);
    const Outcome check = shell("$V store check --json s");
    EXPECT_EQ(check.code, 1);
    EXPECT_EQ(check.lines().at(0)["offset"], 0);
    EXPECT_EQ(check.lines().back()["blocks"], 1);
    EXPECT_EQ(shell("$V store optimize s u").code, 2);
    EXPECT_FALSE(std::filesystem::exists(folder_ / "u"));
    EXPECT_EQ(shell("$V store salvage s u --json").lines().at(0)["blocks"], 1);
    EXPECT_EQ(shell("$V store check u").out, "u: 1 blocks, 0 deleted, 0 damages\n");
    EXPECT_EQ(shell("$V store optimize u u --force").code, 0);
}

}  // namespace
}  // namespace velmo
