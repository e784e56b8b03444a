#include <velmocore/text/Editing.h>

#include <algorithm>

namespace velmo {

void appendSubstring(std::u16string& text, std::u16string_view string, Range range) {
    if (range.location < string.size()) text += string.substr(range.location, range.length);
}

void insertCharacter(std::u16string& text, char16_t unit, std::size_t index) {
    text.insert(std::min(index, text.size()), 1, unit);
}

void removeCharacterAtIndex(std::u16string& text, std::size_t index) {
    if (index < text.size()) text.erase(index, 1);
}

}  // namespace velmo
