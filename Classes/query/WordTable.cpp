// Short words, and nearly all are, are hashed as one or two packs of eight bytes, which takes a few
// steps for units of ASCII. Words that a fold makes equal must have the same hash, also those with a
// unit outside ASCII that folds into it; so what packs is the folded word.
#include "query/WordTable.h"

#include <algorithm>
#include <bit>
#include <optional>
#include <utility>

#include "text/UnitFold.h"
#include "text/UnitHash.h"
#include "text/UnitScan.h"

namespace velmo::detail {
namespace {

constexpr std::size_t PackSize = 8;
constexpr unsigned PresentBitsPerWord = 32;

/// Up to eight units as bytes, zeros behind them; absent if one of them folds to no ASCII.
template <class Fold>
std::optional<std::uint64_t> packedOneByOne(const char16_t* units, std::size_t count,
                                            const Fold& fold) {
    std::uint64_t pack = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const char16_t unit = fold(units[i]);
        if (unit > 127) return std::nullopt;
        pack |= static_cast<std::uint64_t>(unit) << 8 * i;
    }
    return pack;
}

#if defined(__SSE2__)

/// The same of units of ASCII, eight of which can be read; absent if one of them is of no ASCII.
template <class Fold>
std::optional<std::uint64_t> packedAtOnce(const char16_t* units, std::size_t count) {
    __m128i block = scan::loadBlock(units);
    if (_mm_movemask_epi8(scan::aboveAscii(block)) & ((1 << 2 * count) - 1)) return std::nullopt;
    if constexpr (Fold::changesCase) {
        const __m128i lower = scan::inRange(block, u'a', u'z');
        block = _mm_sub_epi16(block, _mm_and_si128(lower, _mm_set1_epi16('a' - 'A')));
    }
    const auto pack = static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_packus_epi16(block, block)));
    return pack & ~std::uint64_t{0} >> 8 * (PackSize - count);
}

#endif

template <class Fold>
std::optional<std::uint64_t> packed(std::u16string_view text, std::size_t count, const Fold& fold) {
#if defined(__SSE2__)
    if (text.size() >= PackSize)
        if (const auto pack = packedAtOnce<Fold>(text.data(), count)) return pack;
#endif
    return packedOneByOne(text.data(), count, fold);
}

/// Of up to 16 units the first and the last eight, which may be partly the same.
template <class Fold>
std::uint64_t hashOfFolded(std::u16string_view text, std::size_t length, std::uint64_t seed,
                           const Fold& fold) {
    constexpr std::uint64_t Odd = 0x9E3779B97F4A7C15;
    if (length <= PackSize) {
        if (const auto pack = packed(text, length, fold)) return mixedHash(*pack ^ seed, Odd);
    } else if (length <= 2 * PackSize) {
        const auto first = packed(text, PackSize, fold);
        const auto last = packed(text.substr(length - PackSize), PackSize, fold);
        if (first && last) return mixedHash(mixedHash(*first ^ seed, Odd) ^ *last, Odd + length);
    }
    return hashOfUnits(text.substr(0, length), seed, fold);
}

/// Calls the function with the fold by which words are compared.
template <class Function>
auto withWordFold(Case letterCase, Function function) {
    return letterCase == Case::Sensitive ? function(NoFold{}) : function(UpperFold{});
}

}  // namespace

WordTable::WordTable(const std::vector<Word>& words, Case letterCase)
    : letterCase_(letterCase),
      seed_(hashSeed()),
      slots_(std::bit_ceil(2 * words.size() + 2), None),
      present_(std::bit_ceil(PresentBitsPerWord * words.size() + 64) / 64),
      presentShift_(64 - static_cast<unsigned>(std::countr_zero(64 * present_.size()))) {
    entries_.reserve(words.size());
    for (const Word& word : words) insert(word);
}

std::uint64_t WordTable::hashOf(std::u16string_view text, std::size_t length) const {
    return withWordFold(letterCase_,
                        [&](const auto& fold) { return hashOfFolded(text, length, seed_, fold); });
}

bool WordTable::isSame(std::u16string_view a, std::u16string_view b) const {
    return a.size() == b.size() && withWordFold(letterCase_, [&](const auto& fold) {
               return sameUnits(a.data(), b.data(), a.size(), fold);
           });
}

void WordTable::insert(const Word& word) {
    lengths_ |= std::uint64_t{1} << std::min<std::size_t>(word.units.size(), OtherLengths);
    longest_ = std::max(longest_, word.units.size());
    const std::uint64_t hash = hashOf(word.units, word.units.size());
    present_[hash >> presentShift_ >> 6] |= std::uint64_t{1} << (hash >> presentShift_ & 63);
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

std::uint32_t WordTable::firstOf(std::u16string_view run, std::uint64_t hash) const {
    for (std::size_t slot = hash & (slots_.size() - 1);; slot = (slot + 1) & (slots_.size() - 1)) {
        const std::uint32_t first = slots_[slot];
        if (first == None) return None;
        const Entry& entry = entries_[first];
        if (entry.hash == hash && isSame(entry.word.units, run)) return first;
    }
}

}  // namespace velmo::detail
