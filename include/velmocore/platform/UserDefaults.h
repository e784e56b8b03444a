#pragma once

#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

/// Where a program keeps its users' settings is the program's own affair; the library
/// asks for the few values it reads through this hook. It gives the list of strings
/// under a key, empty if there is none.
using UserDefaultsHook = std::vector<String> (*)(std::u16string_view key);

/// Installs the hook; null, as at the start, means that no key has a value. Meant to be
/// called while the program starts; the pointer is stored atomically. The hook must stand being
/// called on several threads at once.
///
///     setUserDefaultsHook([](std::u16string_view key) -> std::vector<String> {
///         if (key == u"AdditionalXMLExtensions") return {u"kml"};
///         return {};
///     });
///     userDefaultStrings(u"AdditionalXMLExtensions");    // kml
///     setUserDefaultsHook(nullptr);
VELMO_API void setUserDefaultsHook(UserDefaultsHook hook) noexcept;

/// The list of strings under a key, through the hook; empty without one. Any thread.
[[nodiscard]] VELMO_API std::vector<String> userDefaultStrings(std::u16string_view key);

}  // namespace velmo
