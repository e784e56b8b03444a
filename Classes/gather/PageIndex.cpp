#include "gather/PageIndex.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <random>

namespace velmo::detail {
namespace {

__extension__ using Wide = unsigned __int128;

constexpr std::uint32_t Free = std::numeric_limits<std::uint32_t>::max();
constexpr std::size_t LeastPlaces = 64;

std::uint64_t eightBytes(const std::uint8_t* bytes, std::size_t count) {
    std::uint64_t value = 0;
    std::memcpy(&value, bytes, count);
    return value;
}

/// Both halves of the product, one on the other: each bit of the result depends on all.
std::uint64_t mixed(std::uint64_t a, std::uint64_t b) {
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

std::array<std::uint64_t, 2> newSecret() {
    std::random_device device;
    std::array<std::uint64_t, 2> secret;
    for (std::uint64_t& part : secret) part = std::uint64_t{device()} << 32 | device() | 1;
    return secret;
}

}  // namespace

PageIndex::PageIndex() : secret_(newSecret()) {}

std::uint64_t PageIndex::hashOf(Bytes bytes) const {
    std::uint64_t hash = secret_[0] + bytes.size();
    for (std::size_t at = 0; at < bytes.size(); at += 8) {
        const std::size_t count = std::min<std::size_t>(8, bytes.size() - at);
        hash = mixed(hash ^ eightBytes(bytes.data() + at, count), secret_[1]) + secret_[0];
    }
    return mixed(hash, secret_[1]);
}

std::optional<std::size_t> PageIndex::find(const Table& table, std::uint64_t hash,
                                           IsIt isIt) const {
    const std::size_t count = table.places.size();
    for (std::size_t at = hash & (count - 1); count > 0; at = (at + 1) & (count - 1)) {
        const std::uint32_t number = table.places[at];
        if (number == Free) break;
        if (entries_[number].*table.hash == hash && isIt(entries_[number])) return number;
    }
    return std::nullopt;
}

std::optional<std::size_t> PageIndex::findKey(std::uint64_t hash, IsIt isIt) const {
    return find(keys_, hash, isIt);
}

std::optional<std::size_t> PageIndex::findDigest(std::uint64_t hash, IsIt isIt) const {
    return find(digests_, hash, isIt);
}

void PageIndex::put(Table& table, std::size_t number) {
    // Never more than half of the places are taken, so that a search is short and comes to an end.
    if (2 * (table.used + 1) > table.places.size()) return fill(table);
    const std::size_t mask = table.places.size() - 1;
    std::size_t at = entries_[number].*table.hash & mask;
    while (table.places[at] != Free) at = (at + 1) & mask;
    table.places[at] = static_cast<std::uint32_t>(number);
    ++table.used;
}

void PageIndex::fill(Table& table) {
    const std::size_t places = std::bit_ceil(std::max(LeastPlaces, 3 * entries_.size()));
    table.places.assign(places, Free);
    table.used = 0;
    for (std::size_t number = 0; number < entries_.size(); ++number) put(table, number);
}

void PageIndex::add(const Entry& entry) {
    entries_.push_back(entry);
    put(keys_, entries_.size() - 1);
    put(digests_, entries_.size() - 1);
}

void PageIndex::replace(std::size_t number, const Entry& entry) {
    const bool isOtherText = entries_[number].digest != entry.digest;
    entries_[number] = entry;
    if (isOtherText) put(digests_, number);
}

void PageIndex::sortByOffset() {
    std::ranges::sort(entries_, {}, &Entry::offset);
    fill(keys_);
    fill(digests_);
}

}  // namespace velmo::detail
