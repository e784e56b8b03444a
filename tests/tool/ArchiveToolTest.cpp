// Archives from a shell.
#include "ToolFixture.h"

namespace velmo {
namespace {

class ArchiveTool : public Tool {};

TEST_F(ArchiveTool, ArchivesAreMadeListedAndExtracted) {
    std::filesystem::create_directories(folder_ / "d");
    write("d/a", "text");
    write("b\x1B[m", "b");
    EXPECT_EQ(shell("$V archive create d.zip d").out, "d.zip: 1 entries\n");
    EXPECT_EQ(shell("$V archive create --keep-parent d.zip d --json").lines().at(0)["entries"], 2);
    EXPECT_EQ(shell("$V archive create d.zip b* --append").out, "d.zip: 3 entries\n");
    const auto list = shell("$V archive list --json d.zip").lines();
    ASSERT_EQ(list.size(), 3u);
    EXPECT_TRUE(list[0]["folder"] == true && list[1]["name"] == "d/a" && list[1]["size"] == 4 &&
                !list[1]["modified"].is_null());
    EXPECT_EQ(shell("$V archive extract d.zip --output new/t").out, "d.zip -> new/t, 3 entries\n");
    EXPECT_EQ(read("new/t/d/a") + read("new/t/b\x1B[m"), "textb");
    const Outcome limited = shell("$V archive extract d.zip --max-size 4 --output u");
    EXPECT_EQ(limited.code, 2);
    EXPECT_EQ(limited.err, "velmo: d.zip: more than 4 bytes would come out\n");
    EXPECT_FALSE(std::filesystem::exists(folder_ / "u"));
    EXPECT_EQ(shell("$V archive extract none").err, "velmo: none: No such file or directory\n");
    const Outcome some = shell("$V archive list d/a d.zip");
    EXPECT_EQ(some.code, 2);
    EXPECT_NE(some.out.find("d/a\n"), std::string::npos);
    EXPECT_EQ(shell("$V archive create d.zip none").code, 2);
    EXPECT_EQ(shell("$V archive list d.zip --json").lines().size(), 3u);
}

}  // namespace
}  // namespace velmo
