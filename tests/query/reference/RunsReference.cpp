#include "query/reference/RunsReference.h"

namespace velmo::test {
namespace {

bool isHigh(char16_t c) { return c >= 0xD800 && c < 0xDC00; }
bool isLow(char16_t c) { return c >= 0xDC00 && c < 0xE000; }
bool isHan(char16_t c) { return c >= 0x4E00 && c < 0xA000; }
bool isKana(char16_t c) { return c >= 0x3041 && c < 0x3100; }
bool isThai(char16_t c) { return c >= 0x0E01 && c < 0x0E5C; }
bool isMark(char16_t c) { return c == 0x0301 || c == 0x0E35; }
bool isSpaced(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') || c == 0xE4 || c == 0xC4;
}

}  // namespace

bool RefWords::isPair(std::size_t i) const { return i > 0 && i < text.size() && isHigh(text[i - 1]) && isLow(text[i]); }

bool RefWords::isTerm(std::size_t i) const {
    const char16_t c = text[i];
    const bool isHanPair = withinRuns && ((isPair(i) && text[i - 1] == 0xD842) || (isPair(i + 1) && c == 0xD842));
    return isSpaced(c) || isHan(c) || isKana(c) || isThai(c) || isMark(c) || isHanPair;
}

bool RefWords::isApart(std::size_t i) const {
    const auto isUnspaced = [](char16_t c) { return isHan(c) || isKana(c) || isThai(c) || isLow(c) || c == 0xD842; };
    if (!withinRuns || i == 0 || i >= text.size() || isPair(i) || isMark(text[i])) return false;
    return isUnspaced(text[i - 1]) || isUnspaced(text[i]);
}

bool RefWords::goesOn(std::size_t i, std::size_t neighbour) const {
    return (isTerm(neighbour) || (withinRuns && isPair(i))) && !isApart(i);
}

RefScripts::RefScripts(std::mt19937& random) {
    // Of one unit, with a mark, with a pair of Han and with one of no script.
    static constexpr std::u16string_view Letters[] = {
        u"\u6771", u"\u4EAC", u"\u306E", u"\u6771\u4EAC", u"\u0E17\u0E35", u"\u0E17", u"\U00020BB7",
        u"a",      u"b",      u"xy",     u"e\u0301",      u"\U0001F600",   u"\u6771", u"\u4EAC"};
    static constexpr std::u16string_view Stops[] = {u".", u"\u3002", u"\uFF01", u"\u3001"};
    for (std::u16string_view& letter : letters_) letter = Letters[random() % std::size(Letters)];
    stop_ = Stops[random() % std::size(Stops)];
}

std::u16string RefScripts::operator()(std::u16string_view text) const {
    std::u16string result;
    for (const char16_t c : text) {
        const std::size_t letter = std::u16string_view(u"abcx").find(c);
        if (letter != std::u16string_view::npos)
            result += letters_[letter];
        else if (c == u'.')
            result += stop_;
        else
            result += c;
    }
    return result;
}

std::u16string refMasked(std::u16string_view wildcard) {
    std::u16string masked(wildcard);
    for (std::size_t i = 0; i + 1 < masked.size(); ++i)
        if (masked[i] == 0xD842 && isLow(masked[i + 1])) masked[i] = masked[i + 1] = u'q';
    return masked;
}

}  // namespace velmo::test
