#pragma once

#include <cstddef>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/WebRules.h>

namespace velmo {

// Character references in markup, as &eacute; and &#233;, to units and back. The decoder
// takes what the web writes: the common references need no semicolon, names that are not
// known stay as they are, and no number is too large. Nothing fails; an absent string stays
// absent. Any thread.
//
//     stringByConvertingEntitiesToCharacters(u"caf&eacute; &amp; bar");   // "caf\u00E9 & bar"

/// What is decoded.
struct EntityOptions {
    /// Also the references of the units that are significant in markup: ", &, < and >. Without
    /// them the result is still valid markup.
    bool convertStandard = true;
    /// No named references, but for &apos; and &nbsp;, which are always decoded.
    bool onlyNumericEntities = false;
    /// Takes the diacritics away, from all units that are copied or decoded by name or number.
    bool nonUmlauted = false;
    /// Whether this is the value of an attribute; only WebRules::references tells it apart.
    bool inAttribute = false;
    WebRules web = {};  ///< which references there are
};

/// Decodes length units of the source from location on and writes them to the start of the
/// destination, which needs as much room and may be the source. Gives the number of units
/// written, which is never above the length.
VELMO_API std::size_t convertEntities2Characters(const char16_t* source, char16_t* destination,
                                                 std::size_t location, std::size_t length,
                                                 EntityOptions options);

/// The string itself if its length would not change, even with nonUmlauted, and if it has
/// less than 4 units.
[[nodiscard]] VELMO_API String stringByConvertingEntitiesToCharacters(const String& string,
                                                                      EntityOptions options = {});
[[nodiscard]] VELMO_API String
stringByConvertingEntitiesToCharactersNonUmlauted(const String& string, bool nonUmlauted);

/// Decodes in place the references &quot; &amp; &lt; &gt; &#34; &#38; &#60; and &#62; only, all
/// with their semicolon. Gives the new length.
VELMO_API std::size_t convertStdEntities2Characters(char16_t* characters, std::size_t length);
/// The string itself if nothing changes, and if it has less than 4 units.
[[nodiscard]] VELMO_API String stringByConvertingStandardEntitiesToCharacters(const String& string);

/// Every unit above 127 as a reference, by name where there is one, else by number; each half
/// of a surrogate pair by itself. ASCII stays as it is, < and & included.
[[nodiscard]] VELMO_API String stringByConvertingCharactersToEntities(const String& string);

/// Two tasks: with highOnly every unit above 127 as a reference by number, else the units ",
/// &, < and > as references by name. The string itself if nothing changes.
[[nodiscard]] VELMO_API String stringByConvertingCharactersToEntities(const String& string,
                                                                      bool highOnly);
[[nodiscard]] VELMO_API String stringByConvertingHighCharactersToEntities(const String& string);
[[nodiscard]] VELMO_API String stringByConvertingCharactersToStandardEntities(const String& string);

/// Makes ready what the decoder needs; otherwise its first use does.
VELMO_API void initConversionTables();

}  // namespace velmo
