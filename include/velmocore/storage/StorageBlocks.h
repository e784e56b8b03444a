#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/FunctionRef.h>

namespace velmo {

// The blocks of a store in memory, without a file; KeyedStorage.h tells what a store is and has
// the same for files, docs/formats.md describes a block byte by byte. Nothing is shared: any thread
// may read bytes that none changes meanwhile.
//
//     std::size_t live = 0;
//     forEachStorageBlock(bytes, [&](const StorageBlock& block) {
//         live += block.state == BlockState::Live;
//         return true;
//     });
//     live;    // 0

/// Bytes of the header of a block.
inline constexpr std::size_t BlockHeaderSize = 16;

/// What stands at an offset of a store.
enum class BlockState : std::uint8_t {
    Live,             ///< a block whose checksum is right
    Dead,             ///< a deleted block
    InvalidHeader,    ///< no header, or not all of one
    Truncated,        ///< a block that runs past the end
    InvalidChecksum,  ///< a block whose bytes are not those that were written
    End,              ///< nothing
};

/// A block where it stands.
struct StorageBlock {
    BlockState state;           ///< what it is
    std::uint64_t offset;       ///< in bytes, of its header, which is what a block goes by
    std::uint64_t length = 0;   ///< of all of it: header, payload and padding; 0 if not known
    bool isCompressed = false;  ///< whether the payload is packed
    Bytes stored = {};          ///< the payload of a live block as it is stored

    /// The payload as it was before it was compressed; none if it cannot be inflated, or not within
    /// the limit.
    [[nodiscard]] VELMO_API std::optional<Data> unpacked(std::size_t limit = std::size_t{
                                                             0xFFFFFFFF}) const;
};
/// Takes a block; false ends the walk.
using StorageBlockHandler = FunctionRef<bool(const StorageBlock& block)>;
/// Whether the bytes of a live block, or the room of a dead one, are such as they were written.
using StorageBlockTrust = FunctionRef<bool(const StorageBlock& block, Bytes room)>;

/// How a store is walked.
struct BlockWalking {
    /// Go on behind damage: with the next block that proves to be one by marker and checksum.
    /// Every block that is whole is found then, also behind a wrong length; without it, a wrong
    /// header ends the walk, as it does for readers. Blocks of a store that was itself a payload,
    /// in a block that is damaged now, may be taken for blocks of this one.
    bool salvage = false;
    /// Ours: what is whole by its own looks. Blocks that it is true of are not summed up: a live
    /// one is told without a look at its checksum, so that most of a store need not be read. It
    /// must not be true of a block that swallows the next one, whose length or padding is damaged.
    /// Of all others only a payload with the right checksum is believed: with salvage, whole blocks
    /// that stand elsewhere in them are told too, as what is appended behind damage may come to
    /// stand.
    StorageBlockTrust isTrusted = {};
};
/// Calls the handler for each block, dead or alive, and for each damage, in order, until it returns
/// false. A live block whose padding runs past the end comes twice, as truncated too. The time is
/// linear in the size of the store, whatever it holds.
VELMO_API void forEachStorageBlock(Bytes store, StorageBlockHandler handler,
                                   BlockWalking options = {});

}  // namespace velmo
