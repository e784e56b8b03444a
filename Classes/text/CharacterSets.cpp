// Sets are bitmaps of the whole 16-bit plane, 8 KB each: a test is one load and a shift, whatever
// script the unit is of. Each is made at first use, by a walk over Unicode's categories, so that
// no table of the library can disagree with the Unicode version of the system.
#include <velmocore/text/CharacterSets.h>

#include "platform/Unicode.h"

namespace velmo {
namespace {

CharacterSetRep setOfCategories(std::uint32_t categories) {
    CharacterSetRep set;
    for (unsigned unit = 0; unit < 65536; ++unit)
        if (detail::unicode::categoriesOf(static_cast<char16_t>(unit)) & categories)
            set.add(static_cast<char16_t>(unit));
    return set;
}

CharacterSetRep makeSpaceSet() {
    CharacterSetRep set = setOfCategories(detail::unicode::SpaceSeparator);
    set.add(u'\0');
    // Unicode has the tab among the controls.
    set.add(u'\t');
    return set;
}

CharacterSetRep makeWhiteSet() {
    CharacterSetRep set;
    for (unsigned unit = 0; unit < 65536; ++unit) {
        const auto c = static_cast<char16_t>(unit);
        // Feed units are not all white by Unicode: U+0003, U+FEFF and U+FFFC are white only here.
        if (detail::unicode::isWhiteSpaceOrNewline(c) || isFeedUnit(c)) set.add(c);
    }
    set.add(u'\0');
    return set;
}

}  // namespace

const CharacterSetRep& emptyCharacterSetRep() {
    static const CharacterSetRep set;
    return set;
}

const CharacterSetRep& spaceCharacterSetRep() {
    static const CharacterSetRep set = makeSpaceSet();
    return set;
}

const CharacterSetRep& whiteCharacterSetRep() {
    static const CharacterSetRep set = makeWhiteSet();
    return set;
}

const CharacterSetRep& alphaCharacterSetRep() {
    static const CharacterSetRep set =
        setOfCategories(detail::unicode::Letter | detail::unicode::Mark);
    return set;
}

const CharacterSetRep& alphaNumCharacterSetRep() {
    static const CharacterSetRep set =
        setOfCategories(detail::unicode::Letter | detail::unicode::Mark | detail::unicode::Number);
    return set;
}

const CharacterSetRep& digitCharacterSetRep() {
    static const CharacterSetRep set = setOfCategories(detail::unicode::DecimalDigit);
    return set;
}

const CharacterSetRep& lowerCharacterSetRep() {
    static const CharacterSetRep set = setOfCategories(detail::unicode::Lowercase);
    return set;
}

const CharacterSetRep& upperCharacterSetRep() {
    static const CharacterSetRep set = setOfCategories(detail::unicode::UppercaseOrTitle);
    return set;
}

}  // namespace velmo
