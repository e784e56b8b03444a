// One pass over the words of a text counts for all languages and scripts at once. What a word
// speaks for is settled by its first and last unit: Latin letters at both ends, with or without
// diacritics, make it a word for the lists, and letters of another script speak for that script
// without a look-up.
#include "words/LanguageTally.h"

#include "words/StopWordScan.h"

namespace velmo::detail {
namespace {

/// Blocks of the plane and not the script property: what counts is which alphabet a word is
/// written in.
Script scriptOf(char16_t unit) {
    const auto isIn = [=](char16_t first, char16_t last) { return unit >= first && unit <= last; };
    if (isIn(0x0400, 0x04FF)) return Script::Cyrillic;
    if (isIn(0x0600, 0x06FF) || isIn(0x0750, 0x077F)) return Script::Arabic;
    if (isIn(0x0590, 0x05FF)) return Script::Hebrew;
    if (isIn(0x0370, 0x03FF) || isIn(0x1F00, 0x1FFF)) return Script::Greek;
    return Script::Other;
}

}  // namespace

LanguageTally tallyOfText(std::u16string_view text, const StopWordIndex& index,
                          std::size_t numberOfLanguages, std::uint64_t minLen) {
    LanguageTally tally;
    tally.languages.resize(numberOfLanguages);
    const CharacterSetRep& letters = alphaCharacterSetRep();
    const ConversionTable& plain = lowerUmlautsCharsTable();
    const auto addStopWord = [&](StopWordIndex::Languages word) {
        for (std::uint32_t language : word) tally.languages[language].add(word);
    };
    StopWordScan scan(text, index, minLen, minLen);
    scan.run(addStopWord, [&](std::u16string_view word) {
        tally.all.add(word);
        const char16_t first = word.front(), last = word.back();
        // Left out of the words among which a script must have half, but not out of all.
        if (!letters.contains(first) || !letters.contains(last))
            tally.edgedByNonLetters.add(word);
        else if (plain[first] < 128 && plain[last] < 128)
            addStopWord(index.find(word));
        else
            tally.scripts[static_cast<std::size_t>(scriptOf(first))].add(word);
    });
    tally.all.add(scan.packed());
    return tally;
}

}  // namespace velmo::detail
