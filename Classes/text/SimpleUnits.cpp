// Which units are characters by themselves, in any text: they combine with nothing beside them and
// no normalisation changes them. Made once, by asking ICU for each unit, and kept as a set, so
// that a search settles with one pass whether it may compare units.
#include "text/SimpleUnits.h"

#include <algorithm>

#include "platform/Surrogates.h"
#include "platform/Unicode.h"
#include "text/UnitScan.h"

namespace velmo::detail {
namespace {

/// Below this all units are simple.
constexpr char16_t FirstMark = 0x300;

/// The consonants and vowels that Korean syllables are made of.
bool isJamo(char16_t unit) { return unit >= 0x1100 && unit <= 0x11FF; }

bool isSimple(char16_t unit) {
    if (unit < FirstMark) return true;
    if (isSurrogate(unit) || isJamo(unit) || (unicode::categoriesOf(unit) & unicode::Mark))
        return false;
    const std::u16string_view text(&unit, 1);
    return unicode::normalized(text, unicode::Form::C) == text;
}

}  // namespace

const CharacterSetRep& simpleUnits() {
    static const CharacterSetRep& set = [&]() -> const CharacterSetRep& {
        auto* const made = new CharacterSetRep;
        for (unsigned unit = 0; unit < 65536; ++unit)
            if (isSimple(static_cast<char16_t>(unit))) made->add(static_cast<char16_t>(unit));
        return *made;
    }();
    return set;
}

bool areSimpleUnits(std::u16string_view text) {
    const char16_t* from = text.data();
    const char16_t* const to = from + text.size();
#if defined(__SSE2__)
    from = scan::findWhere(
        from, to, [](__m128i block) { return scan::inRange(block, FirstMark, 0xFFFF); },
        [](char16_t unit) { return unit >= FirstMark; });
#endif
    // Text below the marks ends here, and the set is not even made for it.
    if (from == to) return true;
    const CharacterSetRep& simple = simpleUnits();
    return std::all_of(from, to, [&](char16_t unit) { return simple.contains(unit); });
}

}  // namespace velmo::detail
