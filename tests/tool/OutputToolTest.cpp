// What the tool writes: all of it or a complaint, nothing that a terminal obeys, whole files.
#include <sys/stat.h>

#include "ToolFixture.h"

namespace velmo {
namespace {

using namespace std::string_literals;

using OutputTool = Tool;

TEST_F(OutputTool, ChecksEveryWrite) {
    write("a.txt", "one two three"), write("p.html", "<title>x</title><a href=y>z</a>");
    for (const char* command : {"--help",
                                "--version",
                                "help query",
                                "words a.txt",
                                "text --json p.html",
                                "match one a.txt",
                                "find o* a.txt",
                                "excerpts one a.txt",
                                "query one",
                                "lines a.txt",
                                "clean a.txt",
                                "digest --md5 a.txt",
                                "pack --stdout a.txt",
                                "url simplify http://h/",
                                "mime html",
                                "charset p.html",
                                "language a.txt",
                                "links p.html",
                                "thumbs p.html",
                                "gather p.html"}) {
        const Outcome full = shell("$V "s + command + " >/dev/full");
        EXPECT_EQ(full.code, 2) << command;
        EXPECT_EQ(full.err, "velmo: standard output: No space left on device\n") << command;
    }
    // The reader has gone, and SIGPIPE is ignored.
    const Outcome closed = shell(
        "for i in 1 2 3; do yes cat | head -c 3000000 >big$i; done; trap '' PIPE; "
        "$V find cat big1 big2 big3 | head -n 1");
    EXPECT_EQ(closed.out, "big1:1:1:cat\n");
    EXPECT_EQ(closed.err, "");
}

#ifndef VELMO_SANITIZED  // a sanitized tool takes memory by the terabyte
TEST_F(OutputTool, GoesOnWhereMemoryOrThreadsAreShort) {
    write("a.txt", "one two"), write("b.txt", "three");
    const Outcome memory = shell(
        "head -c 300000000 /dev/zero | tr '\\0' a >big; ulimit -v 200000; "
        "$V words -j1 a.txt big b.txt");
    EXPECT_EQ(memory.out, "       2 a.txt\n       1 b.txt\n");
    EXPECT_EQ(memory.err, "velmo: big: not enough memory\n");
    EXPECT_EQ(memory.code, 2);
    // No stack of such a size can be had for a thread.
    const Outcome threads = shell("ulimit -s 200000000000 && $V words -j9 a.txt b.txt a.txt b.txt");
    EXPECT_EQ(threads.out, "       2 a.txt\n       1 b.txt\n       2 a.txt\n       1 b.txt\n");
    EXPECT_EQ(threads.code, 0);
}

TEST_F(OutputTool, WritesWhatItFindsAtOnce) {
    // All lines together are longer than the memory, by a long name of the file.
    std::string name = "many";
    while (name.size() < 3900) name.insert(0, "./");
    const Outcome found =
        shell("yes 'a a a a a a a a' | head -c 60000 >many; ulimit -v 75000; $V find -j1 a " + name + " | wc -lc");
    EXPECT_EQ(found.err, "");
    std::size_t lines = 0, bytes = 0;
    std::istringstream(found.out) >> lines >> bytes;
    EXPECT_EQ(lines, 30000u);
    EXPECT_GT(bytes, 100000000u);
}
#endif

TEST_F(OutputTool, MakesWholeFilesOnly) {
    write("a.txt", "one two"), write("other", "keep me");
    // What stands there keeps its mode, a link is followed, and nobody's file is touched.
    const Outcome replaced = shell(
        "ln -s real.gz a.txt.gz; printf x >real.gz; chmod 640 real.gz; ln -s other a.txt.gz.part; $V pack --force "
        "a.txt "
        "&& test -L a.txt.gz && stat -c %a real.gz && $V unpack --stdout real.gz && cat other");
    EXPECT_EQ(replaced.out, "a.txt -> a.txt.gz, 7 -> 27 bytes\n640\none twokeep me");
    EXPECT_EQ(shell("$V pack a.txt").err, "velmo: a.txt: File exists\n");
    EXPECT_EQ(shell("chmod 600 other; $V pack --json other >/dev/null; stat -c %a other.gz").out, "600\n");
    EXPECT_EQ(shell("$V pack --force --stdout other | cmp - other.gz; mkfifo f.gz; printf x >f; $V pack --force f").err,
              "velmo: f: not a regular file\n");
    // Killed in the middle, by the limit of what a file may hold.
    const Outcome killed = shell(
        "head -c 9000000 /dev/zero | gzip >z.gz; (ulimit -c 0; ulimit -f 1000; exec $V unpack z.gz); "
        "test ! -e z && ls -A | grep -c velmo-");
    EXPECT_EQ(killed.out, "0\n");
    // A name that leaves no room for another suffix.
    const std::string longName(252, 'n');
    write(longName, "x");
    EXPECT_EQ(shell("$V pack " + longName).code, 0);
}

TEST_F(OutputTool, ShowsControlsOnATerminal) {
    write("a\x1B[2J\xC2\x9B\xE2\x80\xAE.txt", "a cat\x1B[31m\x07 end");
    write("raw", "\x9B\x1B[2J");
    shell("gzip raw");
    const std::string name = "./a^[[2J<U+009B><U+202E>.txt";
    const auto onTerminal = [&](const std::string& arguments) {
        return shell("TERM=dumb script -qec \"$V " + arguments + "\" /dev/null </dev/null").out;
    };
    EXPECT_EQ(onTerminal("find -r cat ."), name + ":1:3:a cat^[[31m^G end\r\n");
    EXPECT_EQ(onTerminal("unpack --stdout raw.gz").substr(0, 9), "<9B>^[[2J");
    EXPECT_EQ(onTerminal("words -r --json . | od -c | grep -c 033"), "0\r\n");
    EXPECT_EQ(onTerminal("nonsense'\x1B[2J'").find('\x1B'), std::string::npos);
    EXPECT_NE(shell("$V find -r cat .").out.find("a cat\x1B[31m"), std::string::npos) << "a pipe gets the bytes";
}

/// What a terminal shows in the end of the bytes that it got, line by line, and all that it ever
/// showed.
struct Screen {
    std::vector<std::string> lines = {""};
    std::string ever;

