// The names of months that are looked for in documents.
#pragma once

#include <span>
#include <string_view>

namespace velmo::detail {

struct DocumentMonth {
    std::u16string_view name;
    int month;
};

/// In the order in which they are searched.
std::span<const DocumentMonth> documentMonths() noexcept;

}  // namespace velmo::detail
