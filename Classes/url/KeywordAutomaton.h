// Finds out in one walk over a text which of many lists have a keyword in it, by the method
// of Aho and Corasick: the time does not depend on the number of keywords.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include <velmocore/text/ConversionTables.h>

namespace velmo::detail {

/// One bit for each list.
using KeywordMarks = std::uint32_t;

struct KeywordList {
    KeywordMarks mark;
    std::span<const std::string_view> keywords;
};

/// Immutable once made, so any thread may use it.
class KeywordAutomaton {
public:
    /// Keywords are ASCII. One with a capital occurs in no text, and neither does an empty
    /// one. All of them together have fewer than 65536 units.
    explicit KeywordAutomaton(std::span<const KeywordList> lists);

    /// The marks of all lists that have a keyword in the text, folded to lower case.
    KeywordMarks marksIn(std::u16string_view text) const noexcept {
        KeywordMarks marks = 0;
        std::size_t state = 0;
        for (char16_t unit : text) {
            state = next_[(state << RowBits) + classOf(unit)];
            if (state >= firstMarked_) marks |= marks_[state - firstMarked_];
        }
        return marks;
    }

private:
    class Builder;
    using State = std::uint16_t;

    /// The rows of the table of next states have a fixed width: more than 64 different
    /// units are in no list of keywords that are folded to lower case.
    static constexpr unsigned RowBits = 6;

    std::uint8_t classOf(char16_t unit) const noexcept {
        if (unit >= 128) unit = lowerCharsTable()[unit];
        return unit < 128 ? classes_[unit] : 0;
    }

    std::uint8_t classes_[128] = {};  ///< of folded units; 0 is all that no keyword has
    std::vector<State> next_;
    std::vector<KeywordMarks> marks_;  ///< of the states from firstMarked_ on
    std::size_t firstMarked_ = 0;
};

}  // namespace velmo::detail
