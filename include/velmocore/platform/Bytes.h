#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <ranges>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

#include <velmocore/platform/Export.h>

namespace velmo {

/// Bytes that are owned.
using Data = std::vector<std::uint8_t>;

namespace detail {

template <class Unit>
concept EightBitUnit = std::same_as<Unit, std::uint8_t> || std::same_as<Unit, char> ||
    std::same_as<Unit, char8_t> || std::same_as<Unit, std::byte>;

// An array of char is a literal and ends at its zero, so it is not one of these.
template <class Range>
concept ByteRange =
    std::ranges::contiguous_range<const Range> && std::ranges::sized_range<const Range> &&
    EightBitUnit<std::ranges::range_value_t<Range>> && !std::is_array_v<Range>;

}  // namespace detail

/// Bytes that are read: a view, which owns nothing. It is made from anything that holds bytes
/// in one piece - strings, string views, vectors and arrays of std::uint8_t, char or std::byte -
/// and must not outlive it. An absent or default-made one has no bytes and a null data(). Any
/// thread may read bytes that none changes meanwhile.
///
///     CRC32("abc");                                   // 3395655888; of the three bytes
///     stringWithMarkupData(std::string(3, 'a'));      // aaa
///     Bytes(nullptr).data() == nullptr;               // true
class Bytes : public std::span<const std::uint8_t> {
    using Span = std::span<const std::uint8_t>;

public:
    /// Of nothing, or of what other views and arrays hold.
    constexpr Bytes() noexcept = default;
    constexpr Bytes(Span bytes) noexcept : Span(bytes) {}
    constexpr Bytes(const std::uint8_t* bytes, std::size_t count) noexcept : Span(bytes, count) {}
    template <std::contiguous_iterator First, std::sized_sentinel_for<First> Last>
    requires std::same_as<std::iter_value_t<First>, std::uint8_t>
    constexpr Bytes(First first, Last last) noexcept : Span(first, last) {}
    template <std::size_t Count>
    constexpr Bytes(const std::uint8_t (&bytes VELMO_LIFETIME)[Count]) noexcept
        : Span(bytes, Count) {}

    /// The bytes before the terminating zero; null has none.
    Bytes(const char* text) : Bytes(text ? std::string_view(text) : std::string_view()) {}

    /// All bytes of a container.
    template <detail::ByteRange Range>
    requires(!std::derived_from<Range, Span>) Bytes(const Range& range VELMO_LIFETIME)
    noexcept
        : Span(reinterpret_cast<const std::uint8_t*>(std::ranges::data(range)),
               std::ranges::size(range)) {}

    /// A part of the bytes, from one up to the length on, to their end if no count is given. Both
    /// must lie inside.
    [[nodiscard]] Bytes subspan(std::size_t from, std::size_t count = std::dynamic_extent) const {
        return Span::subspan(from, count);
    }
};

/// The same bytes as an 8-bit text, without a copy.
[[nodiscard]] inline std::string_view charsOf(Bytes bytes) noexcept {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace velmo
