// Zip archives: what goes in comes out, others read them, and none writes where it must not.
#include <sys/stat.h>
#include <velmocore/system/Archives.h>
#include <velmocore/system/ChildProcess.h>

#include "FailingCalls.h"
#include "FolderFixture.h"

namespace velmo {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using test::treeOf;

std::string little(std::uint64_t value, int bytes) {
    std::string text;
    for (; bytes-- > 0; value >>= 8) text += static_cast<char>(value);
    return text;
}

std::uint32_t checksum(const std::string& text) {
    std::uint32_t sum = ~0u;
    for (const char byte : text) {
        sum ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) sum = sum >> 1 ^ (sum & 1 ? 0xEDB88320 : 0);
    }
    return ~sum;
}

/// An entry of an archive that is put together by hand, stored and not packed.
struct Entry {
    std::string name, content = "content";
    std::uint32_t mode = S_IFREG | 0644;
    std::uint16_t flags = 0;
    std::string localName = name;
    std::uint32_t size = static_cast<std::uint32_t>(content.size());
    std::uint8_t system = 3;
    std::string extra = {};
};

std::string zipOf(const std::vector<Entry>& entries, const std::string& before = "") {
    std::string all = before, directory;
    for (const Entry& e : entries) {
        const std::string common = little(e.flags, 2) + little(0, 2) + little(0, 2) + little(0x21, 2) +
                                   little(checksum(e.content), 4) + little(e.content.size(), 4) + little(e.size, 4);
        directory += "PK\1\2" + little(20, 1) + little(e.system, 1) + little(20, 2) + common +
                     little(e.name.size(), 2) + little(e.extra.size(), 2) + little(0, 6) +
                     little(std::uint64_t{e.mode} << 16, 4) + little(all.size() - before.size(), 4) + e.name + e.extra;
        all += "PK\3\4" + little(20, 2) + common + little(e.localName.size(), 2) + little(e.extra.size(), 2) +
               e.localName + e.extra + e.content;
    }
    const std::uint64_t start = all.size() - before.size();
    return all + directory + "PK\5\6" + little(0, 4) + little(entries.size(), 2) + little(entries.size(), 2) +
           little(directory.size(), 4) + little(start, 4) + little(0, 2);
}

Entry link(const std::string& name, const std::string& target) { return {name, target, S_IFLNK | 0777}; }

class Archives : public test::FolderTest {
protected:
    void makeTree() const {
        write("s/one.txt", std::string(300000, 'a'));
        write("s/\xC3\xA4/e\xCC\x81.txt", "decomposed");
        write("s/\xFF\xC3\x28.bin", std::string("\0\1\xFF", 3));
        write("s/__MACOSX/._one.txt", "side");
        write("s/back\\slash", "b");
        write("s/run", "");
        fs::create_directories(at("s/empty"));
        fs::create_symlink("../one.txt", at("s/\xC3\xA4/link"));
        fs::permissions(at("s/run"), fs::perms(04751));
        fs::permissions(at("s/empty"), fs::perms(0500));
        fs::last_write_time(at("s/one.txt"), fs::file_time_type::clock::now() - std::chrono::hours(1000));
    }
    std::vector<ArchiveEntry> contents(const char* name) const {
        auto entries = contentsOfArchiveAtPath(at(name));
        return entries ? std::move(*entries) : std::vector<ArchiveEntry>();
    }
    /// The text of the error, after nothing outside of the destination was touched.
    std::string extracted(const std::string& archive, ExtractionOptions options = {}) const {
        write("a.zip", archive);
        Error error;
        const bool isDone = decompressFileAtPath(at("a.zip"), at("to"), options, &error);
        EXPECT_EQ(isDone, error.text.isAbsent());
        EXPECT_TRUE(!isThere("x") && !isThere("outside/x")) << "left the folder";
        return error.text.isAbsent() ? "" : error.text.utf8();
    }
};

