#include <velmocore/text/StringFiles.h>

#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>

#include "TestSupport.h"
#include "platform/Files.h"

namespace velmo {
namespace {

namespace fs = std::filesystem;

/// A folder that is there for one test.
class StringFiles : public testing::Test {
protected:
    void SetUp() override {
        folder_ = fs::path(testing::TempDir()) / ("velmo-strings-" + std::to_string(::getpid()));
        fs::create_directories(folder_);
    }
    void TearDown() override { fs::remove_all(folder_); }

    String path(const char* name) const { return String::fromUTF8((folder_ / name).string()); }
    String written(const char* name, std::string_view bytes) const {
        std::ofstream(folder_ / name, std::ios::binary) << bytes;
        return path(name);
    }
    std::string bytes(const char* name) const { return test::readFile(folder_ / name); }

    fs::path folder_;
};

TEST_F(StringFiles, CreatorsAreStrict) {
    EXPECT_EQ(stringWithCString("caf\xE9!", 4, ISOLatin1StringEncoding), u"caf\u00E9");
    EXPECT_TRUE(stringWithCString("caf\xE9", 4, UTF8StringEncoding).isAbsent());
    EXPECT_EQ(stringWithCString("\xEF\xBF\xBD", 3, UTF8StringEncoding), u"\uFFFD");
    EXPECT_EQ(stringWithNullTerminatedCString("caf\xE9", ASCIIStringEncoding), u"caf\uFFFD");
    EXPECT_TRUE(stringWithNullTerminatedCString("\x82", ShiftJISStringEncoding).isAbsent());
    EXPECT_TRUE(stringWithBytes(nullptr, 3, UTF8StringEncoding).isAbsent());
    EXPECT_TRUE(stringWithData({}, UTF8StringEncoding).isIdenticalTo(String::empty()));
    EXPECT_TRUE(stringWithData({}, UnknownStringEncoding).isAbsent());
    EXPECT_EQ(stringWithCString("\xFF\xFE", 2, UTF16StringEncoding), u"");
}

TEST_F(StringFiles, UnknownEncodingsAreDetected) {
    using namespace std::string_view_literals;
    const std::tuple<std::string_view, View, StringEncoding> cases[] = {
        {"caf\xC3\xA9", u"caf\u00E9", UTF8StringEncoding},
        {"\xEF\xBB\xBFz", u"z", UTF8StringEncoding},
        {"\xFF\xFEz\0"sv, u"z", UTF16StringEncoding},
        {"\xFE\xFF\0z"sv, u"z", UTF16StringEncoding},
        {"\xFF\xFE\0\0z\0\0\0"sv, u"z", UTF32StringEncoding},
        {"caf\xE9", u"caf\uFFFD", ASCIIStringEncoding},
        {"", u"", UTF8StringEncoding},
    };
    for (const auto& [bytes, text, used] : cases)
        for (StringEncoding unknown : std::initializer_list<StringEncoding>{0, 4294967280, ~0ull}) {
            const FileText read = stringWithContentsOfFile(written("f", bytes), unknown);
            EXPECT_EQ(read.text, text);
            EXPECT_EQ(read.usedEncoding, used) << bytes;
        }
    const FileText none = stringWithContentsOfFile(path("none"), 0);
    EXPECT_TRUE(none.text.isAbsent());
    EXPECT_EQ(none.usedEncoding, ASCIIStringEncoding);
    EXPECT_TRUE(stringWithContentsOfFile(path("."), 0).text.isAbsent());
    // A named encoding has no fallback, but is told.
    const FileText broken = stringWithContentsOfFile(written("f", "caf\xE9"), 4);
    EXPECT_TRUE(broken.text.isAbsent());
    EXPECT_EQ(broken.usedEncoding, UTF8StringEncoding);
    EXPECT_EQ(stringWithContentsOfFile(path("f"), ISOLatin1StringEncoding).text, u"caf\u00E9");
    EXPECT_TRUE(stringWithContentsOfFile(String(), ISOLatin1StringEncoding).text.isAbsent());
}

TEST_F(StringFiles, WritersChooseTheirEncoding) {
    const std::pair<String, StringEncoding> cases[] = {
        {u"", ASCIIStringEncoding},
        {u"plain", ASCIIStringEncoding},
        {u"caf\u00E9", ISOLatin1StringEncoding},
        {u"caf\u00E9 \u20AC", UTF8StringEncoding},
        {u"\u3042\u3042\u3042\u3042", UTF16StringEncoding},
        {u"\U0001F600", UTF8StringEncoding},
        // Half a pair is in no other encoding.
        {u"abcdefgh\xD800", UTF16StringEncoding},
    };
    for (const auto& [text, expected] : cases) {
        const FileWriting smallest = writeToFileUsingSmallestEncoding(text, path("s"), true);
        EXPECT_TRUE(smallest.isWritten);
        EXPECT_EQ(smallest.usedEncoding, expected);
        EXPECT_EQ(stringWithContentsOfFile(path("s"), expected).text, text);
        const FileWriting fastest = writeToFileUsingFastestEncoding(text, path("s"), false);
        EXPECT_EQ(fastest.usedEncoding, UTF16StringEncoding);
        EXPECT_EQ(fastest.usedEncoding, fastestEncoding(text));
        EXPECT_EQ(stringWithContentsOfFile(path("s"), fastest.usedEncoding).text, text);
        if (!dataUsingEncoding(text, UTF8StringEncoding)) continue;
        EXPECT_EQ(writeToFileUsingDefaultEncoding(text, path("s"), true).usedEncoding, UTF8StringEncoding);
        EXPECT_EQ(bytes("s"), text.utf8());
    }
}

TEST_F(StringFiles, FailedWritesLeaveTheFileAlone) {
    const String file = written("old", "old");
    for (bool atomically : {true, false}) {
        EXPECT_FALSE(writeToFile(u"\u20AC", file, atomically, ISOLatin1StringEncoding));
        EXPECT_FALSE(writeToFile(String(), file, atomically, UTF8StringEncoding));
        EXPECT_FALSE(writeToFile(u"a", path("none/file"), atomically, UTF8StringEncoding));
        EXPECT_FALSE(writeToFile(u"a", String(), atomically, UTF8StringEncoding));
    }
    EXPECT_EQ(bytes("old"), "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_), {}), 1);
}

TEST_F(StringFiles, AtomicWritesKeepLinksAndPermissions) {
    written("target", "old");
    ::chmod((folder_ / "target").c_str(), 0640);
    fs::create_symlink("target", folder_ / "hop");
    fs::create_symlink(folder_ / "hop", folder_ / "link");
    fs::create_symlink("missing", folder_ / "dangling");
    fs::create_symlink("round", folder_ / "round");
    EXPECT_TRUE(writeToFile(u"new", path("link"), true, UTF8StringEncoding));
    EXPECT_TRUE(writeToFile(u"made", path("dangling"), true, UTF8StringEncoding));
    EXPECT_FALSE(writeToFile(u"no", path("round"), true, UTF8StringEncoding));
    for (const char* link : {"link", "hop", "dangling", "round"}) EXPECT_TRUE(fs::is_symlink(folder_ / link)) << link;
    EXPECT_EQ(bytes("target"), "new");
    EXPECT_EQ(bytes("missing"), "made");
    struct stat info;
    ASSERT_EQ(::stat((folder_ / "target").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0640u);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_), {}), 6);
}

TEST_F(StringFiles, NamesAsLongAsTheFileSystemAllows) {
    for (const std::size_t length : {240u, 255u, 256u}) {
        const std::string name(length, 'n');
        for (const bool atomically : {true, false}) {
            EXPECT_EQ(writeToFile(u"a", path(name.c_str()), atomically, UTF8StringEncoding), length < 256);
            std::error_code ignored;
            fs::remove(folder_ / name, ignored);
        }
    }
}

TEST_F(StringFiles, NoPathIsCutAtANUL) {
    const String cut = String(path("cut").view()), whole = std::u16string(cut.view()) + u'\0' + u"x";
    written("cut", "old");
    EXPECT_TRUE(stringWithContentsOfFile(whole, UTF8StringEncoding).text.isAbsent());
    for (const bool atomically : {true, false})
        EXPECT_FALSE(writeToFile(u"new", whole, atomically, UTF8StringEncoding));
    EXPECT_EQ(bytes("cut"), "old");
}

TEST_F(StringFiles, WhatIsNoFileIsNotReplaced) {
    ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), 0600), 0);
    for (const char* name : {"pipe", "."})
        EXPECT_FALSE(writeToFile(u"a", path(name), true, UTF8StringEncoding)) << name;
    EXPECT_TRUE(fs::is_fifo(folder_ / "pipe"));
    EXPECT_FALSE(detail::readRegularFile((folder_ / "pipe").string(), 10));
    EXPECT_FALSE(detail::readRegularFile("/dev/zero", 10));
    const std::string file = folder_ / "file";
    written("file", "0123456789");
    EXPECT_TRUE(detail::readRegularFile(file, 10));
    EXPECT_FALSE(detail::readRegularFile(file, 9));
    EXPECT_FALSE(detail::readRegularFile("/proc/self/status", 9));  // of no size, it says
}

// A limit on the size of files stands for a disk that gets full.
TEST_F(StringFiles, FullDisksAreNoticed) {
    EXPECT_FALSE(writeToFile(u"a", u"/dev/full", false, UTF8StringEncoding));
    written("old", "old");
    rlimit limit;
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
    const auto former = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{8192, limit.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
    const bool wasWritten = writeToFile(std::u16string(20000, u'x'), path("old"), true, UTF8StringEncoding);
    ::setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, former);
    EXPECT_FALSE(wasWritten);
    EXPECT_EQ(bytes("old"), "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_), {}), 1);
}

}  // namespace
}  // namespace velmo
