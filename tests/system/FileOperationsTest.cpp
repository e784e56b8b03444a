// Operations on files and folders: their odd rules, and that no failure harms what was there.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <velmocore/platform/PropertyList.h>
#include <velmocore/system/FileCreation.h>
#include <velmocore/system/FileMoving.h>
#include <velmocore/system/FolderContents.h>
#include <velmocore/system/FolderUpdating.h>
#include <velmocore/system/FolderWalk.h>
#include <velmocore/system/LockFiles.h>
#include <velmocore/system/UniqueNames.h>
#include <velmocore/text/Encodings.h>

#include <atomic>
#include <functional>
#include <stdexcept>
#include <thread>

#include "FailingCalls.h"
#include "FolderFixture.h"

namespace velmo {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using test::FailingCalls;
using test::treeOf;

class FileOperations : public test::FolderTest {
protected:
    void setTime(const std::string& name, time_t seconds) const {
        const timespec times[2] = {{seconds, 0}, {seconds, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, at(name).c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
    }
    /// A folder with files, a link, a name that is no text, and folders in each other.
    void makeTree(const std::string& name, int depth = 3) const {
        write(name + "/a b.txt", "text");
        write(name + "/\xFF\xC3", std::string(300000, 'x'));
        fs::create_symlink("/nowhere", at(name + "/link"));
        int folder = ::open(at(name).c_str(), O_PATH | O_DIRECTORY);
        for (; depth > 0; --depth) {
            ASSERT_EQ(::mkdirat(folder, "d", 0755), 0);
            const int next = ::openat(folder, "d", O_PATH | O_DIRECTORY);
            ::close(std::exchange(folder, next));
        }
        ::close(folder);
        fs::permissions(at(name + "/a b.txt"), fs::perms(0751));
        fs::permissions(at(name + "/d"), fs::perms(0550));
        setTime(name + "/a b.txt", 1000);
    }
};

TEST_F(FileOperations, CreationTakesWhatIsThere) {
    write("file", "content");
    fs::create_symlink("target", at("dangling"));
    const std::string odd = "odd\xFF/deep/\xE4\xB8";
    const struct {
        const char* what;
        bool result, expected;
    } cases[] = {
        {"file", createFile(at("file")), true},
        {"folder", createFile(folder_), true},
        {"no folder above", createFile(at("none/file")), false},
        {"through a link", createFile(at("dangling")) && isThere("target"), true},
        {"folders above", createPathAndFile(at(odd)) && isThere(odd), true},
        {"folder above is a file", createPathAndFile(at("file/x/y")), false},
        {"path of a file", createPath(at("file")), false},
        {"path of a folder", createPath(folder_), true},
        {"slashes", createPath(at("p//q/r/")) && isThere("p/q/r"), true},
        {"to file", createPathToFile(at("s/t/file")) && isThere("s/t") && !isThere("s/t/file"), true},
        {"one component", createPathToFile("file"), false},
        {"moved", createPath(at("u"), at("p")) && isThere("u/q/r") && !isThere("p"), true},
        {"nothing to move", createPath(at("v/w"), at("p")) && isThere("v/w"), true},
        {"taken", createPath(at("u"), at("s")), false},
        {"temporary", createWritableTemporaryPath(at("u")) && fs::is_empty(at("u")), true},
        {"instead of a file", createWritableTemporaryPath(at("target")) && fs::is_directory(at("target")), true},
    };
    for (const auto& [what, result, expected] : cases) EXPECT_EQ(result, expected) << what;
    EXPECT_TRUE(createPath(at("x/y"), FilePermissions{.permissions = 0710}));
    EXPECT_EQ(permissionsAtPath(at("x/y"))->permissions, 0710u);
    EXPECT_EQ(permissionsAtPathByDeletingLastPathComponent(at("x/y/z"), {.executable = false})->permissions, 0600u);
    EXPECT_EQ(permissionsAtPath(at("x"))->ownerAccountID, getuid());
    EXPECT_FALSE(permissionsAtPath(at("none")) || permissionsAtPath(""));
    EXPECT_EQ(bytes("file"), "content");
    EXPECT_FALSE(createFile(Path()) || createPath("") || removePath(Path()) || copyPath(at("file"), ""));
    EXPECT_EQ(logged_, "");
    EXPECT_FALSE(createFile(u"a\xD800z"));
    EXPECT_TRUE(logged_.starts_with("getFileSystemRepresentation 'a\xEF\xBF\xBDz':\n")) << logged_;
}

TEST_F(FileOperations, WritingAppendsOrReplaces) {
    EXPECT_TRUE(writeString(u"one", at("f")) && writeString(u"\xE9", at("f"), {.append = true}));
    EXPECT_EQ(bytes("f"), "one\xC3\xA9");
    EXPECT_FALSE(writeString(u"", at("f")) || writeString(String(), at("f")) || writeString(u"x", at("g/f")));
    setDefaultEncoding(ASCIIStringEncoding);
    EXPECT_FALSE(writeString(u"\xE9", at("f")));
    setDefaultEncoding(UTF8StringEncoding);
    EXPECT_TRUE(writeData({}, at("f")) && bytes("f").empty());
    EXPECT_FALSE(writeData("x"s, "/dev/full"));
    EXPECT_TRUE(createPathAndWriteObject("object"s, at("h/i"), true) && bytes("h/i") == "object");
    EXPECT_FALSE(createPathAndWriteObject(ObjectWriter(), at("j/k"), true) || isThere("j"));
    EXPECT_EQ(logged_, "");
    const auto raise = [](const Path&, bool) -> bool { throw std::runtime_error("no ink"); };
    EXPECT_FALSE(createPathAndWriteObject(raise, at("j/k"), true));
    EXPECT_TRUE(logged_.starts_with("createPathAndWriteObject:toFile:atomically: (FileManager): exception\nno ink\n"));
}

TEST_F(FileOperations, TreesAreCopiedMovedAndRemoved) {
    makeTree("t", 2100);
    EXPECT_TRUE(copyPath(at("t"), at("c/")));
    fs::permissions(at("t/d"), fs::perms(0755));
    fs::permissions(at("c/d"), fs::perms(0755));
    // So deep that no path leads there, which only these operations get over.
    for (const char* name : {"t/d", "c/d"}) EXPECT_TRUE(removePath(at(name)));
    EXPECT_EQ(treeOf(at("t")), treeOf(at("c")));
    EXPECT_EQ(fs::last_write_time(at("c/a b.txt")), fs::last_write_time(at("t/a b.txt")));
    Error error;
    EXPECT_FALSE(copyPath(at("t"), at("c"), &error));
    EXPECT_EQ(error.code, EEXIST);
    EXPECT_FALSE(movePath(at("t"), at("c"), &error) || copyPath(at("none"), at("n")) || copyPath("/dev/null", at("n")));
    EXPECT_FALSE(copyPath(at("t"), at("t/inside"), &error) || movePath(at("t"), at("t/inside")));
    EXPECT_FALSE(renamePath(at("t"), "../u") || renamePath(at("t"), ".."));
    EXPECT_TRUE(renamePath(at("t"), "\xFE") && isThere("\xFE/link"));
    EXPECT_TRUE(movePath(at("\xFE"), at("moved")) && !isThere("\xFE"));
    if (fs::exists("/dev/shm")) {  // another file system, where they differ
        const std::string there = "/dev/shm/" + folder_.filename().string();
        const auto tree = treeOf(at("moved"));
        EXPECT_TRUE(movePath(at("moved"), there) && !isThere("moved"));
        EXPECT_EQ(treeOf(there), tree);
        EXPECT_TRUE(movePath(there, at("moved")));
    }
    fs::create_directory_symlink(at("c"), at("l"));
    EXPECT_TRUE(removePath(at("l/"), &error) && isThere("c/link") && !isThere("l"));
    EXPECT_TRUE(removePath(at("none"), &error));
    EXPECT_EQ(error.code, 0);
    EXPECT_EQ(logged_, "");
    for (const std::string& never : {"/"s, at("c/."), at("c/..")}) EXPECT_FALSE(removePath(never, &error)) << never;
    EXPECT_TRUE(logged_.starts_with("Couldn't remove path /\n")) << logged_;
}

// Each call of the system fails in turn: the operation says so, what was there before is there, and
// what appears is whole.
TEST_F(FileOperations, EveryCallThatFailsIsTold) {
    const auto prepare = [&] {
        for (const char* tree : {"source", "new", "old"})
            if (isThere(tree + "/d"s)) fs::permissions(at(tree + "/d"s), fs::perms(0755));
        for (const auto& entry : fs::directory_iterator(folder_)) fs::remove_all(entry.path());
        makeTree("source");
        write("old/a b.txt", "old");
        setTime("old/a b.txt", 1);
    };
    const std::function<bool()> works[] = {
        [&] { return copyPath(at("source"), at("new")); },
        [&] { return movePath(at("source"), at("new")) && movePath(at("new"), at("source")); },
        [&] { return updatePath(at("source"), at("old")); },
        [&] { return !lockFileAtPath(at("file")).isAbsent(); },
        [&] { return createPathAndFile(at("w/d/f")) && writeData("data"s, at("w/d/f")); },
        [&] { return createPath(at("w/d"), FilePermissions{.permissions = 0700}) && removePath(at("w")); },
    };
    prepare();
    const auto source = treeOf(at("source"));
    std::size_t tried = 0;
    for (const auto& work : works) {
        bool hasFailed = true;
        for (std::size_t failing = 0; hasFailed && failing < 500; ++failing, ++tried) {
            SCOPED_TRACE(std::to_string(&work - works) + " " + std::to_string(failing));
            prepare();
            FailingCalls calls;
            calls.failing = failing;
            bool isDone;
            {
                const detail::FileCallsInstead these(calls);
                isDone = work();
            }
            hasFailed = calls.hasFailed;
            EXPECT_TRUE(hasFailed || isDone);
            const std::string old = bytes("old/a b.txt");
            EXPECT_TRUE(old == "old" || old == "text");
            EXPECT_TRUE(!isThere("new") || treeOf(at("new")) == source);
            EXPECT_TRUE(isThere("source") ? treeOf(at("source")) == source : isThere("new"));
            EXPECT_TRUE(!isThere("file.lock") || propertyListFromData(Bytes(bytes("file.lock"))));
            EXPECT_TRUE(!isDone || &work != works + 2 || treeOf(at("old")) == source);
            for (const std::string& line : treeOf(folder_))
                EXPECT_TRUE(calls.hasFailedToRemove || line.find(".velmo") == line.npos) << "left behind: " << line;
        }
    }
    EXPECT_GT(tried, 100u);
    prepare();
}

TEST_F(FileOperations, ContentsAreSortedAndMatched) {
    for (const char* name : {"c/b.TXT", "c/a.txt", "c/.txt", "c/txt", "c/\xFF.txt", "c/x.txt.gz"}) write(name, "");
    const auto joined = [](const std::optional<std::vector<Path>>& paths) {
        std::string all;
        for (const Path& path : paths.value()) all += path.bytes() + " ";
        return all;
    };
    const Path folder = at("c");
    EXPECT_EQ(joined(directoryContentsAtPath(folder)), ".txt a.txt b.TXT txt x.txt.gz \xFF.txt ");
    EXPECT_EQ(joined(directoryContentsMatchingExtension(folder, u"Txt")), "a.txt b.TXT \xFF.txt ");
    EXPECT_EQ(joined(directoryContentsMatchingWildcard(folder, u"?.T*", {.fullPath = true})),
              at("c/a.txt ") + at("c/b.TXT ") + at("c/x.txt.gz ") + at("c/\xFF.txt "));
    EXPECT_EQ(joined(directoryContentsMatchingExtension(folder, String())), "");
    EXPECT_EQ(joined(directoryContentsMatchingWildcard(folder, String())), "");
    EXPECT_FALSE(directoryContentsAtPath(at("none")) || directoryContentsAtPath(at("c/txt")));
    for (const char* path : {"/Volumes", "/Volumes/none/x", "/tmp", "Volumes/x"})
        EXPECT_FALSE(isVolumeMountedAtPath(path)) << path;
}

TEST_F(FileOperations, UpdatingMergesWhatIsMissingOrNewer) {
    for (const char* name : {"s/new", "s/older", "s/newer", "s/same", "s/d/new", "s/clash", "s/whole/x"})
        write(name, "source");
    for (const char* name : {"t/older", "t/newer", "t/same", "t/d/own", "t/clash/x", "t/own"}) write(name, "target");
    for (const char* name : {"s/older", "t/newer", "s/same", "t/same"}) setTime(name, 1000);
    fs::create_directory_symlink("..", at("s/d/loop"));
    fs::create_directory_symlink("..", at("t/d/loop"));
    const auto contents = [&] {
        std::string all;
        for (const char* name :
             {"t/new", "t/older", "t/newer", "t/same", "t/d/new", "t/d/own", "t/clash/x", "t/whole/x"})
            all += bytes(name)[0];
        return all;
    };
    EXPECT_TRUE(updatePath(at("s"), at("t")));
    EXPECT_EQ(contents(), "stststts");
    EXPECT_TRUE(updatePath(at("s"), at("t"), {.overwrite = true, .hideFileExtensions = true}));
    EXPECT_EQ(contents(), "ssssstts");
    char info[32] = {};
    const bool hasNone = ::getxattr(at("t/whole/x").c_str(), "user.com.apple.FinderInfo", info, sizeof info) < 0;
    EXPECT_TRUE(info[9] == 0x10 || (hasNone && errno == ENOTSUP));
    EXPECT_EQ(logged_, "");
    EXPECT_TRUE(updatePath(at("s/new"), at("t")));  // has no entries
    EXPECT_FALSE(updatePath(at("s"), at("none")) || updatePath(at("none"), at("t")) || updatePath("", at("t")));
    EXPECT_NE(logged_.find("ERROR: Couldn't update path " + at("none/new") + ": "), std::string::npos);
}

TEST_F(FileOperations, NamesAreNumberedAndCut) {
    const std::string pair = "\xF0\x9F\x8D\xB5", umlaut = "\xC3\xA4";
    const auto times = [](const std::string& text, std::size_t count) {
        std::string all;
        while (count-- > 0) all += text;
        return all;
    };
    const std::pair<std::string, std::string> cases[] = {
        {"a.txt", "a-1.txt"},
        {".hidden", ".hidden-1"},
        {"b.", "b-1"},
        {"c.tar.gz", "c.tar-1.gz"},
        {"\xFF.x", "\xFF-1.x"},
        {times("u", 250) + ".txt", times("u", 244) + "-1.txt"},
        {times("u", 248), times("u", 248) + "-1"},
        {times(umlaut, 124), times(umlaut, 124) + "-1"},  // 250 bytes
        {times(umlaut, 127), times(umlaut, 126) + "-1"},  // and one that would have 256
        {times(pair, 62) + "zz.txt", times(pair, 62) + "z-1.txt"},
    };
    for (const auto& [name, expected] : cases) {
        EXPECT_EQ(nonExistingFilenameAtPath(at(name)).bytes(), at(name));
        write(name, "");
        EXPECT_EQ(nonExistingFilenameAtPath(at(name)).bytes(), at(expected));
    }
    write("a-1.txt", "");
    fs::create_symlink("nowhere", at("a-2.txt"));
    EXPECT_EQ(nonExistingFilenameAtPath(at("a.txt")).bytes(), at("a-3.txt"));
    EXPECT_TRUE(nonExistingFilenameAtPath(Path()).isAbsent());
    EXPECT_EQ(nonExistingFilenameAtPath("").bytes(), "");
}

TEST_F(FileOperations, OldArchivesMakeRoom) {
    for (int i = 0; i < 4; ++i)
        write("a/notes " + std::to_string(i) + "/x", ""), setTime("a/notes " + std::to_string(i), 100 - i);
    write("a/other", "");
    const String name = archiveDirectoryContentsAtPath(at("a"), u"Notes", 2);
    EXPECT_EQ(name.length(), std::string("Notes 2001-02-03 04-05-06").size());
    EXPECT_EQ(directoryContentsAtPath(at("a"))->front().bytes(), "notes 0");
    EXPECT_EQ(directoryContentsAtPath(at("a"))->size(), 3u);
    EXPECT_TRUE(archiveDirectoryContentsAtPath(at("a"), u"", 0).isAbsent());
    EXPECT_FALSE(archiveDirectoryContentsAtPath(at("a"), u"Notes", 0).isAbsent());
    EXPECT_EQ(directoryContentsAtPath(at("a"))->size(), 1u);
}

TEST_F(FileOperations, LocksAreWholeDictionaries) {
    const Path lock = lockFileAtPath(at("d/file.txt/"));
    EXPECT_EQ(lock.bytes(), at("d/file.txt.lock"));
    EXPECT_TRUE(lockFileAtPath(at("d/file.txt")).isAbsent());
    EXPECT_EQ(lockFileAtPath(at("d/file.txt"), {.override = true}), lock);
    const auto held = propertyListFromData(bytes("d/file.txt.lock"));
    const String user = *held->string(u"userName");
    const auto writeLock = [&](const String& name, PropertyList number) {
        const PropertyListDictionary own = {{u"userName", {name}}, {u"processNumber", std::move(number)}};
        const auto data = *dataFromPropertyList({own}, PropertyListFormat::Binary);
        write("d/file.txt.lock", charsOf(data));
    };
    const std::int64_t process = getpid();
    const std::tuple<String, PropertyList, bool> cases[] = {
        {user, {process + 1}, false},  {u"somebody", {process}, false},
        {user, {String(u"x")}, false}, {user, {static_cast<double>(process)}, true},
        {user, {process}, true},
    };
    for (const auto& [name, number, expected] : cases) {
        writeLock(name, number);
        EXPECT_TRUE(lockFileAtPath(at("d/file.txt")).isAbsent());
        EXPECT_EQ(unlockFileAtPath(lock), expected);
        EXPECT_EQ(isThere("d/file.txt.lock"), !expected);
    }
    for (const char* odd : {"", "junk", "<plist><array/></plist>"}) {
        write("d/file.txt.lock", odd);
        EXPECT_FALSE(unlockFileAtPath(lock));
        EXPECT_EQ(lockFileAtPath(at("d/file.txt")), lock) << odd;
        EXPECT_TRUE(unlockFileAtPath(lock));
    }
    std::atomic<int> winners = 0;
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 8; ++i) threads.emplace_back([&] { winners += !lockFileAtPath(at("race")).isAbsent(); });
    }
    EXPECT_EQ(winners, 1);
}

TEST_F(FileOperations, AWalkNamesFilesFromTheFolderThatItWasGiven) {
    write("d/a.txt", "a");
    const fs::path before = fs::current_path();
    const std::pair<const char*, const char*> cases[] = {
        {"", "d/a.txt"}, {".", "./d/a.txt"}, {"d", "d/a.txt"}, {"d/", "d/a.txt"}};
    fs::current_path(at(""));
    for (const auto& [folder, expected] : cases) {
        FolderWalk walk(folder);
        const auto file = walk.next();
        EXPECT_EQ(file ? file->path.bytes() : "none", expected) << folder;
        EXPECT_FALSE(walk.next()) << folder;
    }
    fs::current_path(before);
    EXPECT_FALSE(FolderWalk(Path()).next());
}

}  // namespace
}  // namespace velmo
