#include "storage/BlockIndex.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "storage/BlockHeader.h"

namespace velmo::detail {
namespace {

constexpr std::uint64_t Step = 4096;  // between the beginnings; shorter stretches are just summed

// Checksums are polynomials modulo that of the CRC, the highest power in the lowest bit.
constexpr std::uint32_t Polynomial = 0xEDB88320, One = 0x80000000, X = One >> 1;

constexpr std::uint32_t product(std::uint32_t a, std::uint32_t b) {
    std::uint32_t result = 0;
    for (std::uint32_t bit = One; bit != 0; bit >>= 1) {
        if (a & bit) result ^= b;
        b = b >> 1 ^ (b & 1 ? Polynomial : 0);
    }
    return result;
}

/// X to the powers 1, 2, 4, 8 and so on.
constexpr std::array<std::uint32_t, 64> Squares = [] {
    std::array<std::uint32_t, 64> squares{};
    std::uint32_t power = X;
    for (std::uint32_t& square : squares) {
        square = power;
        power = product(power, power);
    }
    return squares;
}();

/// The checksum of bytes with so many zero bytes behind them.
constexpr std::uint32_t movedBy(std::uint32_t checksum, std::uint64_t zeros) {
    for (std::size_t bit = 3; zeros > 0; ++bit, zeros >>= 1)
        if (zeros & 1) checksum = product(Squares[bit], checksum);
    return checksum;
}

/// Padding may be missing where a store was cut off.
bool isPlausibleAt(Bytes store, std::uint64_t offset) {
    if (store.size() - offset < BlockHeaderSize) return false;
    const BlockHeader header = BlockHeader::of(store.data() + offset);
    return isBlockMarker(header.marker) && BlockHeaderSize + header.length <= store.size() - offset;
}

constexpr std::uint8_t firstByteOf(std::uint32_t marker) { return marker >> 24; }

bool mayBeginMarker(std::uint8_t byte) {
    return byte == firstByteOf(PlainMarker) || byte == firstByteOf(CompressedMarker) ||
           byte == firstByteOf(OldPlainMarker);
}

}  // namespace

std::uint32_t StretchChecksums::ofBeginning(std::uint64_t end) const {
    const std::uint64_t rest = end % Step;
    return movedBy(beginnings_[end / Step], rest) ^ CRC32(bytes_.subspan(end - rest, rest));
}

std::uint32_t StretchChecksums::of(std::uint64_t start, std::uint64_t length) {
    if (length <= Step) return CRC32(bytes_.subspan(start, length));
    if (beginnings_.empty()) {
        beginnings_.reserve(bytes_.size() / Step + 1);
        beginnings_.push_back(0);
        for (std::uint64_t end = Step; end <= bytes_.size(); end += Step)
            beginnings_.push_back(movedBy(beginnings_.back(), Step) ^
                                  CRC32(bytes_.subspan(end - Step, Step)));
    }
    return ofBeginning(start + length) ^ movedBy(ofBeginning(start), length);
}

BlockIndex::BlockIndex(Bytes store, std::uint64_t from) : store_(store) {
    collect(from);
    StretchChecksums checksums(store.subspan(from));
    std::size_t firstValid = entries_.size();
    for (std::size_t i = entries_.size(); i-- > 0;) {
        Entry& entry = entries_[i];
        const BlockHeader header = BlockHeader::of(store.data() + entry.offset);
        const std::uint64_t next = entry.offset + header.size();
        const Entry* follower = entryAt(next);  // is behind this one, so it has its root
        entry.root = follower ? follower->root : next;
        if (header.length > 0 &&
            checksums.of(entry.offset - from + BlockHeaderSize, header.length) == header.checksum)
            firstValid = i;
        entry.firstValid = firstValid;
    }
}

void BlockIndex::collect(std::uint64_t from) {
    for (std::uint64_t offset = from; offset < store_.size(); ++offset)
        if (mayBeginMarker(store_[offset]) && isPlausibleAt(store_, offset))
            entries_.push_back({offset, 0, 0});
}

std::vector<BlockIndex::Entry>::const_iterator BlockIndex::lowerBound(std::uint64_t offset) const {
    return std::ranges::lower_bound(entries_, offset, {}, &Entry::offset);
}

const BlockIndex::Entry* BlockIndex::entryAt(std::uint64_t offset) const {
    const auto entry = lowerBound(offset);
    return entry != entries_.end() && entry->offset == offset ? &*entry : nullptr;
}

std::optional<std::uint64_t> BlockIndex::firstValid(std::uint64_t from) const {
    const auto entry = lowerBound(from);
    if (entry == entries_.end() || entry->firstValid == entries_.size()) return std::nullopt;
    return entries_[entry->firstValid].offset;
}

std::optional<bool> BlockIndex::isValidAt(std::uint64_t offset) const {
    const Entry* entry = entryAt(offset);
    if (!entry) return std::nullopt;
    return entry->firstValid == static_cast<std::size_t>(entry - entries_.data());
}

bool BlockIndex::isPlausible(std::uint64_t offset) const {
    return offset == store_.size() || entryAt(offset) != nullptr;
}

bool BlockIndex::leadToTheSame(std::uint64_t first, std::uint64_t second) const {
    const auto rootOf = [&](std::uint64_t offset) {
        const Entry* entry = entryAt(offset);
        return entry ? entry->root : offset;
    };
    return rootOf(first) == rootOf(second);
}

}  // namespace velmo::detail
