// How a fuzz target makes units of its bytes: as UTF-8, or, with the first byte odd, as the
// UTF-16 units that they are, lone surrogates and all.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include <velmocore/platform/String.h>
#include <velmocore/text/WebRules.h>

namespace velmo::fuzz {

inline String unitsOf(const std::uint8_t* data, std::size_t size) {
    if (size > 0 && (data[0] & 1)) {
        std::u16string units((size - 1) / 2, u'\0');
        std::memcpy(units.data(), data + 1, units.size() * 2);
        return String(units);
    }
    return String::fromUTF8({reinterpret_cast<const char*>(data), size});
}

/// The rules by which a page is read: one a bit of the last byte, which is a part of the page too.
inline WebRules rulesOf(const std::uint8_t* data, std::size_t size) {
    WebRules web;
    constexpr bool WebRules::*Rules[] = {&WebRules::attributes,  &WebRules::tagBounds,
                                         &WebRules::comments,    &WebRules::rawText,
                                         &WebRules::selfClosing, &WebRules::relativeBase,
                                         &WebRules::linkTags,    &WebRules::references};
    for (std::size_t bit = 0; size > 0 && bit < 8; ++bit)
        web.*Rules[bit] = (data[size - 1] >> bit & 1) != 0;
    return web;
}

/// What must hold. Unlike an assertion it counts in every build.
inline void require(bool condition) {
    if (!condition) std::abort();
}

}  // namespace velmo::fuzz
