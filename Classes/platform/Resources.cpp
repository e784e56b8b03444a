#include <velmocore/platform/Resources.h>

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace velmo {
namespace {

namespace fs = std::filesystem;

/// So many folders above that of a library or program may be the prefix: lib/x86_64-linux-gnu
/// is two below it, and in a build tree programs stand no deeper either.
constexpr int MostSteps = 3;

bool isFolder(const fs::path& path) {
    std::error_code ignored;
    return fs::is_directory(path, ignored);
}

/// The data that are installed in the same tree as a file.
fs::path dataBeside(const fs::path& file) {
    fs::path folder = file.parent_path();
    for (int step = 0; step <= MostSteps && !folder.empty(); ++step) {
        if (fs::path data = folder / VELMO_DATA_FOLDER; isFolder(data)) return data;
        if (folder == folder.parent_path()) break;
        folder = folder.parent_path();
    }
    return {};
}

/// The file that this code was loaded from, be it a library or a program. A program may be
/// told by a name that says nothing any more; it is found below.
fs::path thisLibrary() {
    Dl_info info{};
    if (!dladdr(reinterpret_cast<const void*>(&velmoResourcesDirectory), &info)) return {};
    std::error_code error;
    const fs::path file = fs::canonical(info.dli_fname ? info.dli_fname : "", error);
    return error ? fs::path() : file;
}

fs::path thisProgram() {
    std::error_code error;
    const fs::path file = fs::read_symlink("/proc/self/exe", error);
    return error ? fs::path() : file;
}

/// Where data are found that stand with neither, as those of a program that has the library
/// in itself.
fs::path dataOfSystem() {
    const char* listed = std::getenv("XDG_DATA_DIRS");
    std::string_view folders = listed && *listed ? listed : "/usr/local/share:/usr/share";
    while (!folders.empty()) {
        const std::string_view folder = folders.substr(0, folders.find(':'));
        folders.remove_prefix(std::min(folders.size(), folder.size() + 1));
        if (fs::path data = fs::path(folder) / "velmocore"; !folder.empty() && isFolder(data))
            return data;
    }
    return {};
}

}  // namespace

std::string velmoResourcesDirectory() {
    const char* chosen = std::getenv("VELMO_RESOURCES");
    if (chosen && *chosen) return chosen;
    for (const fs::path& file : {thisLibrary(), thisProgram()})
        if (const fs::path data = dataBeside(file); !data.empty()) return data.string();
    return dataOfSystem().string();
}

}  // namespace velmo
