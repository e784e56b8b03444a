// Names of hosts in the letters of people and in ASCII, by UTS 46 as the URL standard takes it:
// nontransitional, hyphens anywhere, no limits of length, and any ASCII that the name has.
#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo::detail::domains {

/// A longer name is none: encoding takes the square of a label's length, and DNS has no name
/// beyond 253 bytes.
inline constexpr std::size_t LongestName = 1000;

/// The ASCII form, in lower case; absent if there is none.
VELMO_API String toASCII(std::u16string_view name);

/// The form in the letters of people; a label that has none stays as it is. Absent if the name
/// is too long.
VELMO_API String toUnicode(std::u16string_view name);

/// Whether a label in the letters of people could be taken for another one: it mixes scripts that
/// no language mixes, holds letters that are seldom used, or looks like ASCII throughout.
VELMO_API bool isDeceptive(std::u16string_view label);

}  // namespace velmo::detail::domains
