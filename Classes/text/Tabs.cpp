// Columns are counted in units from the last feed unit, modulo the width, so that no number grows
// with the text. Decoding goes into a new text, as tabs become longer; encoding is done in place,
// as what is written never passes what was read.
#include <velmocore/text/Tabs.h>

#include <algorithm>

#include <velmocore/text/CharacterSets.h>

namespace velmo {

void decodeTabs(std::u16string& text, std::size_t width) {
    if (width == 0 || text.find(u'\t') == std::u16string::npos) return;
    std::u16string out;
    out.reserve(text.size());
    std::size_t column = 0;  // modulo the width
    for (const char16_t unit : text) {
        if (unit == u'\t') {
            out.append(width - column, u' ');
            column = 0;
            continue;
        }
        out += unit;
        column = isFeedUnit(unit) || column + 1 == width ? 0 : column + 1;
    }
    text = std::move(out);
}

void encodeTabs(std::u16string& text, std::size_t width) {
    if (width == 0) return;
    const CharacterSetRep& spaces = spaceCharacterSetRep();
    char16_t* write = text.data();
    // A run becomes a tab only where it reaches the end of a column: the spaces behind the last
    // tab stop stay spaces, so that decoding gives back what was there.
    char16_t* run = nullptr;  // where the pending run of spaces begins in what was written
    std::size_t column = 0;   // modulo the width
    for (const char16_t unit : text) {
        const bool space = spaces.contains(unit);
        if (!space)
            run = nullptr;
        else if (!run)
            run = write;
        *write++ = unit;
        if (isFeedUnit(unit)) {
            column = 0;
            continue;
        }
        column = unit == u'\t' || column + 1 == width ? 0 : column + 1;
        if (column == 0 && run) {
            *run = u'\t';
            write = run + 1;
            run = nullptr;
        }
    }
    text.resize(static_cast<std::size_t>(write - text.data()));
}

}  // namespace velmo
