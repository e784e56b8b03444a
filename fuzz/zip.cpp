// Bytes as a zip archive: listed, and extracted with small limits into a folder with a link that
// leads out of it. Whatever comes out, stands in that folder, and no link there leads out but the
// old one.
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include <velmocore/system/Archives.h>

#include "Input.h"

using namespace velmo;
using fuzz::require;
namespace fs = std::filesystem;

namespace {

/// In memory, where there is such a place: an archive makes many small files.
struct Ground {
    fs::path path = (fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path()) /
                    ("velmo-fuzz-zip-" + std::to_string(::getpid()));
    fs::path archive = path / "a.zip", outside = path / "outside", to = path / "to";

    Ground() { fs::create_directories(outside); }
    ~Ground() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
};

void prepare(const Ground& ground, const std::uint8_t* data, std::size_t size) {
    fs::remove_all(ground.to);
    fs::create_directory(ground.to);
    fs::create_directory_symlink("../outside", ground.to / "old");
    std::ofstream(ground.archive, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

/// What was not told to be written is as it was.
void checkOutside(const Ground& ground) {
    require(fs::is_empty(ground.outside));
    std::size_t count = 0;
    for (const auto& entry : fs::directory_iterator(ground.path))
        require(++count <= 3 && entry.exists());
}

void checkInside(const Ground& ground, std::uint64_t mostBytes) {
    std::uint64_t all = 0;
    std::error_code error;
    for (const auto& entry : fs::recursive_directory_iterator(
             ground.to, fs::directory_options::skip_permission_denied)) {
        require(entry.path().filename().string().rfind(".velmo", 0) != 0);
        if (entry.is_symlink()) {
            const fs::path target = fs::weakly_canonical(entry.path(), error);
            const bool isInside = !error && target.native().starts_with(ground.to.native());
            require(error || isInside || (entry.path() == ground.to / "old"));
        } else if (entry.is_regular_file()) {
            require((entry.symlink_status().permissions() & fs::perms(07000)) == fs::perms::none);
            all += entry.file_size();
        }
    }
    require(all <= mostBytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Ground ground;
    constexpr std::uint64_t MostBytes = 0x4000, MostEntries = 16;
    prepare(ground, data, size);
    const auto entries = contentsOfArchiveAtPath(ground.archive);
    Error error;
    const bool isDone = decompressFileAtPath(
        ground.archive, ground.to, {.mostBytes = MostBytes, .mostEntries = MostEntries}, &error);
    require(isDone == error.text.isAbsent() && (!isDone || entries));
    checkOutside(ground);
    checkInside(ground, MostBytes);
    return 0;
}
