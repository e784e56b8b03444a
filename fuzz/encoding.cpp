// Text written strictly in the encoding that the first byte chooses: what comes of it is read as
// the very same text; and a lossy result is there for all that has none.
#include "Input.h"
#include "platform/Converter.h"
#include "platform/EncodingTables.h"

using namespace velmo;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const auto rows = detail::encodingRows();
    const detail::EncodingRow& row = rows[data[0] % rows.size()];
    const String text = fuzz::unitsOf(data + 1, size - 1);
    // A mark at the start is no part of the text that is read.
    if (text.view().starts_with(u'\uFEFF')) return 0;
    const auto strict = detail::encode(row.number, text, false);
    const auto lossy = detail::encode(row.number, text, true);
    require(lossy.has_value());
    if (!strict || text.isEmpty()) return 0;
    require(*strict == *lossy);
    // UTF-16 keeps halves of pairs, which its reader gives back as they are.
    require(detail::decodedString(row.number, *strict, detail::Decode::Lenient) == text);
    return 0;
}
