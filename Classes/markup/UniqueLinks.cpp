// A hash table of places in the list, and not of strings: a link that the list has already is
// found without making a String of it, and most links of a page come more than once.
#include "markup/UniqueLinks.h"

#include <cstring>
#include <random>

namespace velmo::detail {
namespace {

std::uint64_t mixed(std::uint64_t a, std::uint64_t b) {
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

/// Differs from run to run, so that no page can be made whose links all share a slot.
std::uint64_t seed() {
    static const std::uint64_t value = [] {
        std::random_device device;
        return static_cast<std::uint64_t>(device()) << 32 | device();
    }();
    return value;
}

/// Eight units, or what is left of them, a step.
std::uint64_t hashOf(std::u16string_view link, std::uint64_t start) {
    constexpr std::uint64_t Odd = 0x9E3779B97F4A7C15;
    constexpr std::size_t Step = 8;
    std::uint64_t hash = start ^ link.size();
    for (std::size_t i = 0; i < link.size(); i += Step) {
        std::uint64_t words[2] = {};
        if (link.size() - i >= Step)
            std::memcpy(words, link.data() + i, sizeof words);
        else
            std::memcpy(words, link.data() + i, (link.size() - i) * sizeof(char16_t));
        hash = mixed(hash ^ words[0], words[1] ^ start ^ Odd);
    }
    return mixed(hash, start ^ Odd);
}

}  // namespace

UniqueLinks::UniqueLinks(std::vector<String>& links) : links_(links), seed_(seed()) {}

std::size_t UniqueLinks::add(std::u16string_view link) {
    // Before the look-up, which needs a free slot to end at.
    if (links_.size() * 2 >= slots_.size()) grow();
    const std::uint64_t hash = hashOf(link, seed_);
    Slot& slot = slotFor(hash, link);
    if (!slot.number) {
        links_.emplace_back(link);
        slot = {hash, links_.size()};
    }
    return slot.number - 1;
}

// A slot that is taken is followed by the next one: with half of them free, runs are short.
UniqueLinks::Slot& UniqueLinks::slotFor(std::uint64_t hash, std::u16string_view link) {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        Slot& slot = slots_[i];
        if (!slot.number || (slot.hash == hash && links_[slot.number - 1] == link)) return slot;
    }
}

void UniqueLinks::grow() {
    std::vector<Slot> old = std::move(slots_);
    slots_.assign(old.empty() ? 128 : old.size() * 2, Slot());
    // Room for as many links as the table will take, so that both grow together.
    links_.reserve(slots_.size() / 2);
    for (const Slot& slot : old)
        if (slot.number) slotFor(slot.hash, links_[slot.number - 1]) = slot;
}

}  // namespace velmo::detail
