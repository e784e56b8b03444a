// Folders and archives: what their names and entries cost.
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <mutex>

#include <velmocore/system/Archives.h>
#include <velmocore/system/FolderContents.h>
#include <velmocore/system/UniqueNames.h>

#include "Growth.h"

namespace velmo::growth {
namespace {

namespace fs = std::filesystem;

/// A folder in memory, for the life of the program.
const fs::path& ground() {
    static const struct Ground {
        fs::path path =
            (fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path()) /
            ("velmo-growth-" + std::to_string(::getpid()));
        Ground() { fs::create_directories(path); }
        ~Ground() {
            std::error_code ignored;
            fs::remove_all(path, ignored);
        }
    } made;
    return made.path;
}

/// A folder with a file for each 64 units of a text, and an archive of it: made once for each size,
/// for all threads.
struct Sample {
    explicit Sample(std::size_t units) {
        static std::mutex making;
        const std::lock_guard lock(making);
        folder = ground() / std::to_string(units);
        archive = folder.string() + ".zip";
        if (!fs::create_directory(folder)) return;
        std::ofstream(folder / "a.txt");
        for (std::size_t i = 1; i < units / 64; ++i)
            std::ofstream(folder / ("a-" + std::to_string(i) + ".txt"));
        compressFileAtPath(folder, archive);
    }
    fs::path folder, archive;
};

void packAndUnpack(const Sample& sample) {
    static std::atomic<unsigned> serial = 0;
    const fs::path own = ground() / ("own" + std::to_string(serial++));
    use(compressFileAtPath(sample.folder, own.string() + ".zip"));
    use(decompressFileAtPath(own.string() + ".zip", own));
    fs::remove(own.string() + ".zip");
    fs::remove_all(own);
}

constexpr Operation Rows[] = {
    {"contents of folders",
     [](const Input& in) {
         const Sample sample(in.text.length());
         use(directoryContentsMatchingExtension(sample.folder, u"TXT"));
         use(directoryContentsMatchingWildcard(sample.folder, u"*a*1*1*x*"));
     }},
    {"free names",
     [](const Input& in) {
         use(nonExistingFilenameAtPath(Sample(in.text.length()).folder / "a.txt"));
     }},
    {"lists of archives",
     [](const Input& in) { use(contentsOfArchiveAtPath(Sample(in.text.length()).archive)); }},
    {"archives", [](const Input& in) { packAndUnpack(Sample(in.text.length())); }},
};

}  // namespace

std::span<const Operation> systemOperations() { return Rows; }

}  // namespace velmo::growth
