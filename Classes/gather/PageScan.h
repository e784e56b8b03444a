// What there is in a store of pages: one walk over its bytes, which looks at headers and at the
// first records of each block only.
#pragma once

#include <cstdint>
#include <vector>

#include <velmocore/gather/PageRecord.h>
#include <velmocore/platform/Bytes.h>

#include "gather/PageIndex.h"

namespace velmo::detail {

struct FoundPages {
    PageIndex pages = {};
    std::vector<std::uint64_t> notes = {};     ///< offsets, in order
    std::vector<std::uint64_t> outdated = {};  ///< offsets of pages that a later block replaces
};

enum class ScanMemory : std::uint8_t { IsKept, IsReleased };

/// Released is what is mapped of the store, stretch by stretch behind the walk.
void findPages(FoundPages& found, Bytes store, ScanMemory memory);

/// The page of a live block at an offset, with its checksum.
StoredPage pageAt(Bytes store VELMO_LIFETIME, std::uint64_t offset);

/// Keyed data, and not even a damaged page.
bool isNote(Bytes block);

Bytes bytesOf(std::string_view utf8);

}  // namespace velmo::detail
