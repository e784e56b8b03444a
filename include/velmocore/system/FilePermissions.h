#pragma once

#include <cstdint>
#include <optional>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>
#include <velmocore/platform/String.h>

namespace velmo {

/// Who owns a file, and what others may do with it; each only if it is known.
///
///     FilePermissions own{.permissions = 0700};
///     createPath("private", own);
///     *permissionsAtPath("private", {.executable = false})->permissions;    // 384; that is 0600
struct FilePermissions {
    String ownerAccountName = {}, groupOwnerAccountName = {};  ///< absent if they have no name
    std::optional<std::uint32_t> ownerAccountID = {}, groupOwnerAccountID = {};  ///< their numbers
    std::optional<std::uint32_t> permissions = {};  ///< the twelve bits of POSIX
};

/// What is left of the permissions.
struct PermissionOptions {
    bool executable = true;  ///< if not, the three execute bits are cleared
};

/// What stands at the path, of a link that of itself; absent if nothing does, and for an absent or
/// empty path. Any thread may ask.
[[nodiscard]] VELMO_API std::optional<FilePermissions> permissionsAtPath(
    const Path& path, PermissionOptions options = {});
/// The same of the folder that the path lies in; absent if it has but one component.
[[nodiscard]] VELMO_API std::optional<FilePermissions> permissionsAtPathByDeletingLastPathComponent(
    const Path& path, PermissionOptions options = {});

}  // namespace velmo
