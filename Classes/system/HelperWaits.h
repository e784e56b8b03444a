// How long the owner of a helper waits for it. Tests set shorter times; nobody else does.
#pragma once

#include <atomic>

#include <velmocore/platform/Export.h>

namespace velmo::detail {

/// In seconds.
struct HelperWaits {
    std::atomic<double> registration = 5.0;  ///< until its object is published
    std::atomic<double> ending = 2.0;        ///< until it has ended when it was asked to
};

VELMO_API HelperWaits& helperWaits() noexcept;

}  // namespace velmo::detail
