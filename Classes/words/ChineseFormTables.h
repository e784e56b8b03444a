// Which characters tell traditional from simplified Chinese.
#pragma once

#include <string_view>

namespace velmo::detail {

/// Sorted, of the more common ones.
std::u16string_view traditionalCharacters();
std::u16string_view simplifiedCharacters();

}  // namespace velmo::detail
