// Folder metadata from a shell.
#include "../../bench/FolderStore.h"
#include "ToolFixture.h"

namespace velmo {
namespace {

class CommentsTool : public Tool {};

TEST_F(CommentsTool, PrintsRecordsAndComments) {
    const std::string sample = test::readData("dsstore/comments-small.DS_Store");
    std::filesystem::create_directories(folder_ / "deep/er");
    write("deep/er/.DS_Store", sample);
    write("renamed", sample);
    const Json expected =
        Json::parse(R"([{"name":".","codec":"cmmt","type":"ustr","value":"comment on the folder itself"},
        {"name":"Annual report 2009.pdf","codec":"cmmt","type":"ustr","value":"Signed copy, see also the March minutes"},
        {"name":"notes.txt","codec":"Iloc","type":"blob","value":"AAAAEAAAACD///////8AAA=="},
        {"name":"notes.txt","codec":"cmmt","type":"ustr","value":"draft"},
        {"name":"Plain.rtf","codec":"Iloc","type":"blob","value":"AAAAaAAAAHT///////8AAA=="}])");
    EXPECT_EQ(shell("$V comments --json renamed").lines().at(0), (Json{{"file", "renamed"}, {"records", expected}}));
    const Outcome all = shell("$V comments --json -r .");
    EXPECT_EQ(all.lines().at(0)["records"], expected);
    EXPECT_EQ(all.lines().size(), 1u);
    EXPECT_EQ(shell("$V comments deep/er/ --name notes.txt").out, "draft\n");
    EXPECT_EQ(shell("$V comments - --json --name .", sample).lines().at(0)["comment"], expected[0]["value"]);
    const Outcome none = shell("$V comments --json --name Notes.txt renamed");
    EXPECT_EQ(none.code, 1);
    EXPECT_EQ(none.lines().at(0), Json::parse(R"({"file":"renamed","name":"Notes.txt","comment":null})"));
    write("text", "no store");
    const Outcome bad = shell("$V comments deep text none renamed");
    EXPECT_EQ(bad.code, 2);
    EXPECT_EQ(bad.err,
              "velmo: deep/.DS_Store: No such file or directory\nvelmo: text: not a file of folder metadata\n"
              "velmo: none: No such file or directory\n");
    EXPECT_NE(bad.out.find("notes.txt  cmmt  ustr  draft\n"), std::string::npos);
    // Damage is told, and not where results stand.
    bench::FolderStore made;
    const std::uint32_t root = made.nextIndex();
    const std::vector<std::string> own(2, bench::comment(u"a", u"1"));
    write("damaged", made.file(made.addNode(own, root, std::vector<std::uint32_t>{root, 999})));
    const Outcome damaged = shell("$V comments --json damaged");
    EXPECT_EQ(damaged.code, 2);
    EXPECT_EQ(damaged.lines().at(0)["records"].size(), 2u);
    EXPECT_EQ(damaged.err, "velmo: damaged: damaged: 1 nodes cannot be read to their end\n");
}

}  // namespace
}  // namespace velmo
