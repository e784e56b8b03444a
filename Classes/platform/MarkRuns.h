// Long runs of combining marks put in order before they are normalised.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <velmocore/platform/Export.h>

namespace velmo::detail {

/// The text with every run of more than 32 units of marks decomposed and in canonical order,
/// which changes none of its normal forms; absent if there is no such run. ICU inserts the marks
/// of a run one by one, in a time that grows with the square of the run, unless they come in
/// order. Linear time; where there are no marks, one unit in 32 is looked at.
VELMO_API std::optional<std::u16string> withMarksInOrder(std::u16string_view text);

}  // namespace velmo::detail
