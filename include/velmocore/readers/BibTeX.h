#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

/// The name under which the citation key of an entry stands.
inline constexpr std::u16string_view CitationKey = u"@";

/// A field of an entry.
struct BibTeXField {
    String name;   ///< as it is written: case counts
    String value;  ///< cleaned: without commands, braces and mathematics, white space collapsed
};

/// An entry, its fields in the order of the text.
struct BibTeXEntry {
    std::vector<BibTeXField> fields;  ///< the citation key too, if it has one

    /// The value of a field; absent if the entry has no such one.
    [[nodiscard]] VELMO_API String value(std::u16string_view name) const;
};

/// What a text holds.
struct BibTeXEntries {
    std::vector<BibTeXEntry> entries;  ///< in the order of the text
    std::vector<String> keys;  ///< the names of all fields in the order of their first appearance
};

/// The entries of a BibTeX text; with a type only those of that type, in any case. What cannot be
/// placed is skipped, nothing fails, and time is linear in the text. Comments and preambles are
/// entries too, mostly without fields. Any thread may read.
///
/// A field is a name, "=" and a value in quotes, in braces, or bare up to a comma, a closing
/// parenthesis or a closing brace. A field that comes again takes the place of the former. A key
/// with one of ( ) : = { } in it is none.
///
/// The macros of @string entries are replaced wherever their names stand in the values of later
/// entries, each macro once and in the order of the definitions. So that macros of macros cannot
/// grow beyond all measure, the work for all replacements of a text, counted in units looked up and
/// units written, is limited to sixteen for each of its units and a million: where a replacement
/// would take more, names of macros stay as they are.
///
///     const auto [entries, keys] = BibTeXEntriesNamed(
///         u"@string{ic = \"Iced\"} @book{tea, title = {{\\bf ic} Tea}, year = 2001}");
///     entries[0].value(u"title");         // Iced Tea
///     entries[0].value(CitationKey);      // tea
///     keys.size();                        // 3
[[nodiscard]] VELMO_API BibTeXEntries BibTeXEntriesNamed(std::u16string_view text,
                                                         const String& type = {});

}  // namespace velmo
