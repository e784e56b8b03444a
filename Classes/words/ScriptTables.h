// Scripts, and the languages that they name without a look at a word.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace velmo::detail {

/// A stretch of the plane, from one multiple of 16 to the end of another. Several rows of one code
/// are one script.
struct ScriptRow {
    std::u16string_view code;  ///< of ISO 15924
    char16_t first, last;
    std::u16string_view language;  ///< empty if several large languages are written so
    /// What a unit says, in letters of an alphabet; alike in all rows of a script.
    std::uint32_t weight = 1;
    /// Where this is not 0, the row is a part of the script of the row before: if it holds one in so
    /// many of the units of both, it names the text, else the other does.
    std::uint32_t oneIn = 0;
    bool isShared = false;  ///< words may name another language, where they are clear
};

/// 49 rows.
std::span<const ScriptRow> scriptRows();

}  // namespace velmo::detail
