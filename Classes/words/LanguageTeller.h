// How LanguageRules tell a language.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include <velmocore/platform/String.h>
#include <velmocore/words/LanguageRules.h>

#include "words/LanguageTally.h"
#include "words/StopWordIndex.h"

namespace velmo::detail {

/// The answer for a text.
struct ToldLanguage {
    String key;  ///< absent if it is not clear
    std::u16string_view
        form;  ///< of writing: "Hans", "Hant" or "Latn", where a language has several
};

/// Made once for the languages of a filter, and constant from then on.
class LanguageTeller {
public:
    LanguageTeller(LanguageRules rules, std::span<const String> keys, const StopWordIndex& index);

    /// Words of less units than minLen are not looked up.
    ToldLanguage tell(std::u16string_view text, std::uint64_t minLen) const;

private:
    struct Hits;
    struct Signs;

    void addAlphabets();
    void addSign(char16_t letter);
    Signs read(std::u16string_view text, std::uint64_t minLen) const;
    static void addWord(StopWordIndex::Languages word, Signs& signs);
    void readUnits(std::u16string_view word, Signs& signs) const;
    std::size_t mainScript(const Signs& signs) const;
    std::vector<std::int64_t> points(const Signs& signs) const;
    String leader(const Signs& signs) const;

    const LanguageRules rules_;
    const std::span<const String> keys_;
    const StopWordIndex& index_;
    std::array<std::uint8_t, 4096> scripts_{};  ///< by sixteen units: a script, 0 if it is none
    std::vector<std::uint16_t> signOf_;         ///< by unit: what is counted of it, 0 for nothing
    std::vector<bool> isSibling_;               ///< by language: needs more than others
    /// By sign: what it counts for or against each language.
    std::vector<std::vector<std::int8_t>> letterPoints_;
};

}  // namespace velmo::detail