TEST_F(Archives, WhatGoesInComesOut) {
    makeTree();
    Error error;
    ASSERT_TRUE(compressFileAtPath(at("s"), at("a.zip"), {}, &error)) << printed(error);
    ASSERT_TRUE(decompressFileAtPath(at("a.zip"), at("new/t"), {}, &error)) << printed(error);
    fs::permissions(at("s/run"), fs::perms(0751));
    EXPECT_EQ(treeOf(at("new/t")), treeOf(at("s")));
    const auto age = fs::last_write_time(at("new/t/one.txt")) - fs::last_write_time(at("s/one.txt"));
    EXPECT_LT(std::chrono::abs(age), std::chrono::seconds(1));
    // Again, over what is there; and the same bytes once more.
    EXPECT_TRUE(compressFileAtPath(at("s/"), at("b.zip"), {.keepParent = true}));
    EXPECT_TRUE(compressFileAtPath(at("s"), at("c.zip"), {.keepParent = true}) && bytes("b.zip") == bytes("c.zip"));
    EXPECT_TRUE(decompressFileAtPath(at("b.zip"), at("new")) && decompressFileAtPath(at("b.zip"), at("new")));
    EXPECT_EQ(treeOf(at("new/s")), treeOf(at("s")));
    EXPECT_TRUE(!fs::exists("/usr/bin/unzip") ||
                launchTaskAndWaitUntilExitWithLaunchPath("/usr/bin/unzip", {"-tqq", at("b.zip")}));
    const std::vector<ArchiveEntry> entries = contents("b.zip");
    ASSERT_EQ(entries.size(), 11u);
    std::string names;
    for (const ArchiveEntry& entry : entries) names += entry.name.bytes() + (entry.isLink ? "@" : "") + "|";
    EXPECT_EQ(names,
              "s/|s/__MACOSX/|s/__MACOSX/._one.txt|s/back\\slash|s/empty/|s/one.txt|s/run|s/\xC3\xA4/|"
              "s/\xC3\xA4/e\xCC\x81.txt|s/\xC3\xA4/link@|s/\xFF\xC3\x28.bin|");
    EXPECT_TRUE(entries[5].size == 300000 && entries[5].packedSize < 1000 && !entries[5].isFolder);
    EXPECT_EQ(entries[6].permissions, 0751u);
    // Marked as UTF-8 where it is.
    EXPECT_EQ(bytes("b.zip").find("\x08") != std::string::npos, true);
    EXPECT_FALSE(compressFileAtPath(at("none"), at("d.zip")) || compressFileAtPath(at("s"), at("s")));
    EXPECT_FALSE(compressFileAtPath("", at("d.zip")) || compressFileAtPath(at("s"), "") || isThere("d.zip"));
}

TEST_F(Archives, FilesAreCollectedAndAppended) {
    makeTree();
    const auto names = [&] {
        std::string all;
        for (const ArchiveEntry& entry : contents("s/a.zip")) all += entry.name.bytes() + " ";
        return all;
    };
    const auto add = [&](std::vector<Path> files, bool append) {
        return compressFiles(files, at("s"), at("s/a.zip"), {.append = append});
    };
    EXPECT_TRUE(add({"run", "./empty//", "\xC3\xA4/link"}, true));
    EXPECT_EQ(names(), "run empty/ \xC3\xA4/link ");
    write("s/run", "changed");
    EXPECT_TRUE(add({"run", "__MACOSX"}, true));
    EXPECT_EQ(names(), "empty/ \xC3\xA4/link run __MACOSX/ __MACOSX/._one.txt ");
    const std::string before = bytes("s/a.zip");
    for (const std::vector<Path>& bad : {std::vector<Path>{}, {"run", "none"}, {"../s/run"}, {""}, {Path()}}) {
        EXPECT_FALSE(add(bad, true) || add(bad, false));
        EXPECT_EQ(bytes("s/a.zip"), before);
    }
    EXPECT_TRUE(decompressFileAtPath(at("s/a.zip"), at("t")));
    EXPECT_EQ(bytes("t/run"), "changed");
    EXPECT_EQ(treeOf(at("t")).size(), 6u);
    EXPECT_TRUE(add({"."}, false));  // all but the archive itself
    EXPECT_EQ(contents("s/a.zip").size(), 10u);
}

