#include <velmocore/platform/Memory.h>

#include <sys/mman.h>

#include <cstdint>

namespace velmo {

void giveBack(const void* memory, std::size_t bytes) {
    constexpr std::uintptr_t PageSize = 4096;
    const auto begin = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t first = (begin + PageSize - 1) / PageSize * PageSize;
    const std::uintptr_t end = (begin + bytes) / PageSize * PageSize;
    if (first < end) madvise(reinterpret_cast<void*>(first), end - first, MADV_DONTNEED);
}

}  // namespace velmo
