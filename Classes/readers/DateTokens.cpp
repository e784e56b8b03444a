#include "readers/DateTokens.h"

#include <velmocore/text/CharacterSets.h>
#include <velmocore/text/ConversionTables.h>

#include "platform/Ascii.h"
#include "readers/DateFields.h"

namespace velmo::detail {
namespace {

constexpr std::size_t LongestNumber = 9, LongestWord = 16;
constexpr std::u16string_view Marks = u"-/.:,+'_\u2019";

bool isLetter(char16_t unit) {
    return unit < 128 ? ascii::isLetter(unit) : alphaCharacterSetRep().contains(unit);
}

char16_t fold(char16_t unit) {
    return unit < 128 ? ascii::toLower(unit) : lowerUmlautsCharsTable()[unit];
}

}  // namespace

bool DateTokens::cut(std::u16string_view text) {
    if (text.size() > LongestText) return false;
    text_ = text;
    while (at_ < text_.size()) {
        const char16_t unit = text_[at_];
        if (isBlank(unit)) {
            ++at_;
            continue;
        }
        if (count_ == Most) return false;
        if (!(ascii::isDigit(unit) ? addNumber() : isLetter(unit) ? addWord() : addMark()))
            return false;
    }
    return true;
}

DateToken& DateTokens::add(DateToken::Kind kind, std::size_t length) {
    DateToken& token = tokens_[count_];
    token.kind = kind;
    token.isGlued = count_ > 0 && tokens_[count_ - 1].end == at_;
    token.begin = at_;
    token.end = at_ += length;
    ++count_;
    return token;
}

bool DateTokens::addNumber() {
    DateCursor cursor(text_.substr(at_));
    const std::size_t digits = cursor.digitsHere();
    if (digits > LongestNumber) return false;
    DateToken& token = add(DateToken::Kind::Number, digits);
    token.digits = digits;
    token.value = cursor.number(digits, digits);
    return mayHaveZone_ = true;
}

/// The length of the word here, whose folded units are written as far as there is room.
std::size_t DateTokens::foldedWord(std::span<char16_t> folded) const {
    std::size_t length = 0;
    for (; at_ + length < text_.size() && isLetter(text_[at_ + length]); ++length)
        if (length < folded.size()) folded[length] = fold(text_[at_ + length]);
    return length;
}

bool DateTokens::addWord() {
    char16_t folded[LongestWord];
    std::size_t length = foldedWord(folded), known = length;
    if (length > LongestWord) return false;
    // a.m. and p.m. are one word.
    const std::u16string_view behind = text_.substr(at_ + length);
    if (length == 1 && (folded[0] == u'a' || folded[0] == u'p') && behind.size() > 1 &&
        behind[0] == u'.' && fold(behind[1]) == u'm' &&
        (behind.size() == 2 || !isLetter(behind[2]))) {
        folded[1] = u'm';
        known = 2;
        length = 3;
    }
    const auto meanings = meaningsOf({folded, known});
    if (meanings.empty() && !mayHaveZone_) return false;
    DateToken& token = add(DateToken::Kind::Word, length);
    token.meanings = meanings;
    mayHaveZone_ |= token.as(Meaning::NamedHour) != nullptr;
    return true;
}

bool DateTokens::addMark() {
    const char16_t unit = text_[at_];
    if (Marks.find(unit) == Marks.npos) return false;
    add(DateToken::Kind::Mark, 1).mark = unit;
    return true;
}

}  // namespace velmo::detail
