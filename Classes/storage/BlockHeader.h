// The header of a block, and the rules by which a block is taken for one: the one place for all
// that read stores, whatever they read them from.
#pragma once

#include <cstddef>
#include <cstdint>

#include <velmocore/storage/StorageBlocks.h>
#include <velmocore/text/Checksums.h>

#include "storage/BigEndian.h"

namespace velmo::detail {

inline constexpr std::uint32_t PlainMarker = 0x31415926, CompressedMarker = 0x98765432;
inline constexpr std::uint32_t OldPlainMarker = 0x53545354;  // read, never written

constexpr bool isBlockMarker(std::uint32_t marker) noexcept {
    return marker == PlainMarker || marker == CompressedMarker || marker == OldPlainMarker;
}

struct BlockHeader {
    std::uint32_t marker = PlainMarker, length = 0, padding = 0, checksum = 0;

    static BlockHeader of(const std::uint8_t* bytes) noexcept {
        return {bigEndian32(bytes), bigEndian32(bytes + 4), bigEndian32(bytes + 8),
                bigEndian32(bytes + 12)};
    }
    void put(std::uint8_t* bytes) const noexcept {
        putBigEndian(bytes, marker, 4);
        putBigEndian(bytes + 4, length, 4);
        putBigEndian(bytes + 8, padding, 4);
        putBigEndian(bytes + 12, checksum, 4);
    }
    /// What an update may fill.
    std::uint64_t room() const noexcept { return std::uint64_t{length} + padding; }
    /// Of the whole block.
    std::uint64_t size() const noexcept { return BlockHeaderSize + room(); }
};

/// What stands at an offset, as far as readers go.
struct BlockAt {
    BlockState state;
    BlockHeader header;
    std::size_t headerBytes = 0;  ///< how much of a header there is
    Bytes stored = {};            ///< of a live block
};

/// Source::view(offset, count) gives so many bytes, fewer only at the end.
template <class Source>
BlockAt blockAt(Source& source, std::uint64_t offset) {
    const Bytes bytes = source.view(offset, BlockHeaderSize);
    if (bytes.empty()) return {BlockState::End, {}};
    if (bytes.size() < BlockHeaderSize) return {BlockState::InvalidHeader, {}, bytes.size()};
    const BlockHeader header = BlockHeader::of(bytes.data());
    if (!isBlockMarker(header.marker)) return {BlockState::InvalidHeader, {}, BlockHeaderSize};
    if (header.length == 0) return {BlockState::Dead, header, BlockHeaderSize};
    const Bytes stored = source.view(offset + BlockHeaderSize, header.length);
    if (stored.size() < header.length) return {BlockState::Truncated, header, BlockHeaderSize};
    if (CRC32(stored) != header.checksum)
        return {BlockState::InvalidChecksum, header, BlockHeaderSize};
    return {BlockState::Live, header, BlockHeaderSize, stored};
}

/// A store in memory, as a source.
struct StoreBytes {
    Bytes store;

    Bytes view(std::uint64_t offset, std::size_t count) const {
        if (offset >= store.size()) return {};
        return store.subspan(offset, std::min<std::uint64_t>(count, store.size() - offset));
    }
};

}  // namespace velmo::detail
