#include "query/WordTable.h"

#include <algorithm>
#include <bit>

#include "text/UnitFold.h"
#include "text/UnitHash.h"

namespace velmo::detail {
namespace {

/// Calls the function with the fold by which words are compared.
template <class Function>
auto withWordFold(Case letterCase, Function function) {
    return letterCase == Case::Sensitive ? function(NoFold{}) : function(UpperFold{});
}

std::uint64_t hashOf(std::u16string_view units, Case letterCase) {
    return withWordFold(letterCase,
                        [&](const auto& fold) { return hashOfUnits(units, hashSeed(), fold); });
}

bool isSame(std::u16string_view a, std::u16string_view b, Case letterCase) {
    return a.size() == b.size() && withWordFold(letterCase, [&](const auto& fold) {
               return sameUnits(a.data(), b.data(), a.size(), fold);
           });
}

}  // namespace

WordTable::WordTable(std::vector<Word> words, Case letterCase) : letterCase_(letterCase) {
    slots_.assign(std::bit_ceil(2 * words.size() + 2), None);
    entries_.reserve(words.size());
    for (const Word& word : words) insert(word);
}

void WordTable::insert(const Word& word) {
    lengths_ |= std::uint64_t{1} << std::min<std::size_t>(word.units.size(), OtherLengths);
    longest_ = std::max(longest_, word.units.size());
    const std::uint64_t hash = hashOf(word.units, letterCase_);
    const auto added = static_cast<std::uint32_t>(entries_.size());
    entries_.push_back({word, hash});
    std::size_t slot = hash & (slots_.size() - 1);
    for (; slots_[slot] != None; slot = (slot + 1) & (slots_.size() - 1)) {
        Entry& first = entries_[slots_[slot]];
        if (first.hash != hash || !isSame(first.word.units, word.units, letterCase_)) continue;
        // Behind the first one, so that the slot stays as it is.
        entries_[added].nextSame = std::exchange(first.nextSame, added);
        return;
    }
    slots_[slot] = added;
}

std::uint32_t WordTable::firstOf(std::u16string_view run) const {
    const std::uint64_t hash = hashOf(run, letterCase_);
    for (std::size_t slot = hash & (slots_.size() - 1);; slot = (slot + 1) & (slots_.size() - 1)) {
        const std::uint32_t first = slots_[slot];
        if (first == None) return None;
        const Entry& entry = entries_[first];
        if (entry.hash == hash && isSame(entry.word.units, run, letterCase_)) return first;
    }
}

}  // namespace velmo::detail
