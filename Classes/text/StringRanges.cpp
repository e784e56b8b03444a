// Landmarks in a text. Both markers are sought by the same search, but the second one always
// ahead, as the stretch that is named lies behind the first.
#include <velmocore/text/StringRanges.h>

#include "text/SubstringSearch.h"

namespace velmo {
namespace {

using View = std::u16string_view;

SearchOptions masked(SearchOptions options, std::uint32_t mask) {
    return static_cast<SearchOptions>(std::uint32_t{options} & mask);
}

// Other bits have no meaning here. The end marker is never sought backwards.
constexpr std::uint32_t StartMask = 0x187, EndMask = 0x183;

Range found(View string, View sought, std::size_t from, SearchOptions options) {
    return detail::rangeOfString(string, sought, Range{from, string.size() - from}, options);
}

struct Markers {
    Range start, end;
};

Markers findMarkers(View string, View start, View end, SearchOptions options) {
    Markers markers{found(string, start, 0, masked(options, StartMask)), Range::none()};
    // Without a start the end is not sought: the text would be read for nothing.
    if (markers.start.isFound())
        markers.end = found(string, end, markers.start.end(), masked(options, EndMask));
    return markers;
}

}  // namespace

Range stringRangeWithStart(View string, View start, View end, bool isRequired,
                           SearchOptions options) {
    const Markers markers = findMarkers(string, start, end, options);
    if (!markers.start.isFound()) return Range::none();
    const std::uint64_t after = markers.start.end();
    if (markers.end.isFound()) return {after, markers.end.location - after};
    if (isRequired || (options & BackwardsSearch)) return Range::none();
    return {after, string.size() - after};
}

String substringWithStart(const String& string, View start, View end, SearchOptions options) {
    const Range range = stringRangeWithStart(string, start, end, false, options);
    return range.length == 0 ? String() : string.substring(range);
}

String substringWithStringRange(const String& string, const StringRange& range,
                                SearchOptions options) {
    return substringWithStart(string, range.start(), range.end(), options);
}

void deleteCharactersInRangeWithStart(std::u16string& text, View start, View end,
                                      SearchOptions options) {
    const Markers markers = findMarkers(text, start, end, options);
    if (markers.end.isFound())
        text.erase(markers.start.location, markers.end.end() - markers.start.location);
}

void deleteCharactersInStringRange(std::u16string& text, const StringRange& range,
                                   SearchOptions options) {
    deleteCharactersInRangeWithStart(text, range.start(), range.end(), options);
}

std::size_t findStrings(View string, std::initializer_list<String> sought, SearchOptions options,
                        std::size_t startAt) {
    if (startAt >= string.size()) return NotFound;
    for (const String& each : sought) {
        if (each.isAbsent()) break;
        const Range hit = found(string, each, startAt, masked(options, StartMask));
        if (hit.isFound()) return hit.location;
    }
    return NotFound;
}

}  // namespace velmo
