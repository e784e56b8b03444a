#include "query/WordTable.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "platform/UnitHash.h"
#include "text/UnitFold.h"

namespace velmo::detail {
namespace {

/// Calls the function with the fold by which words are compared.
template <class Function>
auto withWordFold(Case letterCase, Function function) {
    return letterCase == Case::Sensitive ? function(NoFold{}) : function(UpperFold{});
}

}  // namespace

WordTable::WordTable(const std::vector<Word>& words, Case letterCase)
    : letterCase_(letterCase),
      slots_(std::bit_ceil(2 * words.size() + 2), None),
      filter_(words.size()) {
    entries_.reserve(words.size());
    for (const Word& word : words) insert(word);
}

void WordTable::insert(const Word& word) {
    longest_ = std::max(longest_, word.units.size());
    const RunKey key = keyOf(word.units);
    filter_.add(key);
    const std::uint64_t hash = hashOf(word.units, key);
    const auto added = static_cast<std::uint32_t>(entries_.size());
    entries_.push_back({word, key, hash});
    std::size_t slot = hash & (slots_.size() - 1);
    for (; slots_[slot] != None; slot = (slot + 1) & (slots_.size() - 1)) {
        Entry& first = entries_[slots_[slot]];
        if (first.hash != hash || !isSame(first.word.units, word.units)) continue;
        // Behind the first one, so that the slot stays as it is.
        entries_[added].nextSame = std::exchange(first.nextSame, added);
        return;
    }
    slots_[slot] = added;
}

/// Units outside ASCII may fold to ASCII, as the long s does; so it is the folded units that count.
RunKey WordTable::keyOf(std::u16string_view run) const {
    return withWordFold(letterCase_, [&](const auto& fold) { return RunKey::of(run, fold); });
}

std::uint64_t WordTable::hashOf(std::u16string_view run, const RunKey& key) const {
    if (key.isWhole(run.size())) return hashOf(key);
    return withWordFold(letterCase_,
                        [&](const auto& fold) { return hashOfUnits(run, hashSeed(), fold); });
}

bool WordTable::isSame(std::u16string_view a, std::u16string_view b) const {
    return a.size() == b.size() && withWordFold(letterCase_, [&](const auto& fold) {
               return sameUnits(a.data(), b.data(), a.size(), fold);
           });
}

template <class IsSame>
std::uint32_t WordTable::firstOf(std::uint64_t hash, IsSame isSame) const {
    for (std::size_t slot = hash & (slots_.size() - 1);; slot = (slot + 1) & (slots_.size() - 1)) {
        const std::uint32_t first = slots_[slot];
        if (first == None || (entries_[first].hash == hash && isSame(entries_[first])))
            return first;
    }
}

std::uint32_t WordTable::firstOf(const RunKey& key, std::size_t length) const {
    return firstOf(hashOf(key), [&](const Entry& entry) {
        return entry.key == key && entry.word.units.size() == length;
    });
}

/// Of a run that is more than the key of its units says.
std::uint32_t WordTable::firstOf(std::u16string_view run) const {
    const RunKey key = keyOf(run);
    if (key.isWhole(run.size())) return firstOf(key, run.size());
    return firstOf(hashOf(run, key),
                   [&](const Entry& entry) { return isSame(entry.word.units, run); });
}

}  // namespace velmo::detail
