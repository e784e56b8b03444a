#include "tool/ToolFixture.h"

namespace velmo {
namespace {

using FindTool = Tool;

TEST_F(FindTool, TellsWhereHitsStand) {
    const std::string file = write("a.txt", "Die \xC3\x84rzte\r\n\xF0\x9F\x98\x80 database\n\ndata base\n");
    Outcome found = run("find 'data*' " + file);
    EXPECT_EQ(found.code, 0);
    EXPECT_EQ(found.out, file + ":2:4:\xF0\x9F\x98\x80 database\n" + file + ":4:1:data base\n");
    EXPECT_EQ(run("find -e nothing -e 'ba?e' --color=always - ", "\tbase\x1B[2J").out,
              "\x1B[35m-\x1B[m:\x1B[32m1\x1B[m:\x1B[32m2\x1B[m:\t\x1B[1;31mbase\x1B[m^[[2J\n");

    const std::vector<Json> hits = run("find -e 'data base' -e '*base' --json " + file).lines();
    ASSERT_EQ(hits.size(), 2u);
    EXPECT_EQ(hits[0], Json::parse(R"({"range": [14, 8], "bytes": [17, 8], "line": 2, "column": 4, "text": "database",
        "lineText": "\ud83d\ude00 database", "file": ")" +
                                   file + "\"}"));
    EXPECT_EQ(hits[1]["bytes"], Json({27, 9}));
    EXPECT_EQ(hits[1]["line"], 4);
    EXPECT_EQ(run("find --previous -n 1 'd*' --json " + file).lines().at(0)["range"], Json({24, 4}));
}

TEST_F(FindTool, ComparesAsAsked) {
    const std::string file = write("a.txt", "\xC3\x84ra aera ARA aro\n");
    const std::pair<const char*, std::size_t> cases[] = {
        {"ara", 1},
        {"--comparison=exact ara", 0},
        {"--comparison=diacritics Ara", 1},
        {"--comparison=both ara", 2},
        {"--comparison=exact+fuzzy --fuzzy=0.6 ara", 1},
        {"--fuzzy=0.6 ara", 2},
        {"--limit 0 ara", 0},
    };
    for (const auto& [options, hits] : cases) {
        const Outcome found = run(std::string("find --json ") + options + " " + file);
        EXPECT_EQ(found.lines().size(), hits) << options << found.err;
        EXPECT_EQ(found.code, hits ? 0 : 1) << options;
    }
    for (const char* wrong : {"", "--comparison=other a", "--fuzzy=2 a", "--jobs=0 a", "--color=red a"})
        EXPECT_EQ(run(std::string("find ") + wrong).code, 2) << wrong;
}

TEST_F(FindTool, WalksFoldersInOrder) {
    const std::string root = (folder_ / "tree").string();
    std::filesystem::create_directories(root + "/b/c");
    std::filesystem::create_directory_symlink(root, root + "/b/loop");
    write("tree/b.txt", "cat");
    write("tree/a.txt", "cat");
    write("tree/b/c/page.html", "<p>cat</p>");
    write("tree/b/binary", std::string("cat\0", 4));
    for (int i = 0; i < 40; ++i) write("tree/b/" + std::to_string(100 + i), "a cat");
    const Outcome found = run("find -r -j 1 cat " + root);
    EXPECT_EQ(found.code, 0);
    EXPECT_EQ(found.out.substr(0, found.out.find('\n')), root + "/a.txt:1:1:cat");
    EXPECT_EQ(std::count(found.out.begin(), found.out.end(), '\n'), 43);
    EXPECT_EQ(run("find -r -j 7 cat " + root).out, found.out);

    const Outcome mixed = run("find cat " + root + " " + root + "/nothing " + root + "/a.txt");
    EXPECT_EQ(mixed.code, 2);
    EXPECT_EQ(mixed.out, root + "/a.txt:1:1:cat\n");
    EXPECT_EQ(mixed.err,
              "velmo: " + root + ": Is a directory\nvelmo: " + root + "/nothing: No such file or directory\n");
    EXPECT_EQ(run("find cat", "a cat").out, "-:1:3:a cat\n");
}

}  // namespace
}  // namespace velmo
