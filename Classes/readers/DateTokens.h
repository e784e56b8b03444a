// A short text cut into numbers, words and marks.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "readers/DateWords.h"

namespace velmo::detail {

struct DateToken {
    enum class Kind : std::uint8_t { Number, Word, Mark };

    bool isNumber() const { return kind == Kind::Number; }
    /// A number of one or two digits.
    bool isShort() const { return isNumber() && digits <= 2; }
    bool isWord() const { return kind == Kind::Word; }
    bool isMark(char16_t unit) const { return kind == Kind::Mark && mark == unit; }
    /// One of several.
    bool isMarkOf(std::u16string_view units) const {
        return kind == Kind::Mark && units.find(mark) != units.npos;
    }
    /// What the word means in that sense; null if it has no such one.
    const DateWord* as(Meaning meaning) const {
        for (const DateWord& word : meanings)
            if (word.meaning == meaning) return &word;
        return nullptr;
    }

    Kind kind = Kind::Mark;
    bool isGlued = false;  ///< follows the one before without a blank
    char16_t mark = 0;
    int value = 0;           ///< of a number
    std::size_t digits = 0;  ///< of a number
    std::span<const DateWord> meanings = {};
    std::size_t begin = 0, end = 0;  ///< units of the text
};

/// The tokens of a text that may be a date.
class DateTokens {
public:
    static constexpr std::size_t LongestText = 100, Most = 32;

    /// False for a text that is no date for sure: too long, a unit that no date has, a number that
    /// is too long, or an unknown word before there is any time that a zone could follow.
    bool cut(std::u16string_view text);

    std::size_t size() const { return count_; }
    /// Whether a word with a meaning is Korean.
    bool isKorean() const { return isKorean_; }
    /// The token; behind the last one, a mark that is none.
    const DateToken& operator[](std::size_t index) const {
        return tokens_[index < count_ ? index : Most];
    }

private:
    bool addNumber();
    bool addWord();
    bool addCompound();
    bool addMark();
    DateToken& add(DateToken::Kind kind, std::size_t length);
    std::size_t foldedWord(std::span<char16_t> folded) const;

    std::u16string_view text_;
    std::size_t at_ = 0, count_ = 0;
    bool mayHaveZone_ = false;  // there is a number or a named hour
    bool isKorean_ = false;
    std::array<DateToken, Most + 1> tokens_;
};

}  // namespace velmo::detail
