// The stretches of a text that collapsing leaves as they are: the kernel of WhiteRuns.h for
// machines that look at sixteen units in one step.
#pragma once

#include <cstddef>

#include <velmocore/platform/Export.h>

namespace velmo::detail {

/// Whether the functions below may be called.
VELMO_API bool canSettleWide() noexcept;

inline constexpr std::ptrdiff_t WideUnits = 16;

/// How many units at the start of [from, to) stay as they are for sure: those of the plain
/// stretches, and, if they stay, each blank in front of one of these. The unit to stop at, unless
/// that is 0, does not stay. Less than WideUnits at the end are not looked at. What stays is copied
/// to out, if there is one, with as much room as the text needs, and must not overlap it.
VELMO_API std::ptrdiff_t settleWide(const char16_t* from, const char16_t* to, char16_t* out,
                                    char16_t stop, bool blanksStay) noexcept;

}  // namespace velmo::detail
