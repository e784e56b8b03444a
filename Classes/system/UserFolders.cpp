// Where the user's folders are is told by three sources: the environment, the file user-dirs.dirs
// of the desktop, and the settings that the client of a cloud service leaves in the home folder.
// All of them are written by others: what cannot be read, is not absolute or has another shape
// counts as not told, and the fallback below the home folder stands.
#include "system/UserFolders.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string_view>

#include "platform/Files.h"
#include "text/PathParts.h"

namespace velmo::detail {
namespace {

/// Settings beyond this are not read: no client writes that much.
/// In bytes.
constexpr std::size_t LongestSettings = 1 << 20;

String orElse(const String& folder, const String& parent, std::u16string_view fallback) {
    return folder.isAbsent() ? detail::appendedComponent(parent, fallback) : folder;
}

/// Only of a regular file: a pipe of that name would be waited for without end.
std::string settings(const String& path) {
    const std::optional<Data> bytes = readRegularFile(path.utf8(), LongestSettings);
    return bytes ? std::string(charsOf(*bytes)) : std::string();
}

/// A value of user-dirs.dirs: quoted, with backslashes before special characters, and absolute
/// or below "$HOME".
String folderOfSetting(std::string_view quoted, const String& home) {
    std::string value;
    if (!quoted.starts_with('"')) return {};
    for (std::size_t i = 1; i < quoted.size() && quoted[i] != '"'; ++i) {
        if (quoted[i] == '\\' && i + 1 < quoted.size()) ++i;
        value += quoted[i];
    }
    constexpr std::string_view Home = "$HOME";
    // The only variable that the file may name; others stay as they are, and their folder does not
    // begin with a slash, so it counts as not told.
    if (value == Home || value.starts_with("$HOME/")) value.replace(0, Home.size(), home.utf8());
    return absoluteFolder(value);
}

/// The folder that the last line "KEY=value" names; lines that begin with # are comments.
String userDirectory(const std::string& settings, std::string_view key, const String& home) {
    String folder;
    std::istringstream lines(settings);
    // The last one counts, as in the shell that reads this file too.
    for (std::string line; std::getline(lines, line);) {
        const std::string_view text =
            std::string_view(line).substr(std::min(line.find_first_not_of(" \t"), line.size()));
        if (text.starts_with(key) && text.substr(key.size()).starts_with('='))
            folder = folderOfSetting(text.substr(key.size() + 1), home);
    }
    return folder;
}

std::vector<String> dropboxFolders(const String& home) {
    std::vector<String> folders;
    const auto info = nlohmann::json::parse(
        settings(detail::appendedComponent(home, u".dropbox/info.json")), nullptr,
        /*allow_exceptions=*/false);
    for (const char* account : {"personal", "business"}) {
        // Either account may be missing, and any value may be of another kind.
        if (!info.is_object() || !info.contains(account) || !info[account].is_object()) continue;
        const auto path = info[account].find("path");
        if (path != info[account].end() && path->is_string())
            folders.push_back(String::fromUTF8(path->get<std::string>()));
    }
    if (folders.empty()) folders.push_back(detail::appendedComponent(home, u"Dropbox"));
    return folders;
}

/// A sandboxed program's home folder lies in the user's own.
String outsideSandbox(const String& home) {
    const std::size_t sandbox = home.view().find(u"/Library/Containers/");
    return sandbox == std::u16string_view::npos ? home : String(home.view().substr(0, sandbox));
}

}  // namespace

UserFolders findUserFolders(EnvironmentVariable variable) {
    UserFolders folders;
    folders.home = homeFolderOf(variable);
    const String& home = folders.home;

    const String config = orElse(folderOfVariable(variable, "XDG_CONFIG_HOME"), home, u".config");
    const std::string userDirs = settings(detail::appendedComponent(config, u"user-dirs.dirs"));
    folders.desktop = orElse(userDirectory(userDirs, "XDG_DESKTOP_DIR", home), home, u"Desktop");
    folders.downloads =
        orElse(userDirectory(userDirs, "XDG_DOWNLOAD_DIR", home), home, u"Downloads");

    folders.library = detail::appendedComponent(home, u"Library");
    folders.preferences = detail::appendedComponent(folders.library, u"Preferences");
    folders.caches =
        orElse(folderOfVariable(variable, "XDG_CACHE_HOME"), folders.library, u"Caches");
    folders.applicationSupport = orElse(folderOfVariable(variable, "XDG_DATA_HOME"),
                                        folders.library, u"Application Support");

    folders.userHome = outsideSandbox(home);
    folders.userLibrary = detail::appendedComponent(folders.userHome, u"Library");
    folders.iCloud =
        detail::appendedComponent(folders.userLibrary, u"Mobile Documents/com~apple~CloudDocs");
    folders.dropbox = dropboxFolders(home);
    folders.temporary = orElse(folderOfVariable(variable, "TMPDIR"), u"/", u"tmp");
    return folders;
}

}  // namespace velmo::detail
