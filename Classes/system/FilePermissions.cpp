#include <velmocore/system/FilePermissions.h>

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>

#include <array>

#include "system/AccountNames.h"
#include "system/OpenFile.h"
#include "system/PathBytes.h"

namespace velmo {
namespace {

constexpr std::uint32_t ExecuteBits = 73;

/// Bytes for the strings of an entry; a group has the names of all of its members.
using EntryBuffer = std::array<char, 0x10000>;

String groupName(gid_t number) {
    EntryBuffer buffer;
    group entry;
    group* found = nullptr;
    ::getgrgid_r(number, &entry, buffer.data(), buffer.size(), &found);
    return found ? String::fromUTF8(found->gr_name) : String();
}

}  // namespace

String detail::accountName(uid_t number) {
    EntryBuffer buffer;
    passwd entry;
    passwd* found = nullptr;
    ::getpwuid_r(number, &entry, buffer.data(), buffer.size(), &found);
    return found ? String::fromUTF8(found->pw_name) : String();
}

std::optional<FilePermissions> permissionsAtPath(const Path& path, PermissionOptions options) {
    if (!detail::isUsable(path)) return std::nullopt;
    const auto info = detail::infoOf(detail::FileCalls::current(), AT_FDCWD, path.bytes());
    if (!info) return std::nullopt;
    const std::uint32_t mask = options.executable ? 07777 : 07777 & ~ExecuteBits;
    return FilePermissions{.ownerAccountName = detail::accountName(info->st_uid),
                           .groupOwnerAccountName = groupName(info->st_gid),
                           .ownerAccountID = info->st_uid,
                           .groupOwnerAccountID = info->st_gid,
                           .permissions = info->st_mode & mask};
}

std::optional<FilePermissions> permissionsAtPathByDeletingLastPathComponent(
    const Path& path, PermissionOptions options) {
    if (!detail::isUsable(path)) return std::nullopt;
    return permissionsAtPath(std::string(detail::parentOf(path.bytes())), options);
}

}  // namespace velmo
