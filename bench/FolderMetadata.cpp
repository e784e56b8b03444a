// A comment found among ten thousand records of folder metadata, in a tree of several levels with
// nodes of 4 KB. There is no other library to compare with. What is asked for is the last record of
// the tree, so that all are looked at.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <vector>

#include <velmocore/storage/DSStore.h>

#include "FolderStore.h"

namespace velmo::bench {
namespace {

constexpr std::size_t Records = 10'000, RecordsANode = 36;

struct Folder {
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("velmo-bench-folder-" + std::to_string(getpid()));
    Folder() {
        std::filesystem::create_directory(path);
        FolderStore made;
        const auto records = sortedComments(Records);
        std::ofstream(path / ".DS_Store", std::ios::binary)
            << made.file(made.addTree(records, RecordsANode));
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
};

const std::filesystem::path& folder() {
    static const Folder made;
    return made.path;
}

void findComment(benchmark::State& state) {
    const auto store = DSStore::storeWithDirectory(folder());
    String comment;
    for (auto _ : state) comment = store->finderCommentForFilename(u"file 1009999.txt");
    if (comment != u"a comment on 1009999") state.SkipWithError("not found");
}
BENCHMARK(findComment)->Name("folder-comment/velmo")->Unit(benchmark::kMicrosecond);

void listAll(benchmark::State& state) {
    const auto store = DSStore::storeWithDirectory(folder());
    std::size_t count = 0;
    for (auto _ : state) {
        count = 0;
        store->forEachEntry([&](const DSStoreEntry&) { return ++count, true; });
    }
    if (count != Records) state.SkipWithError("not all was read");
}
BENCHMARK(listAll)->Name("folder-records/velmo")->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace velmo::bench
