// The walk over a store in memory. Without salvage it goes where a reader goes. With it no header
// is believed that the rest of the store speaks against: a length or a padding that is too large
// would hide blocks that are whole. The index of all that looks like a block is made when it is first
// needed, of what is not walked over yet, so that a torn end costs no more than itself.
#include <velmocore/storage/StorageBlocks.h>

#include <algorithm>

#include <velmocore/storage/Compression.h>

#include "storage/BlockHeader.h"
#include "storage/BlockIndex.h"

namespace velmo {
namespace {

using detail::BlockAt;
using detail::BlockHeader;

class Walk {
public:
    Walk(Bytes store, BlockWalking options) : source_{store}, options_(options) {}

    void run(StorageBlockHandler handler) {
        for (std::uint64_t offset = 0; offset < source_.store.size();) {
            const BlockAt block = look(offset);
            const bool isFramed =
                block.state != BlockState::InvalidHeader && block.state != BlockState::Truncated;
            StorageBlock told = {block.state, offset, isFramed ? block.header.size() : 0,
                                 block.header.marker == detail::CompressedMarker, block.stored};
            if (!handler(told)) return;
            if (isFramed && offset + told.length > source_.store.size() &&
                !handler({BlockState::Truncated, offset}))
                return;
            if (isTrusted_)
                offset += block.header.size();
            else
                offset = isFramed ? offsetBehind(offset, block) : offsetBehindDamage(offset);
        }
    }

private:
    std::uint64_t end() const { return source_.store.size(); }

    const detail::BlockIndex& indexFrom(std::uint64_t offset) {
        if (!index_) index_.emplace(source_.store, offset);
        return *index_;
    }

    /// What stands there. Once there is an index it knows the checksums, which are not to be
    /// computed for one overlapping block after the other.
    BlockAt look(std::uint64_t offset) {
        isTrusted_ = false;
        const auto isValid = index_ ? index_->isValidAt(offset) : std::nullopt;
        if (!isValid) {
            const auto trusted = options_.isTrusted ? trustedAt(offset) : std::nullopt;
            isTrusted_ = trusted.has_value();
            return isTrusted_ ? *trusted : detail::blockAt(source_, offset);
        }
        const BlockHeader header = BlockHeader::of(source_.store.data() + offset);
        if (header.length == 0) return {BlockState::Dead, header};
        if (!*isValid) return {BlockState::InvalidChecksum, header};
        return {BlockState::Live, header, BlockHeaderSize,
                source_.view(offset + BlockHeaderSize, header.length)};
    }

    /// The block there if its own looks say that it is whole.
    std::optional<BlockAt> trustedAt(std::uint64_t offset) const {
        const Bytes bytes = source_.view(offset, BlockHeaderSize);
        if (bytes.size() < BlockHeaderSize) return std::nullopt;
        const BlockHeader header = BlockHeader::of(bytes.data());
        if (!detail::isBlockMarker(header.marker) || header.size() > end() - offset)
            return std::nullopt;
        const BlockState state = header.length == 0 ? BlockState::Dead : BlockState::Live;
        const Bytes room = source_.view(offset + BlockHeaderSize, header.room());
        const Bytes stored = room.first(header.length);
        const StorageBlock block = {state, offset, header.size(),
                                    header.marker == detail::CompressedMarker, stored};
        if (!options_.isTrusted(block, room)) return std::nullopt;
        return BlockAt{state, header, BlockHeaderSize, stored};
    }

    std::uint64_t offsetBehindDamage(std::uint64_t offset) {
        return options_.salvage ? indexFrom(offset).firstValid(offset + 1).value_or(end()) : end();
    }

    /// Where a block says that the next one is, unless blocks that are whole stand before that and
    /// lead to the same place: then what it says is wrong.
    std::uint64_t offsetBehind(std::uint64_t offset, const BlockAt& block) {
        const std::uint64_t next = offset + block.header.size();
        const std::uint64_t known = offset + BlockHeaderSize + block.stored.size();
        if (!options_.salvage || !mayHoldBlock(known, next)) return next;
        const detail::BlockIndex& index = indexFrom(offset);
        const auto found = index.firstValid(known);
        if (!found || *found >= next) return next;
        const bool isHidden =
            options_.isTrusted || !index.isPlausible(next) || index.leadToTheSame(*found, next);
        return isHidden ? *found : next;
    }

    /// Padding is zeros but behind an update: that it is, is seen sooner than what is in it.
    bool mayHoldBlock(std::uint64_t from, std::uint64_t to) const {
        const Bytes between = source_.view(from, to - from);
        return std::ranges::any_of(between, [](std::uint8_t byte) { return byte != 0; });
    }

    const detail::StoreBytes source_;
    const BlockWalking options_;
    std::optional<detail::BlockIndex> index_;
    bool isTrusted_ = false;  // the block that was looked at last
};

}  // namespace

std::optional<Data> StorageBlock::unpacked(std::size_t limit) const {
    if (isCompressed) return dataByInflatingData(stored, limit);
    if (stored.size() > limit) return std::nullopt;
    return Data(stored.begin(), stored.end());
}

void forEachStorageBlock(Bytes store, StorageBlockHandler handler, BlockWalking options) {
    Walk(store, options).run(handler);
}

}  // namespace velmo
