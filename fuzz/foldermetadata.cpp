// Bytes as a file of folder metadata: its blocks, all of its records, and a search for each.
#include <velmocore/storage/DSStore.h>

#include <algorithm>
#include <cstdio>
#include <vector>

#include "Input.h"

using namespace velmo;
using fuzz::require;

namespace {

constexpr std::size_t MostSearches = 20, MostBlocks = 40;

void readBlocks(const DSStoreAllocator& store) {
    for (std::size_t i = 0; i < std::min<std::size_t>(store.numberOfBlocks(), MostBlocks); ++i) {
        auto stream = store.streamAtIndex(i);
        require(stream.has_value());
        const auto data = stream->readDataOfLength(store.sizeAtIndex(i));
        auto block = store.blockAtIndex(i);
        require(!block || (block->value() && data && std::ranges::equal(*block->value(), *data)));
        if (!block) continue;
        while (!block->isEOF()) DSStoreEntry::valueForFilename(u"a", FinderCommentCodec, *block);
    }
    require(!store.blockAtIndex(store.numberOfBlocks()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Searches tell standard output of nodes that cannot be.
    static const auto* const quiet = std::freopen("/dev/null", "w", stdout);
    require(quiet != nullptr);
    const auto store = DSStore::storeWithFile(DSStoreFile::fileWithData(Data(data, data + size)));
    if (!store) return 0;
    readBlocks(*store);
    std::vector<DSStoreEntry> entries;
    std::size_t bytes = 0;
    const std::size_t damaged = store->forEachEntry([&](const DSStoreEntry& entry) {
        bytes += 12 + 2 * entry.filename().length();
        if (entries.size() < MostSearches) entries.push_back(entry);
        return true;
    });
    // No byte is read twice.
    require(bytes <= size);
    for (const DSStoreEntry& entry : entries) {
        const auto found = store->entryForFilename(entry.filename(), entry.codec());
        require(damaged > 0 || entry.codec() == 0 || found.has_value());
        store->finderCommentForFilename(entry.filename());
    }
    require(!store->description().isAbsent());
    return 0;
}
