#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>

/// The version of these headers. The build reads it from here.
#define VELMO_VERSION_MAJOR 0
#define VELMO_VERSION_MINOR 2
#define VELMO_VERSION_PATCH 0
#define VELMO_VERSION_TEXT "0.2.0"

namespace velmo {

/// A version, which compares as one expects: by its first number, then the others.
struct Version {
    int major = 0;  ///< what counts first
    int minor = 0;  ///< of versions with the same first number
    int patch = 0;  ///< of versions that differ in nothing else
    friend constexpr auto operator<=>(const Version&, const Version&) = default;
};

/// The version of the headers that a program was compiled with.
inline constexpr Version HeaderVersion{VELMO_VERSION_MAJOR, VELMO_VERSION_MINOR,
                                       VELMO_VERSION_PATCH};

/// The version of the library that it runs with. While the major number is 0, libraries whose
/// minor numbers differ do not fit each other, and have different names for the linker. Any thread.
///
///     if (linkedVersion() < HeaderVersion) warn(linkedVersionText());
[[nodiscard]] VELMO_API Version linkedVersion() noexcept;
/// The same as a text, "0.2.0"; never empty, and good for the life of the process.
[[nodiscard]] VELMO_API std::string_view linkedVersionText() noexcept;

}  // namespace velmo
