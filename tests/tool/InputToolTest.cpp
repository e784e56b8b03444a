// What the tool takes an input for, which inputs it reads, and what it says of those it cannot.
#include <fcntl.h>
#include <sys/stat.h>

#include "ToolFixture.h"

namespace velmo {
namespace {

using namespace std::string_literals;

class InputTool : public Tool {
protected:
    /// The text that the tool reads in bytes, as a file of that name and from standard input.
    std::string textOf(const std::string& name, const std::string& bytes, const std::string& options = "") const {
        const std::string path = write(name, bytes);
        return run("clean --json " + options + " " + path, "").lines().at(0)["text"];
    }
};

TEST_F(InputTool, TellsByTheContentWhatAFileIs) {
    const std::string wide = "\xFF\xFEh\0i\0 \0\xE9\0"s, caf = "caf\xC3\xA9";
    const std::tuple<const char*, std::string, const char*, const char*> cases[] = {
        {"page.html.de", "<!DOCTYPE html><p>a &amp; b", "", "a & b"},
        {"notes.txt", "\n <html><p>a &amp; b", "", "a & b"},
        {"x", "<b>a &amp; b</b>", "", "a & b"},
        {"irc.log", "<ann> hi & bye", "", "<ann> hi & bye"},
        {"list.txt", "a &amp; b", "", "a &amp; b"},
        {"page.html", "a &amp; b", "", "a & b"},
        {"page.html.ja.euc-jp", "a &amp; b", "", "a & b"},
        {"page.html", "<p>a &amp; b</p>", "--text", "<p>a &amp; b</p>"},
        {"list.txt", "a &amp; b", "--page", "a & b"},
        {"utf8.txt", "\xEF\xBB\xBF" + caf, "", "caf\xC3\xA9"},
        {"utf16.txt", wide, "", "hi \xC3\xA9"},
        {"utf16be.txt", "\0h\0i\0 \0t\0o\0 \0u\0s"s, "", "hi to us"},
        {"utf32.txt", "\xFF\xFE\0\0h\0\0\0"s, "", "h"},
        {"wide.html", "<\0b\0>\0h\0i\0&\0l\0t\0;\0<\0/\0b\0>\0"s, "", "hi<"},
        {"latin1.txt", "caf\xE9 na\xEFve", "", "caf\xC3\xA9 na\xC3\xAFve"},
        {"koi.txt", "\xC1\xC2", "--charset koi8-r", "\xD0\xB0\xD0\xB1"},
        {"koi.html", "<meta charset=utf-8><p>\xC1\xC2", "--charset KOI8-R", "\xD0\xB0\xD0\xB1"},
        {"forced.bin", "a\0b"s, "--text", "a\0b"},
        {"half.txt", "caf\xC3", "", "caf\xC3\x83"}};
    for (const auto& [name, bytes, options, text] : cases) {
        const std::string expected = name == "forced.bin"s ? "a\0b"s : text;
        EXPECT_EQ(textOf(name, bytes, options), expected) << name;
    }
    EXPECT_EQ(run("clean --json", "<b>a &amp; b</b>").lines().at(0)["text"], "a & b");
    for (const std::string& binary : {"GIF89a\x01"s, "a\0b\x01\x02"s, "%PDF-1.4 text"s}) {
        write("binary", binary);
        EXPECT_EQ(shell("$V words binary").err, "velmo: binary: a binary file\n");
        EXPECT_EQ(shell("$V words -r .").err, "") << binary;
    }
    EXPECT_EQ(run("words --charset nonsense").code, 2);
}

TEST_F(InputTool, ReadsLargeTextsInPieces) {
    // Longer than a piece, with sequences of three bytes across the places where pieces end.
    std::string text, latin;
    while (text.size() < 2500000) text += "\xE2\x82\xAC 1\n";
    const std::string path = write("large.txt", text);
    EXPECT_EQ(run("clean " + path).out, text + "\n");
    write("broken.txt", text + "\xE9");
    const std::string broken = shell("$V clean broken.txt").out;
    EXPECT_EQ(broken.substr(0, 9), "\xC3\xA2\xE2\x80\x9A\xC2\xAC 1") << "not UTF-8, so all is windows-1252";
}

TEST_F(InputTool, ReadsWhatIsCompressed) {
    write("a", "one "), write("b", "<b>two &lt; three</b>");
    EXPECT_EQ(shell("gzip -c a >a.gz; gzip -c a >>a.gz; $V words a.gz").out, "       2 a.gz\n");
    EXPECT_EQ(shell("gzip -c b >page.gz; $V text page.gz").out, "two < three\n");
    EXPECT_EQ(shell("gzip -c a | head -c 20 >cut.gz; $V words cut.gz").err,
              "velmo: cut.gz: damaged gzip or zlib data\n");
    EXPECT_EQ(shell("$V words /dev/zero /dev/null").err, "velmo: /dev/zero: a device without an end\n");
    EXPECT_EQ(shell("head -c 1001 /dev/zero | tr '\\0' a | gzip >bomb.gz; $V words --max-size 1000 bomb.gz a").err,
              "velmo: bomb.gz: more than 1000 bytes come out\n");
    EXPECT_EQ(shell("$V words --max-size 1001 bomb.gz").code, 0);
    // Members one after the other, zeros behind them, and what is none.
    EXPECT_EQ(shell("$V unpack --stdout a.gz").out, "one one ");
    EXPECT_EQ(shell("printf '\\0\\0' >>a.gz; $V unpack --stdout a.gz").out, "one one ");
    EXPECT_EQ(shell("printf x >>a.gz; $V unpack --stdout a.gz").err,
              "velmo: a.gz: more bytes after the end of the compressed data\n");
    EXPECT_EQ(shell("$V pack --zlib --stdout b | $V unpack | cmp - b").code, 0);
}

TEST_F(InputTool, WalksOnAfterWhatItCannotRead) {
    std::filesystem::create_directories(folder_ / "tree/b");
    write("tree/b/1.txt", "cat"), write("tree/c.txt", "cat"), write("tree/B.html", "cat");
    std::filesystem::create_symlink("c.txt", folder_ / "tree/link.txt");
    ASSERT_EQ(mkfifo((folder_ / "tree/fifo").c_str(), 0600), 0);
    // A path that grows longer than the system takes: the first folder that cannot be opened
    // is the one that is named.
    int at = open((folder_ / "tree").c_str(), O_DIRECTORY);
    const std::string part(250, 'd');
    for (int i = 0; i < 20; ++i) {
        ASSERT_EQ(mkdirat(at, part.c_str(), 0700), 0);
        const int next = openat(at, part.c_str(), O_DIRECTORY);
        close(std::exchange(at, next));
    }
    close(at);
    const Outcome found = shell("$V match -r cat tree");
    EXPECT_EQ(found.out, "tree/B.html\ntree/b/1.txt\ntree/c.txt\n");
    EXPECT_TRUE(found.err.starts_with("velmo: tree/" + part) &&
                found.err.ends_with("/" + part + ": File name too long\n"));
    EXPECT_EQ(std::ranges::count(found.err, '\n'), 1);
    EXPECT_EQ(found.code, 2);
    EXPECT_EQ(shell("$V match -r --include='*.txt' --exclude='d*' cat tree").out, "tree/b/1.txt\ntree/c.txt\n");
    EXPECT_EQ(shell("$V match -r --exclude=b --exclude='d*' cat tree").out, "tree/B.html\ntree/c.txt\n");
    EXPECT_EQ(shell("cd tree; $V match -r --exclude='d*' --include='?.txt' cat").out, "./b/1.txt\n./c.txt\n");
}

TEST_F(InputTool, TakesNamesFromElsewhere) {
    const std::string odd = "caf\xE9\n.txt";
    write(odd, "a cat"), write("b.txt", "a cat");
    EXPECT_EQ(shell("printf 'b.txt\\n\\nb.txt\\n' | $V match --files-from - cat").out, "b.txt\nb.txt\n");
    EXPECT_EQ(shell("$V match -r -l0 cat . | $V match -0 --files-from - cat").out, "./b.txt\0./"s + odd + "\0"s);
    EXPECT_EQ(shell("$V words --files-from missing").err, "velmo: missing: No such file or directory\n");
    const std::vector<Json> objects = shell("$V words -r --json .").lines();
    ASSERT_EQ(objects.size(), 2u);
    EXPECT_FALSE(objects[0].contains("fileBytes"));
    EXPECT_EQ(objects[1]["file"], "./caf\xEF\xBF\xBD\n.txt");
    EXPECT_EQ(objects[1]["fileBytes"], "Li9jYWbpCi50eHQ=");
    for (const char* command : {"words", "text", "charset", "links", "language", "lines", "clean", "digest --crc",
                                "match cat", "find cat", "excerpts cat", "gather -"})
        EXPECT_NE(run(command + " --json"s, "<p>a cat").out.find("{\"file\":\"-\""), std::string::npos) << command;
}

TEST_F(InputTool, GathersPagesWhateverTheirName) {
    const std::string title = "<title>\xC6\xFC</title><meta charset=euc-jp>";
    std::filesystem::create_directory(folder_ / "site");
    write("site/page.html.ja.euc-jp", "<html>" + title + "<p>\xCB\xDC cat<a href='x#y'>l</a>");
    write("site/no-name", "<html><p>cat"), write("site/notes.txt", "cat"), write("site/a?b#c.html", "<a href=d>");
    const std::vector<Json> found =
        shell("$V gather --json --query cat --base http://h.org/s/ --follow all site").lines();
    ASSERT_EQ(found.size(), 4u);
    EXPECT_EQ(found[0]["follow"], Json({"http://h.org/s/d"}));
    EXPECT_EQ(found[2]["title"], "\xE6\x97\xA5");
    EXPECT_EQ(found[2]["charset"], "euc-jp");
    EXPECT_EQ(found[2]["excerpt"], "\xE6\x9C\xAC cat l");
    EXPECT_EQ(shell("$V find cat site/page.html.ja.euc-jp").out, "site/page.html.ja.euc-jp:3:3:\xE6\x9C\xAC cat l\n");
    std::filesystem::create_directory(folder_ / "empty");
    const Outcome none = shell("$V gather empty");
    EXPECT_EQ(none.code, 1);
    EXPECT_EQ(none.err, "velmo: gather: no page found\n");
    EXPECT_EQ(shell("$V gather --base nonsense site").err, "velmo: nonsense: not a URL\n");
}

}  // namespace
}  // namespace velmo
