// One pass over the words of a text counts for all languages and scripts at once. What a word
// speaks for is settled by its first and last unit: Latin letters at both ends, with or without
// diacritics, make it a word for the lists, and letters of another script speak for that script
// without a look-up.
#include "words/LanguageTally.h"

#include <velmocore/words/Separators.h>

#include "platform/Ascii.h"
#include "words/RunScan.h"

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
    forEachRun(text, defaultWordSeparators(), [&](const Run& run) {
        if (run.isMember || run.length() < minLen) return true;
        const std::u16string_view word = text.substr(run.start, run.length());
        tally.all.add(word);
        const bool isPlain = ascii::isLetter(word.front()) && ascii::isLetter(word.back());
        // Left out of the words among which a script must have half, but not out of all.
        if (!isPlain && (!letters.contains(word.front()) || !letters.contains(word.back()))) {
            tally.edgedByNonLetters.add(word);
        } else if (isPlain || (plain[word.front()] < 128 && plain[word.back()] < 128)) {
            const std::size_t found = index.find(word);
            if (found != StopWordIndex::NoWord)
                for (std::uint32_t language : index.languagesOf(found))
                    tally.languages[language].add(found);
        } else {
            tally.scripts[static_cast<std::size_t>(scriptOf(word.front()))].add(word);
        }
        return true;
    });
    return tally;
}

}  // namespace velmo::detail
