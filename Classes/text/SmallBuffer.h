// An array whose length is known when it is made and is mostly small: it stands in the
// object itself up to a number of elements, and on the heap above that.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <span>

namespace velmo::detail {

template <class T, std::size_t Inline = 256>
class SmallBuffer {
public:
    /// The elements are not initialised.
    explicit SmallBuffer(std::size_t size) : size_(size) {
        // Without value-initialisation, which would clear what is written over at once.
        if (size > Inline) heap_.reset(new T[size]);
    }
    SmallBuffer(std::size_t size, T value) : SmallBuffer(size) { std::fill_n(data(), size, value); }

    T* data() noexcept { return heap_ ? heap_.get() : inline_.data(); }
    const T* data() const noexcept { return heap_ ? heap_.get() : inline_.data(); }
    std::size_t size() const noexcept { return size_; }
    /// Drops what is after the given length.
    void truncate(std::size_t size) noexcept { size_ = size; }
    T& operator[](std::size_t index) noexcept { return data()[index]; }
    const T& operator[](std::size_t index) const noexcept { return data()[index]; }

private:
    std::size_t size_;
    std::unique_ptr<T[]> heap_;
    std::array<T, Inline> inline_;
};

}  // namespace velmo::detail
