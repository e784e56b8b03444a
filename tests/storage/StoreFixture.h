// What the tests of stores share: a folder of their own, blocks at random, and calls that fail.
#pragma once

#include <functional>

#include <velmocore/storage/KeyedStorage.h>

#include "FailingCalls.h"
#include "FolderFixture.h"
#include "storage/StoreFile.h"

namespace velmo::test {

inline Data dataOf(std::string_view text) { return {text.begin(), text.end()}; }

inline Data randomData(std::mt19937& random, std::size_t length) {
    Data data(length);
    for (std::uint8_t& byte : data) byte = static_cast<std::uint8_t>(random());
    return data;
}

class StoreTest : public FolderTest {
protected:
    KeyedStorage reading(const char* name) const { return KeyedStorage::keyedStorageForReadingAtPath(at(name)); }
    KeyedStorage updating(const char* name) const { return KeyedStorage::keyedStorageForUpdatingAtPath(at(name)); }
    KeyedStorage appending(const char* name) const { return KeyedStorage::keyedStorageForAppendingAtPath(at(name)); }

    /// All that a reader gets, over blocks that cannot be read.
    static std::vector<Data> blocksOf(KeyedStorage store) {
        std::vector<Data> blocks;
        while (const auto block = store.nextAvailableBlock()) blocks.emplace_back(block->begin(), block->end());
        return blocks;
    }
    std::vector<Data> blocks(const char* name) const { return blocksOf(reading(name)); }
    static std::vector<Data> found(Bytes store, bool salvage) {
        std::vector<Data> blocks;
        forEachStorageBlock(store,
                            [&](const StorageBlock& block) {
                                if (block.state == BlockState::Live)
                                    blocks.push_back(block.unpacked().value_or(Data()));
                                return true;
                            },
                            {.salvage = salvage});
        return blocks;
    }
};

}  // namespace velmo::test