TEST_F(Archives, HostileOnesAreRefused) {
    fs::create_directories(at("outside"));
    const struct {
        const char* what;
        std::vector<Entry> entries;
        const char* error;  // part of it
    } cases[] = {
        {"absolute", {{"ok"}, {at("x")}}, "has an absolute path"},
        {"climbing", {{"ok"}, {"../x"}}, "leads out of the folder"},
        {"climbing late", {{"ok"}, {"a/b/../../../x"}}, "leads out of the folder"},
        {"backslashes", {{"ok"}, {"a\\..\\..\\x"}}, "leads out of the folder"},
        {"backslashes of others", {{.name = "..\\x", .system = 0}}, "leads out of the folder"},
        {"drive", {{"ok"}, {"\\x"}}, "has an absolute path"},
        {"NUL", {{"ok"}, {"a\0b"s}}, "NUL"},
        {"long", {{"ok"}, {std::string(5000, 'a')}}, "too long"},
        {"password", {{"ok"}, {.name = "b", .flags = 1}}, "needs a password"},
        {"device", {{"ok"}, {.name = "b", .mode = S_IFCHR | 0644}}, "is no file"},
        {"two names", {{"ok"}, {.name = "b", .localName = "c"}}, "has two names"},
        {"more than told", {{.name = "b", .content = std::string(9, 'x'), .size = 3}}, "b: "},
        {"less than told", {{.name = "b", .content = "x", .size = 3}}, "b: "},
        {"link away", {link("l", "/etc")}, "links out of the folder"},
        {"link up", {link("d/l", "../../outside")}, "links out of the folder"},
        {"link over links", {link("a/b/p", "../.."), link("q", "a/b/p/../outside")}, "links out of the folder"},
        {"link over a folder that is a link then",
         {link("a", "b/.."), link("b", "c/d/.."), link("c/d/e", "../../../x")},
         "links out"},
        {"links in a circle", {link("a", "b"), link("b", "a/x")}, "links out of the folder"},
        {"link through one that was there", {link("l", "old/x")}, "links out of the folder"},
        {"through a link", {link("l", "../outside"), {"l/x"}}, ""},
        {"through a link that was there", {{"old/x"}}, "through what is no folder"},
        {"a folder over a link that was there", {{"old/"}}, "through what is no folder"},
        {"a file for a folder", {{"f"}, {"f/x"}}, "through what is no folder"},
        {"a folder for a file", {{"f/y"}, {"f"}}, "f: "},
    };
    for (const auto& [what, entries, expected] : cases) {
        fs::remove_all(at("to"));
        fs::create_directories(at("to"));
        fs::create_directory_symlink("../outside", at("to/old"));
        const std::string error = extracted(zipOf(entries));
        EXPECT_NE(error.find(expected), std::string::npos) << what << ": " << error;
        EXPECT_NE(error, "") << what;
        EXPECT_TRUE(fs::is_empty(at("outside"))) << what;
        EXPECT_TRUE(entries[0].name != "ok" || !isThere("to/ok")) << what << ": something was written before";
    }
    // What looks odd and is not.
    fs::remove_all(at("to"));
    EXPECT_EQ(extracted(zipOf(
                  {{"./a//b/./c"},
                   {.name = "d\\e", .system = 0},
                   {"..."},
                   {"f..g/h"},
                   link("Versions/Now", "A"),
                   link("Header", "Versions/Now/h"),
                   {"Versions/A/h"},
                   {"a/b/c", "again"},
                   {.name = "\x84", .extra = "up" + little(7, 2) + "\1" + little(checksum("\x84"), 4) + "\xC3\xA4"},
                   {"z/"}},
                  "#!/bin/sh\n")),
              "");
    EXPECT_EQ(bytes("to/a/b/c") + bytes("to/d/e") + bytes("to/Header"), "againcontentcontent");
    EXPECT_TRUE(isThere("to/...") && isThere("to/z") && isThere("to/\xC3\xA4"));
}

