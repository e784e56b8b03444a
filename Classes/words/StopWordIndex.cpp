// Open addressing with linear probing. The tables never change once they are made and are at most
// half full, so that a probe is short and always ends at a free place. All words stand in one array
// of units, and the languages of all words in another: a look-up touches the filter and, if that
// lets it pass, a slot and, unless the slot holds the whole word, the word if the tag agrees.
// The place where the languages of a word stand tells it from all others.
#include "words/StopWordIndex.h"

#include <algorithm>
#include <bit>
#include <map>

#include <velmocore/text/Folding.h>

#include "platform/Ascii.h"
#include "text/SmallBuffer.h"

namespace velmo::detail {
namespace {

/// Words that a scan can give: the apostrophe and the full stop separate words.
bool isUsable(std::u16string_view word, std::size_t shortest) {
    return word.size() >= shortest && word.find_first_of(u"'.") == word.npos;
}

/// The upper half chooses the place, as the filter takes the lower bits.
std::uint32_t tagOf(std::uint64_t hash) { return static_cast<std::uint32_t>(hash); }

/// The number of a word of the lists. These may hold capitals, which no folded word has: such a word
/// is never found.
PackedReading numberOf(std::u16string_view word) {
    const auto isLower = [](char16_t unit) { return unit == ascii::toLower(unit); };
    return std::ranges::all_of(word, isLower) ? packedWord(word) : PackedReading();
}

std::size_t sizeOfTable(std::size_t words) { return std::bit_ceil(2 * words + 1); }

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
    const auto packed = static_cast<std::size_t>(std::ranges::count_if(
        languagesOfWords, [](const auto& word) { return numberOf(word.first).hasNumber; }));
    packedSlots_.resize(sizeOfTable(packed));
    slots_.resize(sizeOfTable(languagesOfWords.size() - packed));
    const std::size_t bits =
        std::bit_ceil(std::max(LeastFilterBits, FilterBitsForWord * languagesOfWords.size()));
    filterBits_.resize(bits / 64);
    filter_ = Filter(filterBits_.data(), filterBits_.size());
    for (const auto& [word, languages] : languagesOfWords) {
        const auto stretch = [](std::size_t start, std::size_t length) {
            return Stretch{static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(length)};
        };
        words_.push_back(
            {stretch(units_.size(), word.length()), stretch(languages_.size(), languages.size())});
        units_.append(word.view());
        for (std::uint32_t language : languages) ++counts_[language];
        languages_.insert(languages_.end(), languages.begin(), languages.end());
        longest_ = std::max(longest_, word.length());
        place(static_cast<std::uint32_t>(words_.size()));
    }
}

void StopWordIndex::place(std::uint32_t word) {
    const std::u16string_view text = textOf(words_[word - 1]);
    if (const auto [packed, hasNumber] = numberOf(text); hasNumber) {
        const std::uint64_t hash = hashOf(packed);
        std::size_t i = placeOf(hash);
        while (packedSlots_[i].languages.length) i = (i + 1) & (packedSlots_.size() - 1);
        packedSlots_[i] = {packed, words_[word - 1].languages};
        return filter_.add(hash);
    }
    const std::uint64_t hash = hashOfUnits(text);
    filter_.add(hash);
    std::size_t i = hash >> 32 & (slots_.size() - 1);
    while (slots_[i].word) i = (i + 1) & (slots_.size() - 1);
    slots_[i] = {tagOf(hash), word};
}

StopWordIndex::Languages StopWordIndex::find(std::u16string_view word) const {
    // Spares the hash of units that run on without a separator, as in data.
    if (word.size() > longest_) return {};
    SmallBuffer<char16_t, 64> folded(word.size());
    char16_t all = 0;
    for (std::size_t i = 0; i < word.size(); ++i) all |= folded[i] = fold_[word[i]];
    const std::u16string_view units(folded.data(), word.size());
    // What is outside ASCII may be folded into it.
    if (all < 128)
        if (const auto [packed, hasNumber] = packedWord(units); hasNumber) {
            const std::uint64_t hash = hashOf(packed);
            return filter_.mayHave(hash) ? findPacked(packed, hash) : Languages();
        }
    return findFolded(units);
}

StopWordIndex::Languages StopWordIndex::findFolded(std::u16string_view word) const {
    // Without a seed: only the words of the lists stand in the table, and no text can add to it.
    const std::uint64_t hash = hashOfUnits(word);
    if (!filter_.mayHave(hash)) return {};
    for (std::size_t i = hash >> 32 & (slots_.size() - 1);; i = (i + 1) & (slots_.size() - 1)) {
        const Slot slot = slots_[i];
        if (!slot.word) return {};
        const Word& other = words_[slot.word - 1];
        if (slot.tag == tagOf(hash) && word == textOf(other)) return languagesOf(other.languages);
    }
}

std::vector<std::u16string_view> StopWordIndex::wordsOf(std::size_t language) const {
    std::vector<std::u16string_view> result;
    for (std::size_t i = 0; i < words_.size(); ++i)
        if (std::ranges::count(languagesOf(words_[i].languages), language))
            result.push_back(textOf(words_[i]));
    return result;  // the words of all languages are in order already
}

}  // namespace velmo::detail
