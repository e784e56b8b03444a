// Runs every fuzz target over its kept inputs, without the fuzzer: what was once found, and one
// input at least of each kind that a target reads, is tried in every build. A check that does not
// hold stops the program; the last line names the target and the file.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

// TARGET(name) for each target; the build gives each entry point the name of its target.
#define TARGET(name) extern "C" int replay_##name(const std::uint8_t* data, std::size_t size);
#include "Targets.inc"
#undef TARGET

namespace {

struct Target {
    const char* name;
    int (*run)(const std::uint8_t*, std::size_t);
};

constexpr Target Targets[] = {
#define TARGET(name) {#name, replay_##name},
#include "Targets.inc"
#undef TARGET
};

std::vector<std::uint8_t> bytesOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// How many inputs were run.
std::size_t replay(const Target& target, const std::filesystem::path& folder) {
    std::set<std::filesystem::path> paths;  // in the same order everywhere
    std::error_code missing;
    for (const auto& entry : std::filesystem::directory_iterator(folder, missing))
        paths.insert(entry.path());
    for (const std::filesystem::path& path : paths) {
        std::fprintf(stderr, "%s %s\n", target.name, path.filename().c_str());
        const std::vector<std::uint8_t> bytes = bytesOf(path);
        // Every beginning of a short one, so that nothing relies on what follows.
        for (std::size_t size = bytes.size() > 512 ? bytes.size() : 0; size <= bytes.size(); ++size)
            target.run(bytes.data(), size);
    }
    return paths.size();
}

}  // namespace

int main() {
    bool isComplete = true;
    for (const Target& target : Targets)
        if (replay(target, std::filesystem::path(VELMO_SEEDS) / target.name) == 0) {
            std::fprintf(stderr, "%s has no inputs in %s\n", target.name, VELMO_SEEDS);
            isComplete = false;
        }
    return isComplete ? 0 : 1;
}
