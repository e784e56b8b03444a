// The names by which location files are known, and those that they are given.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace velmo::detail {

/// All of them, in the order that is told: 22.
std::span<const std::string_view> locationTypes() noexcept;
/// The codes that make a file a location whatever its name: 10.
std::span<const std::uint32_t> locationTypeCodes() noexcept;
/// The extensions that do so, in capitals: 10.
std::span<const std::string_view> locationExtensions() noexcept;

struct LocationScheme {
    std::string_view scheme;  ///< in capitals
    std::u16string_view extension;
};
/// The schemes whose locations have an extension of their own: 9.
std::span<const LocationScheme> locationSchemes() noexcept;

}  // namespace velmo::detail
