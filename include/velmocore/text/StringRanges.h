#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>

namespace velmo {

/// How a substring is sought; or-ed together. Without LiteralSearch, composed and decomposed
/// characters are the same, and no hit begins or ends inside a character with its marks.
enum SearchOptions : std::uint32_t {
    DefaultSearch = 0,                 ///< as told above
    CaseInsensitiveSearch = 1,         ///< upper and lower case are the same
    LiteralSearch = 2,                 ///< unit by unit
    BackwardsSearch = 4,               ///< the last occurrence
    DiacriticInsensitiveSearch = 128,  ///< marks do not count
    WidthInsensitiveSearch = 256,      ///< full-width and half-width forms are the usual ones
};
constexpr SearchOptions operator|(SearchOptions a, SearchOptions b) {
    return static_cast<SearchOptions>(std::uint32_t{a} | std::uint32_t{b});
}

/// Names a stretch of text by what stands before it and after it.
class StringRange {
public:
    /// Without markers, and so of no text; and with two, as setStart() takes them.
    StringRange() = default;
    StringRange(const String& start, const String& end) { setStart(start, end); }
    /// An empty marker is the same as none.
    void setStart(const String& start, const String& end) {
        _start = start.isEmpty() ? String() : start;
        _end = end.isEmpty() ? String() : end;
    }
    /// The markers; absent for none.
    [[nodiscard]] const String& start() const VELMO_LIFETIME { return _start; }
    [[nodiscard]] const String& end() const VELMO_LIFETIME { return _end; }

private:
    String _start, _end;
};

// Stretches of text between two markers, for programs that know a page by its landmarks. The
// end marker is sought forward from the start marker, whatever the options say. Ranges and indexes
// count UTF-16 units; an empty or absent text has no stretches. Any thread may call these.
//
//     substringWithStart(u"<b>bold</b>", u"<b>", u"</b>");    // bold
//     stringRangeWithStart(u"a=1", u"=", u";", false);         // {2, 1}

/// The text between the markers, without them. Without an end marker, or if it does not occur,
/// it goes to the end of the string; but then there is none if it is required, or with
/// BackwardsSearch. No range without a start marker, or if that does not occur.
[[nodiscard]] VELMO_API Range stringRangeWithStart(std::u16string_view string,
                                                   std::u16string_view start,
                                                   std::u16string_view end, bool isRequired,
                                                   SearchOptions options = DefaultSearch);

/// That text, the end marker not required; absent if there is none or it is empty.
[[nodiscard]] VELMO_API String substringWithStart(const String& string, std::u16string_view start,
                                                  std::u16string_view end,
                                                  SearchOptions options = DefaultSearch);
[[nodiscard]] VELMO_API String substringWithStringRange(const String& string,
                                                        const StringRange& range,
                                                        SearchOptions options = DefaultSearch);

/// Deletes that text with both markers; nothing unless both are there.
VELMO_API void deleteCharactersInRangeWithStart(std::u16string& text, std::u16string_view start,
                                                std::u16string_view end,
                                                SearchOptions options = DefaultSearch);
VELMO_API void deleteCharactersInStringRange(std::u16string& text, const StringRange& range,
                                             SearchOptions options = DefaultSearch);

/// Where the first of the strings that occurs does, from the index on: their order counts, not
/// that in the text. The list ends at the first absent string. NotFound if none occurs, or the
/// index is not below the length.
[[nodiscard]] VELMO_API std::size_t findStrings(std::u16string_view string,
                                                std::initializer_list<String> sought,
                                                SearchOptions options = DefaultSearch,
                                                std::size_t startAt = 0);

}  // namespace velmo
