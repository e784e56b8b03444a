// A block is believed without its checksum if the records in it end where it ends: a header that is
// damaged, or a block that swallows the next one, is then seen by a few of its bytes. All others, and
// what follows on damage, are summed up as a salvage does it.
//
// That a page replaces another one of the same key is believed only of a page that is whole: after a
// crash of the machine the later may be missing in part.
#include "gather/PageScan.h"

#include <velmocore/storage/KeyedData.h>
#include <velmocore/storage/StorageBlocks.h>

#include "gather/RecordKeys.h"
#include "storage/BlockHeader.h"
#include "storage/StoreFile.h"

namespace velmo::detail {
namespace {

constexpr std::uint64_t ReleasedStretch = std::uint64_t{32} << 20;

/// Where the last record ends.
std::size_t endOfRecords(Bytes data) {
    std::size_t end = 0;
    forEachKeyedRecord(data, [&](const KeyedRecord& record) {
        const bool isWhole = !record.type.hasPayload || record.payload.has_value();
        end = isWhole ? record.offset + record.bytes.size() : data.size() + 1;
        return isWhole;
    });
    return end;
}

/// Of a dead block the records are still there. Behind them is less than makes another header.
bool isTrusted(const StorageBlock& block, Bytes room) {
    if (block.isCompressed) return false;
    const std::size_t end = endOfRecords(block.state == BlockState::Live ? block.stored : room);
    return end <= room.size() && room.size() - end < BlockHeaderSize &&
           (block.state == BlockState::Dead || end == block.stored.size());
}

class Finder {
public:
    Finder(FoundPages& found, Bytes store) : found_(found), store_(store) {}

    void take(const StorageBlock& block) {
        if (block.state != BlockState::Live || block.isCompressed) return;
        if (StoredPage(block.stored).isPage())
            takePage(block.offset);
        else if (isNote(block.stored))
            found_.notes.push_back(block.offset);
    }

private:
    void takePage(std::uint64_t offset) {
        const StoredPage page = pageAt(store_, offset);
        const Bytes key = bytesOf(page.key());
        const PageIndex::Entry entry = {found_.pages.hashOf(key),
                                        found_.pages.hashOf(page.digest()), offset};
        const auto earlier = found_.pages.findKey(entry.key, [&](const PageIndex::Entry& other) {
            return pageAt(store_, other.offset).key() == page.key();
        });
        if (!earlier) return found_.pages.add(entry);
        if (!page.isIntact()) return;
        found_.outdated.push_back(found_.pages.entry(*earlier).offset);
        found_.pages.replace(*earlier, entry);
    }

    FoundPages& found_;
    Bytes store_;
};

}  // namespace

Bytes bytesOf(std::string_view utf8) {
    return {reinterpret_cast<const std::uint8_t*>(utf8.data()), utf8.size()};
}

bool isNote(Bytes block) {
    return isValidKeyedData(block) && !containsStringForKey(block, PageKeyKey);
}

StoredPage pageAt(Bytes store, std::uint64_t offset) {
    const BlockHeader header = BlockHeader::of(store.data() + offset);
    return StoredPage(store.subspan(offset + BlockHeaderSize, header.length), header.checksum);
}

void findPages(FoundPages& found, Bytes store, ScanMemory memory) {
    Finder finder(found, store);
    std::uint64_t released = 0;
    forEachStorageBlock(
        store,
        [&](const StorageBlock& block) {
            finder.take(block);
            if (memory == ScanMemory::IsReleased && block.offset - released >= ReleasedStretch) {
                FileMapping::release(store.subspan(released, block.offset - released));
                released = block.offset;
            }
            return true;
        },
        {.salvage = true, .isTrusted = isTrusted});
    if (!found.outdated.empty()) found.pages.sortByOffset();
}

}  // namespace velmo::detail
