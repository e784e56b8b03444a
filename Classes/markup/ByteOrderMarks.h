// What the bytes of a text tell of its encoding.
#pragma once

#include <string_view>

#include <velmocore/platform/Bytes.h>
#include <velmocore/text/Encodings.h>

namespace velmo::detail {

struct ByteOrderMark {
    std::string_view bytes = {};
    StringEncoding encoding = 0;  ///< 0 if there is no mark
};

/// The mark that bytes begin with.
ByteOrderMark markOf(Bytes bytes);

/// UTF-16 without a mark: zeros at every other place only, as of spaces and Latin letters. Also
/// UTF-32 if all of its units are characters. UnknownStringEncoding if it is neither.
StringEncoding encodingOfZeros(Bytes head);

}  // namespace velmo::detail
