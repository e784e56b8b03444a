// The schemes that the URL standard calls special: their URLs have a host, \ is a slash in them,
// and but for file each has a port of its own.
#pragma once

#include <cstdint>
#include <cstring>
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

inline constexpr const SpecialScheme *SpecialHTTPS = &SpecialSchemes[0],
                                     *SpecialHTTP = &SpecialSchemes[1];

/// The special scheme of a name that is "http" or "https" as it stands, which nearly all are; null
/// for any other.
inline const SpecialScheme* webSchemeNamed(std::u16string_view name) noexcept {
    constexpr std::size_t Length = 4;
    const bool isWeb = name.size() >= Length && name.size() <= Length + 1 &&
                       !std::memcmp(name.data(), u"http", Length * sizeof(char16_t));
    if (!isWeb) return nullptr;
    if (name.size() == Length) return SpecialHTTP;
    return name[Length] == u's' ? SpecialHTTPS : nullptr;
}

/// The special scheme of a name, in any case; null if it is none.
inline const SpecialScheme* specialSchemeNamed(std::u16string_view name) noexcept {
    if (const SpecialScheme* const scheme = webSchemeNamed(name)) return scheme;
    for (const SpecialScheme& scheme : SpecialSchemes)
        if (keyword::equals(name, scheme.name)) return &scheme;
    return nullptr;
}

}  // namespace velmo::detail
