#pragma once

#include <initializer_list>
#include <span>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

// Strings out of small parts, and their ends. Any thread may call these.
//
//     stringWithComponents({u"com", u"example", u"reader"});   // com.example.reader

/// A string of one unit, U+0000 included.
[[nodiscard]] VELMO_API String stringWithCharacter(char16_t unit);

/// The strings with full stops between them. They end at the first absent one; the result
/// is absent if there is none before it.
[[nodiscard]] VELMO_API String stringWithComponents(std::span<const String> components);
[[nodiscard]] inline String stringWithComponents(std::initializer_list<String> components) {
    return stringWithComponents(std::span<const String>(components.begin(), components.size()));
}

/// True for an absent string too.
[[nodiscard]] inline bool isStringEmpty(std::u16string_view string) noexcept {
    return string.empty();
}
/// False for an absent string too.
[[nodiscard]] inline bool isStringNotEmpty(std::u16string_view string) noexcept {
    return !string.empty();
}

/// The first unit, 0 if the string is empty.
[[nodiscard]] inline char16_t firstCharacter(std::u16string_view string) noexcept {
    return string.empty() ? u'\0' : string.front();
}
/// The last unit, 0 if the string is empty.
[[nodiscard]] inline char16_t lastCharacter(std::u16string_view string) noexcept {
    return string.empty() ? u'\0' : string.back();
}

}  // namespace velmo
