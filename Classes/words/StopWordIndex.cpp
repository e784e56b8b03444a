// Open addressing with linear probing. The tables never change once they are made and are at most
// half full, so that a probe is short and always ends at a free place. All words stand in one array
// of units, and the languages of all words in another: a look-up touches the filter and, if that
// lets it pass, a slot and, unless the slot holds the whole word, the word if the tag agrees.
#include "words/StopWordIndex.h"

#include <algorithm>
#include <bit>
#include <map>

#include <velmocore/text/Folding.h>

#include "platform/Ascii.h"
#include "text/UnitHash.h"
#include "words/PackedWord.h"

namespace velmo::detail {
namespace {

/// Words that a scan can give: the apostrophe and the full stop separate words.
bool isUsable(std::u16string_view word, std::size_t shortest) {
    return word.size() >= shortest && word.find_first_of(u"'.") == word.npos;
}

/// The upper half, as the lower bits choose the place.
std::uint32_t tagOf(std::uint64_t hash) { return static_cast<std::uint32_t>(hash >> 32); }

std::uint64_t hashOfPacked(std::uint64_t key) { return mixedHash(key, 0x9E3779B97F4A7C15); }

/// In bits of the filter, and bits: about one in ten of the words that no language has passes.
constexpr std::size_t FilterBitsForWord = 8, LeastFilterBits = 128;

}  // namespace

StopWordIndex::StopWordIndex(std::span<const std::vector<String>* const> lists, bool ignoreUmlauts,
                             std::size_t shortest)
    : fold_(ignoreUmlauts ? lowerUmlautsCharsTable() : lowerCharsTable()) {
    // Sorted, so that the words of each language come out in order; see wordsOf().
    std::map<String, std::vector<std::uint32_t>> languagesOfWords;
    for (std::uint32_t language = 0; language < lists.size(); ++language)
        for (const String& word : *lists[language]) {
            if (!isUsable(word, shortest)) continue;
            auto& languages = languagesOfWords[ignoreUmlauts ? nonUmlautedString(word) : word];
            // The lists are read one after the other: a word that stands twice in one finds its
            // own language last.
            if (languages.empty() || languages.back() != language) languages.push_back(language);
        }
    counts_.resize(lists.size());
    slots_.resize(std::bit_ceil(2 * languagesOfWords.size() + 1));
    packedSlots_.resize(slots_.size());
    const std::size_t bits =
        std::bit_ceil(std::max(LeastFilterBits, FilterBitsForWord * languagesOfWords.size()));
    filter_.resize(bits / 64);
    filterShift_ = 64 - static_cast<unsigned>(std::countr_zero(filter_.size()));
    for (const auto& [word, languages] : languagesOfWords) {
        words_.push_back({static_cast<std::uint32_t>(units_.size()),
                          static_cast<std::uint32_t>(word.length()),
                          static_cast<std::uint32_t>(languages_.size()),
                          static_cast<std::uint32_t>(languages.size())});
        units_.append(word.view());
        for (std::uint32_t language : languages) ++counts_[language];
        languages_.insert(languages_.end(), languages.begin(), languages.end());
        longest_ = std::max(longest_, word.length());
        place(static_cast<std::uint32_t>(words_.size()));
    }
}

void StopWordIndex::noteInFilter(std::uint64_t hash) {
    filter_[hash >> filterShift_] |= std::uint64_t{1} << (hash >> (filterShift_ - 6) & 63);
}

void StopWordIndex::place(std::uint32_t word) {
    const std::u16string_view text = textOf(words_[word - 1]);
    // A list may hold capitals, which no folded word has: such a word is never found.
    const auto isLower = [](char16_t unit) { return unit == ascii::toLower(unit); };
    if (const std::uint64_t key = packedWord(text); key && std::ranges::all_of(text, isLower)) {
        const std::uint64_t hash = hashOfPacked(key);
        std::size_t i = hash & (packedSlots_.size() - 1);
        while (packedSlots_[i].word) i = (i + 1) & (packedSlots_.size() - 1);
        packedSlots_[i] = {key, word};
        return noteInFilter(hash);
    }
    const std::uint64_t hash = detail::hashOfUnits(text);
    noteInFilter(hash);
    std::size_t i = hash & (slots_.size() - 1);
    while (slots_[i].word) i = (i + 1) & (slots_.size() - 1);
    slots_[i] = {tagOf(hash), word};
}

std::size_t StopWordIndex::find(std::u16string_view word) const {
    if (const std::uint64_t key = packedWord(word)) return findPacked(key);
    if (word.size() > MostPackedUnits) return findOther(word);
    // What is outside ASCII may be folded into it.
    char16_t folded[MostPackedUnits];
    std::ranges::transform(word, folded, [&](char16_t unit) { return fold_[unit]; });
    const std::uint64_t key = packedWord({folded, word.size()});
    return key ? findPacked(key) : findOther(word);
}

std::size_t StopWordIndex::findPacked(std::uint64_t key) const {
    const std::uint64_t hash = hashOfPacked(key);
    if (!mayHave(hash)) return NoWord;
    for (std::size_t i = hash & (packedSlots_.size() - 1);;
         i = (i + 1) & (packedSlots_.size() - 1)) {
        const PackedSlot slot = packedSlots_[i];
        if (slot.key == key) return slot.word - 1;
        if (!slot.word) return NoWord;
    }
}

std::size_t StopWordIndex::findOther(std::u16string_view word) const {
    // Spares the hash of units that run on without a separator, as in data.
    if (word.size() > longest_) return NoWord;
    // Without a seed: only the words of the lists stand in the table, and no text can add to it.
    const std::uint64_t hash =
        detail::hashOfUnits(word, 0, [&](char16_t unit) { return fold_[unit]; });
    if (!mayHave(hash)) return NoWord;
    for (std::size_t i = hash & (slots_.size() - 1);; i = (i + 1) & (slots_.size() - 1)) {
        const Slot slot = slots_[i];
        if (!slot.word) return NoWord;
        if (slot.tag == tagOf(hash) &&
            std::ranges::equal(word, textOf(words_[slot.word - 1]), {},
                               [&](char16_t unit) { return fold_[unit]; }))
            return slot.word - 1;
    }
}

std::vector<std::u16string_view> StopWordIndex::wordsOf(std::size_t language) const {
    std::vector<std::u16string_view> result;
    for (std::size_t i = 0; i < words_.size(); ++i)
        if (std::ranges::count(languagesOf(i), language)) result.push_back(textOf(words_[i]));
    return result;  // the words of all languages are in order already
}

}  // namespace velmo::detail
