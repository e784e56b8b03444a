// What charset names mean, as data.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include <velmocore/text/Encodings.h>

namespace velmo::detail {

/// A number in a charset's name.
struct CharsetNumber {
    std::uint32_t number;
    TextEncoding encoding;
};

/// Numbers that decide by themselves, in their order.
std::span<const CharsetNumber> charsetNumbers() noexcept;

enum class NameTest : std::uint8_t { Begins, Contains, Equals };

/// A test of a charset's normalised name.
struct CharsetName {
    NameTest test;
    std::u16string_view text;
    TextEncoding encoding;

    bool matches(std::u16string_view name) const {
        switch (test) {
            case NameTest::Begins:
                return name.starts_with(text);
            case NameTest::Contains:
                return name.find(text) != name.npos;
            default:
                return name == text;
        }
    }
};

/// Stands for the Mac script that the rest of the name tells.
inline constexpr TextEncoding MacScript = 0xFFFFFFFE;

/// The tests of names that no number decided; the first hit counts.
std::span<const CharsetName> charsetNames() noexcept;

/// The tests of what stands behind "mac".
std::span<const CharsetName> macScriptNames() noexcept;

}  // namespace velmo::detail
