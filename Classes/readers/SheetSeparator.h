// Which unit separates the fields of a sheet.
#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>

namespace velmo::detail {

/// The tab, comma or semicolon that a text has most of, outside quotes if there are any.
VELMO_API char16_t sheetSeparator(std::u16string_view text, bool quoted);

}  // namespace velmo::detail
