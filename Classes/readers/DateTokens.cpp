// Cutting ends where it is clear that a text is no date, so that running text costs its first words
// only, as most of what is asked about is none. Words are folded as they are cut, in a buffer
// as long as the longest word that dates know.
#include "readers/DateTokens.h"

#include <velmocore/text/CharacterSets.h>
#include <velmocore/text/ConversionTables.h>

#include "platform/Ascii.h"
#include "readers/DateFields.h"

namespace velmo::detail {
namespace {

constexpr std::size_t LongestNumber = 9, LongestWord = 16;
constexpr std::u16string_view Marks = u"-/.:,+'_@\u2019";

bool isLetter(char16_t unit) {
    return unit < 128 ? ascii::isLetter(unit) : alphaCharacterSetRep().contains(unit);
}

char16_t fold(char16_t unit) {
    return unit < 128 ? ascii::toLower(unit) : lowerUmlautsCharsTable()[unit];
}

constexpr bool isHangul(char16_t unit) { return unit >= 0xAC00 && unit <= 0xD7A3; }

/// Whether a word of the text ends where the other, which is folded, does.
bool beginsWithFolded(std::u16string_view text, std::u16string_view folded) {
    if (text.size() < folded.size()) return false;
    for (std::size_t i = 0; i < folded.size(); ++i)
        if (fold(text[i]) != folded[i]) return false;
    return text.size() == folded.size() || !isLetter(text[folded.size()]);
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
    const std::size_t length = foldedWord(folded);
    if (length > LongestWord) return false;
    if (length == 1 && addCompound()) return true;
    const auto meanings = meaningsOf({folded, length});
    // An unknown word may be a zone, and zones stand behind times.
    if (meanings.empty() && !mayHaveZone_) return false;
    DateToken& token = add(DateToken::Kind::Word, length);
    token.meanings = meanings;
    mayHaveZone_ |= token.as(Meaning::NamedHour) != nullptr;
    isKorean_ |= !meanings.empty() && isHangul(folded[0]);
    return true;
}

/// Words with a mark in them become the word that means the same.
bool DateTokens::addCompound() {
    static constexpr struct {
        std::u16string_view written, word;
    } Compounds[] = {
        {u"a.m", u"am"},
        {u"p.m", u"pm"},
        {u"o'clock", u"h"},
        {u"o\u2019clock", u"h"},
    };
    for (const auto& [written, word] : Compounds) {
        if (!beginsWithFolded(text_.substr(at_), written)) continue;
        add(DateToken::Kind::Word, written.size()).meanings = meaningsOf(word);
        return true;
    }
    return false;
}

bool DateTokens::addMark() {
    const char16_t unit = text_[at_];
    if (Marks.find(unit) == Marks.npos) return false;
    add(DateToken::Kind::Mark, 1).mark = unit;
    return true;
}

}  // namespace velmo::detail
