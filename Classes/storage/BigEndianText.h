// UTF-16 with the highest byte first, unit by unit: nothing is refused or made another, lone
// surrogates and the byte-order mark included.
#pragma once

#include <cstddef>
#include <string_view>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/String.h>

#include "storage/BigEndian.h"

namespace velmo::detail {

inline Data bigEndianBytesOf(std::u16string_view units) {
    Data bytes(2 * units.size());
    for (std::size_t i = 0; i < units.size(); ++i) putBigEndian(&bytes[2 * i], units[i], 2);
    return bytes;
}

/// An odd byte at the end is left out.
inline String bigEndianString(Bytes bytes) {
    const std::size_t length = bytes.size() / 2;
    StringBuilder out(length);
    for (std::size_t i = 0; i < length; ++i)
        out.append(static_cast<char16_t>(bigEndian16(&bytes[2 * i])));
    return out.finish();
}

}  // namespace velmo::detail
