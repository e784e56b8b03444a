// The schemes that the URL standard calls special: their URLs have a host, \ is a slash in them,
// and but for file each has a port of its own.
#pragma once

#include <cstdint>
#include <string_view>

#include "text/Keyword.h"

namespace velmo::detail {

struct SpecialScheme {
    std::string_view name;  ///< in capitals
    std::uint32_t port;     ///< 0 for none
};

inline constexpr SpecialScheme SpecialSchemes[] = {
    {"HTTPS", 443}, {"HTTP", 80}, {"FILE", 0}, {"FTP", 21}, {"WS", 80}, {"WSS", 443},
};

/// The special scheme of a name, in any case; null if it is none.
inline const SpecialScheme* specialSchemeNamed(std::u16string_view name) noexcept {
    for (const SpecialScheme& scheme : SpecialSchemes)
        if (keyword::equals(name, scheme.name)) return &scheme;
    return nullptr;
}

}  // namespace velmo::detail
