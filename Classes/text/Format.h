// Formats with arguments, in the way of printf with %@ for strings.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/text/Format.h>

namespace velmo::detail {

/// The format with its conversions filled in; see replaceStringWithFormat().
VELMO_API std::u16string formatted(std::u16string_view format,
                                   std::initializer_list<FormatArgument> arguments);

}  // namespace velmo::detail
