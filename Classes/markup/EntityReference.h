// One character reference of a text, for those who decode while they copy.
#pragma once

#include <cstddef>
#include <string_view>

#include <velmocore/markup/Entities.h>

namespace velmo::detail {

/// A decoded reference.
struct Reference {
    std::size_t taken = 0;  ///< units of the text; 0 if this is no reference
    char16_t units[2] = {};
    std::size_t count = 1;
    bool isPlain = false;  ///< treated like any other unit of the text
};

/// Reads the reference that the text, from its & on, begins with. What stands behind the first unit
/// that is neither a letter nor a digit, but for a # in front of a number, makes no difference.
Reference readReference(std::u16string_view text, EntityOptions options);

}  // namespace velmo::detail