    explicit Screen(const std::string& bytes) {
        std::size_t column = 0;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            if (bytes[i] == '\r') {
                column = 0;
            } else if (bytes[i] == '\n') {
                lines.emplace_back(), column = 0;
            } else if (bytes.compare(i, 3, "\x1B[K") == 0) {
                lines.back().resize(column), i += 2;
            } else {
                lines.back().resize(std::max(lines.back().size(), column + 1), ' ');
                lines.back()[column++] = bytes[i];
                ever += bytes[i];
            }
        }
    }
};

TEST_F(OutputTool, ShowsProgressOnATerminalOnlyAndNothingStandsInIt) {
    write("a.txt", "one"), write("b.txt", "two");
    write("c.html", "<meta charset=no-such-set><p>x");
    // The work takes longer than progress waits for.
    const std::string work = "(sleep .7; echo x) | $V words -j1 a.txt - missing b.txt c.html d >out";
    const Outcome onTerminal = shell("export V; TERM=dumb script -qec '" + work + "' /dev/null </dev/null");
    const Screen screen(onTerminal.out);
    EXPECT_NE(screen.ever.find("2 of 6"), std::string::npos) << onTerminal.out;
    EXPECT_EQ(screen.lines, (std::vector<std::string>{"velmo: missing: No such file or directory",
                                                      "velmo: c.html: Unknown/Unsupported encoding: no-such-set",
                                                      "velmo: d: No such file or directory", ""}));
    EXPECT_EQ(read("out"), "       1 a.txt\n       1 -\n       1 b.txt\n       1 c.html\n");
    const Outcome piped = shell(work);
    EXPECT_EQ(piped.err,
              "velmo: missing: No such file or directory\n"
              "velmo: c.html: Unknown/Unsupported encoding: no-such-set\n"
              "velmo: d: No such file or directory\n");
    EXPECT_EQ(piped.code, 2);
}

TEST_F(OutputTool, PassesTheDiagnosticsOfTheLibraryOn) {
    const std::string page = "<html><meta charset=no-such-set><p>x";
    write("a.html", page), write("b.html", page);
    const Outcome found = shell("$V words a.html b.html");
    EXPECT_EQ(found.code, 0);
    EXPECT_EQ(found.err,
              "velmo: a.html: Unknown/Unsupported encoding: no-such-set\n"
              "velmo: b.html: Unknown/Unsupported encoding: no-such-set\n");
}

TEST_F(OutputTool, RefusesNumbersThatAreOutOfRange) {
    for (const char* wrong : {"excerpts --length -1 x", "excerpts --length 99999999999999999999 x",
                              "find --fuzzy nan x", "find --fuzzy 1.5 x", "find --limit 1x x", "words -j 0",
                              "words -j 1025", "pack --level 10", "unpack --max-size -1", "clean --expand-tabs 0",
                              "match --default-distance -1 x", "url path --max-host -2", "gather --follow -1 ."}) {
        const Outcome outcome = run(wrong);
        EXPECT_EQ(outcome.code, 2) << wrong;
        EXPECT_TRUE(outcome.err.starts_with("velmo: ")) << outcome.err;
        EXPECT_NE(outcome.err.find(": --"), std::string::npos) << outcome.err;
    }
}

}  // namespace
}  // namespace velmo
