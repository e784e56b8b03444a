// Where the pages of a store are: by the hash of their key, and by that of their text's digest.
//
// A store of half a million pages is to be known in few bytes a page, so that hashes stand for keys
// and digests; who asks compares what the block itself says. The hash has a secret of its own in
// each index: nobody who names pages can choose names that meet.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/FunctionRef.h>

namespace velmo::detail {

class PageIndex {
public:
    struct Entry {
        std::uint64_t key, digest;  // hashes
        std::uint64_t offset;       // of the block
    };

    PageIndex();

    std::uint64_t hashOf(Bytes bytes) const;
    std::size_t size() const { return entries_.size(); }
    const Entry& entry(std::size_t number) const { return entries_[number]; }

    /// The number of an entry with that hash of which the handler says that it is the one.
    using IsIt = FunctionRef<bool(const Entry& entry)>;
    std::optional<std::size_t> findKey(std::uint64_t hash, IsIt isIt) const;
    std::optional<std::size_t> findDigest(std::uint64_t hash, IsIt isIt) const;

    void add(const Entry& entry);
    void replace(std::size_t number, const Entry& entry);
    void sortByOffset();

private:
    /// Numbers of entries, by open addressing. An entry that was replaced may stand there still,
    /// where its new hash does not lead to.
    struct Table {
        std::uint64_t Entry::*hash;
        std::vector<std::uint32_t> places = {};
        std::size_t used = 0;
    };
    std::optional<std::size_t> find(const Table& table, std::uint64_t hash, IsIt isIt) const;
    void put(Table& table, std::size_t number);
    void fill(Table& table);

    std::array<std::uint64_t, 2> secret_;
    std::vector<Entry> entries_;
    Table keys_{&Entry::key}, digests_{&Entry::digest};
};

}  // namespace velmo::detail