TEST_F(Archives, LimitsHold) {
    const std::vector<Entry> two = {{"a", std::string(600, 'a')}, {"b", std::string(600, 'b')}};
    EXPECT_EQ(extracted(zipOf(two), {.mostBytes = 1200, .mostEntries = 2}), "");
    EXPECT_NE(extracted(zipOf(two), {.mostBytes = 1199}).find("more than 1199 bytes"), std::string::npos);
    EXPECT_NE(extracted(zipOf(two), {.mostEntries = 1}).find("too many"), std::string::npos);
    Entry bomb{.name = "a"};
    bomb.size = 0xFFFFFF00;
    EXPECT_NE(extracted(zipOf({bomb})).find("bytes a byte"), std::string::npos);
    // The same bytes as two entries.
    std::string overlap = zipOf(two);
    const std::size_t second = overlap.rfind("PK\1\2");
    overlap.replace(second + 42, 4, little(5, 4));
    EXPECT_NE(extracted(overlap), "");
}

// Nothing comes out that did not go in, and nothing crashes, whatever bit was changed.
TEST_F(Archives, DamageIsTold) {
    write("s/a.txt", "some text, some text, some text, some text");
    write("s/b", "x");
    fs::create_symlink("b", at("s/c"));
    ASSERT_TRUE(compressFileAtPath(at("s"), at("whole.zip")));
    const std::string whole = bytes("whole.zip");
    std::size_t refused = 0;
    const auto check = [&](const std::string& damaged) {
        fs::remove_all(at("to"));
        refused += extracted(damaged, {.mostBytes = 10000}) != "";
        if (!isThere("to")) return;
        for (const auto& entry : fs::recursive_directory_iterator(at("to"))) {
            if (!entry.is_regular_file() || entry.is_symlink()) continue;
            const std::string content = test::readFile(entry.path());
            EXPECT_TRUE(content == "x" || content == "b" || content == bytes("s/a.txt")) << content;
        }
    };
    for (std::size_t length = 0; length < whole.size(); ++length) check(whole.substr(0, length));
    EXPECT_EQ(refused, whole.size());
    for (std::size_t bit = 0; bit < whole.size() * 8; bit += 7) {
        std::string damaged = whole;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ 1 << bit % 8);
        check(damaged);
    }
    EXPECT_GT(refused, whole.size() + 200);
}

TEST_F(Archives, EveryCallThatFailsIsTold) {
    makeTree();
    ASSERT_TRUE(compressFileAtPath(at("s"), at("good.zip")));
    const std::string good = bytes("good.zip");
    for (const auto way : {test::FailingCalls::Way::Fails, test::FailingCalls::Way::FindsDiskFull}) {
        bool hasFailed = true;
        for (std::size_t failing = 0; hasFailed && failing < 1000; ++failing) {
            SCOPED_TRACE(failing);
            fs::remove_all(at("t"));
            test::FailingCalls calls;
            calls.failing = failing;
            calls.way = way;
            bool isDone;
            {
                const detail::FileCallsInstead these(calls);
                isDone =
                    compressFiles(std::vector<Path>{"run", "one.txt"}, at("s"), at("good.zip"), {.append = true}) &&
                    decompressFileAtPath(at("good.zip"), at("t/u"));
            }
            hasFailed = calls.hasFailed;
            EXPECT_TRUE(isDone || hasFailed);
            EXPECT_EQ(contents("good.zip").size(), 10u);
            EXPECT_EQ(isThere("t/u"), isDone) << "an extraction appears whole or not at all";
        }
    }
}

}  // namespace
}  // namespace velmo
