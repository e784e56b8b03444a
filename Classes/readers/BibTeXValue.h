// Values of a bibliography as plain text.
#pragma once

#include <string>
#include <string_view>

#include <velmocore/platform/String.h>

#include "readers/BibTeXMacros.h"

namespace velmo::detail {

class BibTeXValueCleaner {
public:
    explicit BibTeXValueCleaner(BibTeXMacros& macros) : macros_(macros) {}

    /// The text of a value: without commands, braces and mathematics, with macros replaced.
    String cleaned(std::u16string_view value);

private:
    BibTeXMacros& macros_;
    std::u16string text_;  ///< kept for its memory
};

}  // namespace velmo::detail
