#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

namespace velmo::detail {

/// Sorts [first, last) by a comparison whose result is below 0, 0 or above 0; equal elements
/// keep their order. The comparison may be wrong, and even say something else each time it is
/// asked: the order is then any, but no element is lost and none outside is touched, which
/// std::sort and std::stable_sort do not promise.
template <class T, class Compare>
void mergeSort(T* first, T* last, Compare&& compare) {
    constexpr std::ptrdiff_t Chunk = 16;
    const std::ptrdiff_t size = last - first;
    const auto isBelow = [&](const T& a, const T& b) { return compare(a, b) < 0; };
    for (std::ptrdiff_t chunk = 0; chunk < size; chunk += Chunk)
        for (T* next = first + chunk; next != first + std::min(chunk + Chunk, size); ++next)
            std::rotate(std::upper_bound(first + chunk, next, *next, isBelow), next, next + 1);
    if (size <= Chunk) return;

    std::vector<T> room(std::make_move_iterator(first), std::make_move_iterator(last));
    T *from = room.data(), *to = first;
    for (std::ptrdiff_t width = Chunk; width < size; width *= 2) {
        const auto at = [&](std::ptrdiff_t i) {
            return std::make_move_iterator(from + std::min(i, size));
        };
        for (std::ptrdiff_t i = 0; i < size; i += 2 * width)
            std::merge(at(i), at(i + width), at(i + width), at(i + 2 * width), to + i, isBelow);
        std::swap(from, to);
    }
    if (from != first) std::move(from, from + size, first);
}

}  // namespace velmo::detail
