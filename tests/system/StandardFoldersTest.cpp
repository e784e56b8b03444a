#include <velmocore/system/StandardFolders.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <map>

#include "TestSupport.h"
#include "system/UserFolders.h"

namespace velmo {
namespace {

/// A home folder with settings in it.
class StandardFolders : public testing::Test {
protected:
    void SetUp() override {
        home_ = std::filesystem::temp_directory_path() / ("velmo-home-" + std::to_string(getpid()));
        std::filesystem::create_directories(home_);
    }
    void TearDown() override { std::filesystem::remove_all(home_); }
    void write(const std::string& name, const std::string& content) const {
        std::filesystem::create_directories((home_ / name).parent_path());
        std::ofstream(home_ / name) << content;
    }
    detail::UserFolders find(std::map<std::string, std::string> variables) const {
        variables.try_emplace("HOME", home_.string() + "/");
        return detail::findUserFolders([&](const char* name) {
            const auto found = variables.find(name);
            return found == variables.end() ? nullptr : found->second.c_str();
        });
    }
    String inHome(const std::string& name) const { return String::fromUTF8((home_ / name).string()); }

    std::filesystem::path home_;
};

TEST_F(StandardFolders, FallBackBelowTheHomeFolder) {
    const detail::UserFolders folders = find({{"XDG_CACHE_HOME", "relative/does/not/count"}});
    EXPECT_EQ(folders.home, String::fromUTF8(home_.string()));
    EXPECT_EQ(folders.desktop, inHome("Desktop"));
    EXPECT_EQ(folders.downloads, inHome("Downloads"));
    EXPECT_EQ(folders.preferences, inHome("Library/Preferences"));
    EXPECT_EQ(folders.caches, inHome("Library/Caches"));
    EXPECT_EQ(folders.applicationSupport, inHome("Library/Application Support"));
    EXPECT_EQ(folders.iCloud, inHome("Library/Mobile Documents/com~apple~CloudDocs"));
    EXPECT_EQ(folders.dropbox, std::vector<String>{inHome("Dropbox")});
    EXPECT_EQ(folders.temporary, u"/tmp");
    EXPECT_EQ(find({{"HOME", "/home/x/Library/Containers/y/Data"}}).userLibrary, u"/home/x/Library");
    EXPECT_TRUE(find({{"HOME", "nowhere"}}).home.view().starts_with(u'/'));
}

TEST_F(StandardFolders, SettingsOfTheUserCount) {
    write(".config/user-dirs.dirs",
          "# XDG_DESKTOP_DIR=\"/wrong\"\n XDG_DESKTOP_DIR=\"$HOME/Schreib\\\"tisch\"\n"
          "XDG_DOWNLOAD_DIR=\"relative\"\nXDG_DOWNLOAD_DIRS=\"/no\"\nXDG_DOWNLOAD_DIR=\"$HOMEX/a\"\n");
    write("other/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"/data/in/\"\nXDG_DESKTOP_DIR=unquoted\n");
    const detail::UserFolders usual = find({{"XDG_DATA_HOME", "/data/share"}, {"XDG_CACHE_HOME", "/data/cache/"}});
    EXPECT_EQ(usual.desktop, inHome("Schreib\"tisch"));
    EXPECT_EQ(usual.downloads, inHome("Downloads"));
    EXPECT_EQ(usual.caches, u"/data/cache");
    EXPECT_EQ(usual.applicationSupport, u"/data/share");
    const detail::UserFolders other = find({{"XDG_CONFIG_HOME", inHome("other").utf8()}});
    EXPECT_EQ(other.downloads, u"/data/in");
    EXPECT_EQ(other.desktop, inHome("Desktop"));
}

TEST_F(StandardFolders, SettingsThatNeverEndAreNone) {
    std::filesystem::create_directories(home_ / ".config");
    std::filesystem::create_directories(home_ / ".dropbox");
    ASSERT_EQ(::mkfifo((home_ / ".config/user-dirs.dirs").c_str(), 0600), 0);
    std::filesystem::create_symlink("/dev/zero", home_ / ".dropbox/info.json");
    const detail::UserFolders folders = find({});
    EXPECT_EQ(folders.desktop, inHome("Desktop"));
    EXPECT_EQ(folders.dropbox, std::vector<String>{inHome("Dropbox")});
}

TEST_F(StandardFolders, DropboxTellsWhereItIs) {
    const struct {
        const char* info;
        std::vector<String> expected;
    } cases[] = {{R"({"business": {"path": "/b"}, "personal": {"path": "/p", "host": 1}})", {u"/p", u"/b"}},
                 {R"({"business": {"path": "/b"}})", {u"/b"}},
                 {R"({"personal": {"path": 7}, "business": [], "other": {"path": "/o"}})", {inHome("Dropbox")}},
                 {R"(["personal"])", {inHome("Dropbox")}},
                 {"{\"personal\": {", {inHome("Dropbox")}},
                 {"", {inHome("Dropbox")}}};
    for (const auto& c : cases) {
        write(".dropbox/info.json", c.info);
        EXPECT_EQ(find({}).dropbox, c.expected) << c.info;
    }
    write(".dropbox/info.json", std::string(200000, '['));
    EXPECT_EQ(find({}).dropbox, std::vector<String>{inHome("Dropbox")});
}

TEST_F(StandardFolders, CloudAndTemporaryPaths) {
    const struct {
        String path;
        bool cloud, temporary;
    } cases[] = {
        {pathInHomeDirectory(u"Dropbox/x"), DropboxFolders().front() == pathInHomeDirectory(u"Dropbox"), false},
        {pathInHomeDirectory(u"Box Sync"), true, false},
        {pathInHomeDirectory(u"Documents/CloudMe/x"), true, false},
        {pathInHomeDirectory(u"Library/Mobile Documents/com~apple~CloudDocs/x"), true, false},
        {u"/mnt/OneDrive - Work/x", true, false},
        {u"/mnt/Google Drive/x", true, false},
        {pathInHomeDirectory(u"Box Syncs"), false, false},
        {u"/tmp/x", false, true},
        {u"/tmpfiles", false, true},
        {u"/var/tmp", false, false},
        {u"/var/tmp/x", false, true},
        {pathInCachesDirectory(u"TemporaryItems/x"), false, true},
        {u"/data/TemporaryItems/x", false, false},
        {pathInHomeDirectory(u"Library/Mail/a.mimeattach/x"), false, true},
        {u"~/Library/Mail/a.mimeattach", false, true},
        {u"/x/Library/Mail/a.mimeattach", false, false},
        {u"", false, false}};
    for (const auto& c : cases) {
        EXPECT_EQ(isCloudFolder(c.path), c.cloud) << c.path;
        EXPECT_EQ(isVolatileFolder(c.path), c.cloud) << c.path;
        EXPECT_EQ(isTemporaryPath(c.path), c.temporary) << c.path;
    }
    EXPECT_EQ(pathInPreferencesDirectory(u"/"), preferencesDirectory().view());
}

}  // namespace
}  // namespace velmo
