// The settings that tell where a user's folders are, written by others: the file of the desktop,
// that of the cloud service and the variables are parts of the input. Every folder is an absolute
// path without a slash at its end.
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>

#include "Input.h"
#include "system/UserFolders.h"

using namespace velmo;
using fuzz::require;

namespace {

/// A home folder for the life of the process.
struct Home {
    std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("velmo-fuzz-" + std::to_string(::getpid()));

    Home() {
        std::filesystem::create_directories(path / ".config");
        std::filesystem::create_directories(path / ".dropbox");
    }
    ~Home() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    void write(const char* name, std::string_view bytes) const {
        std::ofstream(path / name, std::ios::binary) << bytes;
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Home home;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    std::array<std::string, 4> parts;  // separated by bytes of 0
    std::size_t start = 0;
    for (std::string& part : parts) {
        const std::size_t end = std::min(input.find('\0', start), size);
        part = input.substr(start, end - start);
        start = std::min(end + 1, size);
    }
    home.write(".config/user-dirs.dirs", parts[0]);
    home.write(".dropbox/info.json", parts[1]);
    const std::string path = home.path.string();
    const detail::UserFolders folders =
        detail::findUserFolders([&](std::string_view name) -> const char* {
            if (name == "HOME") return path.c_str();
            if (name == "XDG_CACHE_HOME") return parts[2].c_str();
            return name == "TMPDIR" ? parts[3].c_str() : nullptr;
        });
    for (const String& folder : {folders.home, folders.desktop, folders.downloads, folders.caches,
                                 folders.temporary, folders.library}) {
        require(folder.view().starts_with(u'/'));
        require(folder.length() == 1 || !folder.view().ends_with(u'/'));
    }
    require(!folders.dropbox.empty());
    return 0;
}
