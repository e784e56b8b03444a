// Words put together again.
#pragma once

#include <span>
#include <string_view>

#include <velmocore/platform/String.h>

namespace velmo::detail {

inline String joinedWords(std::span<const String> words, std::u16string_view separator) {
    StringBuilder out;
    for (const String& word : words) {
        if (!out.isEmpty()) out.append(separator);
        out.append(word);
    }
    return out.finish();
}

}  // namespace velmo::detail
