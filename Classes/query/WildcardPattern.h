// A wildcard for one word, made ready for a search: folded, compacted, classified, and with
// what tells a word from most others at a glance. It is made once a search; looking at a
// word allocates nothing, unless one is very long.
#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include <velmocore/platform/Matching.h>
#include <velmocore/platform/Range.h>
#include <velmocore/query/Wildcards.h>
#include <velmocore/text/CharacterSets.h>
#include <velmocore/text/ConversionTables.h>

#include "text/PatternScan.h"
#include "text/SmallBuffer.h"
#include "words/WordText.h"

namespace velmo::detail {

/// Which word of a stretch is looked for.
struct WordChoice {
    Direction direction = Direction::Forward;  // the last and not the first that matches
    bool anchored = false;                     // only the first, or last, word of all is looked at
};

/// Two units of a pattern that stand at fixed places in it, by which a text is searched.
struct PatternAnchors {
    enum Place : std::uint8_t {
        Nowhere,  // there are none
        AtStart,  // they are counted from the start of the word,
        AtEnd,    // from its end less the length,
        Inside,   // or the elements that hold them may stand anywhere in it
    };
    Place place = Nowhere;
    std::size_t length = 0;  // of the elements that hold them
    Anchor first = {}, second = {};
};

class WildcardPattern {
public:
    WildcardPattern(std::u16string_view wildcard, WildcardComparison comparison,
                    std::uint64_t minCharacters);

    WildcardType type() const { return type_; }
    bool isLoneStar() const { return core() == u"*"; }
    /// Whether the candidate is compared from the start of a word on, as it stands, and not
    /// word by word. Only such a pattern can find what holds units that are no term units.
    bool isDirect() const { return isDirect_; }
    /// Whether it can find nothing but whole words, of which no two overlap, all the same.
    bool findsWords(const WordText& text) const;
    /// The same of several words side by side.
    bool findsApart(const WordText& text) const;

    /// The word in a stretch of the text that matches, or no range. If the stretch begins
    /// inside a word, its rest is not looked at; backwards, the word at the very end is not.
    Range find(const WordText& text, std::uint64_t start, std::uint64_t end,
               WordChoice choice = {}) const;
    /// What is found at the very end of a stretch, if anything. Only there it may be a word
    /// that the stretch cuts off.
    Range findAtEnd(const WordText& text, std::uint64_t start, std::uint64_t end) const;

private:
    template <class Fold>
    friend struct PatternTest;
    template <class Fold>
    friend struct PatternSearch;

    std::u16string_view core() const { return {units_.data() + core_.location, core_.length}; }
    /// Whether it may find several words in a row, by the characters between its stars.
    bool findsSpans(const WordText& text) const;
    void chooseEdge();
    void measureFuzzyLengths();

    SmallBuffer<char16_t> units_;  // folded and compacted
    Range core_;
    const ConversionTable* table_;
    WildcardType type_;
    bool isDirect_;
    bool hasOpenRange_ = false;
    std::uint64_t minLength_ = 0, maxLength_ = 0;  // of words that are compared at all
    // The unit that a word must have at its start, or its end, if the mask is not 0.
    char16_t edgeUnit_ = 0, edgeMask_ = 0;
    bool edgeIsEnd_ = false;
    double minAnalogy_ = 0;      // of a fuzzy pattern,
    std::bitset<256> lowBytes_;  // and the low bytes of its units
    PatternAnchors anchors_;
};

}  // namespace velmo::detail
