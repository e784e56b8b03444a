#pragma once

#include <initializer_list>
#include <span>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

// Strings out of small parts, and their ends.
//
//     stringWithComponents({u"com", u"example", u"reader"});   // com.example.reader

/// A string of one unit, U+0000 included.
VELMO_API String stringWithCharacter(char16_t unit);

/// The strings with full stops between them. They end at the first absent one; the result
/// is absent if there is none before it.
VELMO_API String stringWithComponents(std::span<const String> components);
inline String stringWithComponents(std::initializer_list<String> components) {
    return stringWithComponents(std::span<const String>(components.begin(), components.size()));
}

/// True for an absent string too.
inline bool isStringEmpty(std::u16string_view string) noexcept { return string.empty(); }
/// False for an absent string too.
inline bool isStringNotEmpty(std::u16string_view string) noexcept { return !string.empty(); }

/// The first unit, 0 if the string is empty.
inline char16_t firstCharacter(std::u16string_view string) noexcept {
    return string.empty() ? u'\0' : string.front();
}
/// The last unit, 0 if the string is empty.
inline char16_t lastCharacter(std::u16string_view string) noexcept {
    return string.empty() ? u'\0' : string.back();
}

}  // namespace velmo
