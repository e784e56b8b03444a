// Large blocks of memory in large pages, where the system has them to give: at the first touch of
// each small page it costs more to get it than to fill it.
#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <cstdint>

namespace velmo::detail {

inline constexpr std::size_t LargeBlockBytes = std::size_t{16} << 20;

/// Is to be called before the block is written to. Changes nothing but the time that this takes.
/// All of the block is told, up to the small pages at its ends that it shares with nothing of size:
/// a block that is told in parts could not be moved as one, and growing it would copy it.
inline void wantLargePages([[maybe_unused]] void* block, [[maybe_unused]] std::size_t bytes) {
#if defined(MADV_HUGEPAGE)
    constexpr std::uintptr_t PageBytes = std::uintptr_t{4} << 10;
    if (bytes < LargeBlockBytes) return;
    const auto from = reinterpret_cast<std::uintptr_t>(block) & ~(PageBytes - 1);
    const auto to =
        (reinterpret_cast<std::uintptr_t>(block) + bytes + PageBytes - 1) & ~(PageBytes - 1);
    // It is a wish, so a refusal is none of our business.
    static_cast<void>(madvise(reinterpret_cast<void*>(from), to - from, MADV_HUGEPAGE));
#endif
}

}  // namespace velmo::detail
