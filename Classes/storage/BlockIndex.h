// All that looks like a block in the bytes of a store, wherever it stands: how blocks are found
// again behind a header that is wrong.
//
// A block proves itself by its checksum. To compute each of them over its bytes would be quadratic
// in a store that is made for that, all markers and large lengths. But the checksum is linear: that
// of a stretch follows from those of the two beginnings that end where the stretch begins and ends.
// So the beginnings are summed up once, and each block costs the same, however long it is.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>

namespace velmo::detail {

/// Checksums of any stretch of some bytes.
class VELMO_API StretchChecksums {
public:
    explicit StretchChecksums(Bytes bytes) : bytes_(bytes) {}

    std::uint32_t of(std::uint64_t start, std::uint64_t length);

private:
    std::uint32_t ofBeginning(std::uint64_t end) const;

    Bytes bytes_;
    std::vector<std::uint32_t> beginnings_;  // made when first needed
};

class BlockIndex {
public:
    /// Of a store from an offset on. All offsets count from the start of the store.
    explicit BlockIndex(Bytes store, std::uint64_t from = 0);

    /// The first block from an offset on that is whole and has the right checksum.
    std::optional<std::uint64_t> firstValid(std::uint64_t from) const;
    /// Whether the checksum there is right; none where no whole payload stands.
    std::optional<bool> isValidAt(std::uint64_t offset) const;
    /// Whether a block of any kind may stand there, or the store ends there.
    bool isPlausible(std::uint64_t offset) const;
    /// Whether the blocks that follow one another from both offsets end at the same place.
    bool leadToTheSame(std::uint64_t first, std::uint64_t second) const;

private:
    struct Entry {
        std::uint64_t offset;
        std::uint64_t root;      // where the blocks that follow one another from here end
        std::size_t firstValid;  // the entry, this or a later one
    };
    void collect(std::uint64_t from);
    const Entry* entryAt(std::uint64_t offset) const;
    std::vector<Entry>::const_iterator lowerBound(std::uint64_t offset) const;

    Bytes store_;
    std::vector<Entry> entries_;  // by offset
};

}  // namespace velmo::detail
