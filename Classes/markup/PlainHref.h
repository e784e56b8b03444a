// The reference of most links, <a href="..."> with nothing in it that normalising touches: one look at
// the start of the tag and one walk over the value tell it. All others are left to the readers of
// attributes and to NormalizedLink, which would find the same.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

#include "markup/ByteTag.h"
#include "text/ByteScan.h"
#include "text/TextMarks.h"

namespace velmo::detail {

/// Whether a unit may end a value, or is one that normalising touches: all but printable ASCII, and
/// " & > \ of that.
constexpr bool endsPlainHref(char16_t unit) {
    return unit <= u' ' || unit > u'~' || unit == u'"' || unit == u'&' || unit == u'>' ||
           unit == u'\\';
}

/// The first such unit; end if there is none.
template <class Unit>
const Unit* endOfPlainHref(const Unit* from, const Unit* end) {
#if defined(__SSE2__)
    for (; end - from >= scan::BlockBytes; from += scan::BlockBytes) {
        const __m128i block = loadAsBytes(from);
        const auto equalTo = [block](char byte) { return scan::equalTo(block, byte); };
        // Bytes are signed, so that those outside ASCII are low too.
        const __m128i low = _mm_cmplt_epi8(block, _mm_set1_epi8('!'));
        const __m128i marks = _mm_or_si128(_mm_or_si128(equalTo('"'), equalTo('>')),
                                           _mm_or_si128(equalTo('&'), equalTo('\\')));
        const __m128i others = _mm_or_si128(low, equalTo('\x7F'));
        if (const int hits = _mm_movemask_epi8(_mm_or_si128(marks, others)))
            return from + scan::firstByteOf(hits);
    }
#endif
    while (from < end && !endsPlainHref(valueOfUnit(*from))) ++from;
    return from;
}

/// Eight units of Latin 1 as a number; some other one if they are none.
inline std::uint64_t eightUnits(const char* units) {
    std::uint64_t word;
    std::memcpy(&word, units, sizeof word);
    return word;
}
inline std::uint64_t eightUnits(const char16_t* units) {
    char bytes[8];
    for (int i = 0; i < 8; ++i) bytes[i] = units[i] < 256 ? static_cast<char>(units[i]) : '\0';
    return eightUnits(bytes);
}

/// The value of the tag's first attribute, if that is HREF="..." right behind a plain name, and a
/// normalised link as it stands. Else empty: what the tag refers to takes more to tell.
template <class AnyTag>
auto plainHref(const AnyTag& tag) {
    using Text = decltype(tag.characters);
    constexpr std::size_t Opening = sizeof(" href=\"") - 1;
    const auto *const end = tag.characters.data() + tag.characters.size(),
                      *const at = tag.characters.data() + tag.nameLocation + tag.nameLength;
    if (tag.nameLocation != tag.tagLocation + 1 || end - at < 8) return Text();
    // The letters in lower case, and without the eighth unit.
    const std::uint64_t opening =
        (eightUnits(at) | eightUnits("\0    \0\0")) & eightUnits("\xFF\xFF\xFF\xFF\xFF\xFF\xFF");
    if (opening != eightUnits(" href=\"")) return Text();
    const auto *const value = at + Opening, *const last = endOfPlainHref(value, end);
    if (last == end || *last != '"') return Text();
    const Text href(value, static_cast<std::size_t>(last - value));
    // An escape at the end may be cut.
    return href.size() > 2 && href[href.size() - 3] == '%' ? Text() : href;
}

}  // namespace velmo::detail
