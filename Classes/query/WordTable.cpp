#include "query/WordTable.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "platform/UnitHash.h"
#include "text/UnitFold.h"

namespace velmo::detail {
namespace {

/// So many that few runs find another word's bit.
constexpr std::size_t BitsPerWord = 32;

/// Calls the function with the fold by which words are compared.
template <class Function>
auto withWordFold(Case letterCase, Function function) {
    return letterCase == Case::Sensitive ? function(NoFold{}) : function(UpperFold{});
}

}  // namespace

WordTable::WordTable(const std::vector<Word>& words, Case letterCase)
    : letterCase_(letterCase),
      slots_(std::bit_ceil(2 * words.size() + 2), None),
      ends_(std::bit_ceil(BitsPerWord * words.size() + 64) / 64),
      shift_(64 - static_cast<unsigned>(std::countr_zero(64 * ends_.size()))) {
    entries_.reserve(words.size());
    for (const Word& word : words) insert(word);
}

void WordTable::insert(const Word& word) {
    longest_ = std::max(longest_, word.units.size());
    insertEnds(word.units);
    const std::uint64_t hash = hashOf(word.units);
    const auto added = static_cast<std::uint32_t>(entries_.size());
    entries_.push_back({word, hash});
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

/// What folds to others than ASCII is found by no bit, but units that do not may fold to ASCII, as
/// the long s does; and so it is the folded word that counts.
void WordTable::insertEnds(std::u16string_view word) {
    std::u16string folded(word);
    if (letterCase_ == Case::Insensitive)
        for (char16_t& unit : folded) unit = upperCharsTable()[unit];
    folded.resize(std::max(word.size(), PackSize));
    const Ends ends = {packOf(folded.data()), packOf(folded.data() + folded.size() - PackSize)};
    const std::uint64_t bit = bitOf(ends, word.size());
    ends_[bit / 64] |= std::uint64_t{1} << bit % 64;
}

std::uint64_t WordTable::hashOf(std::u16string_view run) const {
    return withWordFold(letterCase_,
                        [&](const auto& fold) { return hashOfUnits(run, hashSeed(), fold); });
}

bool WordTable::isSame(std::u16string_view a, std::u16string_view b) const {
    return a.size() == b.size() && withWordFold(letterCase_, [&](const auto& fold) {
               return sameUnits(a.data(), b.data(), a.size(), fold);
           });
}

std::uint32_t WordTable::firstOf(std::u16string_view run) const {
    const std::uint64_t hash = hashOf(run);
    for (std::size_t slot = hash & (slots_.size() - 1);; slot = (slot + 1) & (slots_.size() - 1)) {
        const std::uint32_t first = slots_[slot];
        if (first == None) return None;
        const Entry& entry = entries_[first];
        if (entry.hash == hash && isSame(entry.word.units, run)) return first;
    }
}

}  // namespace velmo::detail
