// Bytes as a store: walked, salvaged, read as a file and optimised.
#include <velmocore/platform/Log.h>
#include <velmocore/storage/KeyedStorage.h>
#include <velmocore/text/Checksums.h>

#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "Input.h"

using namespace velmo;
using fuzz::require;

namespace {

/// A file without a name, or with one that leads to it.
class MemoryFile {
public:
    MemoryFile() : file_(::memfd_create("store", MFD_CLOEXEC)) { require(file_ >= 0); }
    explicit MemoryFile(Bytes bytes) : MemoryFile() {
        require(::write(file_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()));
    }
    ~MemoryFile() { ::close(file_); }
    KeyedStorage store() const {
        return KeyedStorage::initWithFile(::dup(file_), Path("memory"), false);
    }

private:
    int file_;
};

std::size_t blocksOf(Bytes bytes, bool salvage) {
    std::size_t live = 0;
    std::uint64_t last = 0;
    forEachStorageBlock(
        bytes,
        [&](const StorageBlock& block) {
            require(block.offset >= last && block.offset < bytes.size());
            last = block.offset;
            if (block.state != BlockState::Live) return true;
            // What is given as right is right.
            const std::uint8_t* header = bytes.data() + block.offset;
            require(block.stored.data() == header + BlockHeaderSize);
            const std::uint32_t checksum = CRC32(block.stored);
            for (int i = 0; i < 4; ++i)
                require(header[12 + i] == static_cast<std::uint8_t>(checksum >> (3 - i) * 8));
            const auto data = block.unpacked(1 << 20);
            require(!data || data->size() <= 1 << 20);
            ++live;
            return true;
        },
        {.salvage = salvage});
    return live;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    setLogHandler([](std::string_view) {});
    const Bytes bytes(data, size);
    const std::size_t live = blocksOf(bytes, false);
    blocksOf(bytes, true);
    const MemoryFile file(bytes);
    {
        KeyedStorage store = file.store();
        std::size_t read = 0;
        while (store.nextAvailableBlock()) ++read;
        require(read <= live);
    }
    KeyedStorage store = file.store();
    store.setBlockSize(size > 0 && data[0] % 2 ? 512 : 0);
    const std::uint64_t offset = size > 1 ? data[1] : 0;
    store.updateBlock("update", offset);
    store.deleteBlockAtFileOffset(offset);
    store.seekToEndOfFile();
    require(store.appendBlock("the last block"));
    const std::uint64_t appended = store.offsetOfAppendedBlock();
    store.seekToFileOffset(appended);
    const auto block = store.nextAvailableBlock();
    require(block && charsOf(*block) == "the last block");
    store.seekToFileOffset(0);
    for (std::uint64_t target = 0;;) {
        const auto copy = store.mutableCopyOfNextAvailableBlockWithCompressed();
        if (!copy) break;
        const std::uint64_t next = store.offsetInFile();
        target = store.optimizeLastBlock(copy->data, copy->compressed, target).nextOffset;
        store.seekToFileOffset(next);
    }
    return 0;
}
