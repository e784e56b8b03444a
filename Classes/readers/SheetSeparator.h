// Which unit separates the fields of a sheet.
#pragma once

#include <cstddef>
#include <string_view>

namespace velmo::detail {

struct SheetSeparator {
    char16_t unit;
    std::size_t count;  ///< of it in the text
};

/// The tab, comma or semicolon that a text has most of, outside quotes if there are any.
SheetSeparator sheetSeparator(std::u16string_view text, bool quoted);

}  // namespace velmo::detail
