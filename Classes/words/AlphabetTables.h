// Which letters a language is written with.
#pragma once

#include <span>
#include <string_view>

namespace velmo::detail {

struct Alphabet {
    std::u16string_view key;
    std::u16string_view letters;  ///< in lower case, sorted, without a to z
};

/// 115 languages, sorted by key.
std::span<const Alphabet> alphabets();

}  // namespace velmo::detail
