// Character references as the HTML standard reads them.
#pragma once

#include <cstddef>
#include <string_view>

namespace velmo::detail {

/// A reference that was read.
struct WebReference {
    std::size_t taken = 0;  ///< units of the text; 0 if there is none
    char16_t units[2] = {};
    std::size_t count = 1;
};

/// The reference that the text, from its & on, begins with. In an attribute a name without its
/// semicolon is none if a letter, a digit or = follows it.
WebReference readWebReference(std::u16string_view text, bool isInAttribute);

}  // namespace velmo::detail
