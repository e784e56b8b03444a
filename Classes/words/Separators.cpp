// Word separators are listed units and units of certain Unicode categories. The list settles the
// units that it names whatever their category is; the categories settle all others, so that the
// punctuation of scripts which nobody listed parts words too.
#include <velmocore/words/Separators.h>

#include <iterator>

#include "platform/Unicode.h"

namespace velmo {
namespace {

/// Units that part words, whatever their category says.
constexpr char16_t ListedWordSeparators[] = {
    0x0020, 0x002C, 0x002E, 0x003B, 0x003A, 0x0027, 0x0022, 0x0021, 0x003F, 0x0028, 0x0029,
    0x003D, 0x002F, 0x005C, 0x002A, 0x002B, 0x002D, 0x005F, 0x0025, 0x2030, 0x0026, 0x007B,
    0x007D, 0x005B, 0x005D, 0x007C, 0x003C, 0x003E, 0x0023, 0x0040, 0x005E, 0x00B4, 0x0060,
    0x2018, 0x2019, 0x201A, 0x201C, 0x201D, 0x00A8, 0x201E, 0x00A7, 0x00AB, 0x00BB, 0x00A9,
    0x00AE, 0x2039, 0x203A, 0x00B1, 0x2014, 0x02C6, 0x2122, 0x00BD, 0x00BC, 0x00B9, 0x00B2,
    0x00B3, 0x00B0, 0x00A6, 0x007E, 0xFFFD, 0x00A4, 0x000C, 0x00A0, 0x000A, 0x000D, 0x2028,
    0x2029, 0x0003, 0xFFFC, 0x0009, 0xFEFF, 0x2013, 0x0000,
};
static_assert(std::size(ListedWordSeparators) == 73);

constexpr std::uint32_t SeparatingCategories = detail::unicode::Punctuation |
                                               detail::unicode::Unassigned |
                                               detail::unicode::Control | detail::unicode::Symbol;

CharacterSetRep makeWordSeparators() {
    CharacterSetRep set;
    for (char16_t unit : ListedWordSeparators) set.add(unit);
    // Surrogates, and a stretch of private use. The last unit of either block is left out.
    for (unsigned unit = 0xD800; unit < 0xDFFF; ++unit) set.add(static_cast<char16_t>(unit));
    for (unsigned unit = 0xF400; unit < 0xF8FF; ++unit) set.add(static_cast<char16_t>(unit));
    for (unsigned unit = 0; unit < 0xFFFF; ++unit) {
        const auto c = static_cast<char16_t>(unit);
        if ((detail::unicode::categoriesOf(c) & SeparatingCategories) ||
            detail::unicode::isWhiteSpaceOrNewline(c))
            set.add(c);
    }
    return set;
}

CharacterSetRep makeComponentSeparators() {
    CharacterSetRep set;
    set.add(u".,:;!?\n\r\f\uFFFC\uFEFF\u2029\u2028\x03");
    return set;
}

CharacterSetRep makeSentenceSeparators() {
    CharacterSetRep set = defaultComponentSeparators();
    for (char16_t unit : {u',', u';'}) set.remove(unit);
    return set;
}

CharacterSetRep makeLineSeparators() {
    CharacterSetRep set;
    set.add(u"\r\n\f\u2029\u2028\x03\uFFFC");
    return set;
}

}  // namespace

const CharacterSetRep& defaultWordSeparators() {
    static const CharacterSetRep set = makeWordSeparators();
    return set;
}

const CharacterSetRep& defaultComponentSeparators() {
    static const CharacterSetRep set = makeComponentSeparators();
    return set;
}

const CharacterSetRep& defaultSentenceSeparators() {
    static const CharacterSetRep set = makeSentenceSeparators();
    return set;
}

const CharacterSetRep& defaultLineSeparators() {
    static const CharacterSetRep set = makeLineSeparators();
    return set;
}

void initSeparators() {
    (void)defaultWordSeparators();
    (void)defaultComponentSeparators();
    (void)defaultLineSeparators();
}

}  // namespace velmo
