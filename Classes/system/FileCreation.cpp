// Nothing is looked at first and made then where one call does both: others may make the same
// meanwhile, and both are to succeed.
#include <velmocore/system/FileCreation.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <new>
#include <vector>

#include <velmocore/system/FileMoving.h>
#include <velmocore/text/Encodings.h>

#include "platform/ExceptionLog.h"
#include "platform/Files.h"
#include "system/FileErrors.h"
#include "system/Folders.h"
#include "system/OpenFile.h"
#include "system/PathBytes.h"
#include "system/Removal.h"

namespace velmo {
namespace {

using detail::FileCalls;
using detail::OpenFile;

bool isThere(const Path& path) {
    return detail::infoBehindLinks(FileCalls::current(), path.bytes()).has_value();
}

bool isFolder(FileCalls& calls, const std::string& path) {
    const auto info = detail::infoBehindLinks(calls, path);
    return info && S_ISDIR(info->st_mode);
}

bool makeFile(const Path& path) {
    OpenFile file(FileCalls::current(), AT_FDCWD, path.bytes(), O_WRONLY | O_CREAT);
    return file && file.close();
}

Path parentPath(const Path& path) { return std::string(detail::parentOf(path.bytes())); }

void makeFoldersAbove(const Path& path) {
    const Path parent = parentPath(path);
    if (!parent.bytes().empty()) detail::makeFolders(FileCalls::current(), parent.bytes());
}

/// What was asked for and has not been given by the making of the folder.
bool giveAttributes(const std::string& path, const FilePermissions& attributes) {
    const OpenFile folder(FileCalls::current(), AT_FDCWD, path, O_RDONLY | O_DIRECTORY);
    constexpr auto Same = static_cast<std::uint32_t>(-1);
    const uid_t owner = attributes.ownerAccountID.value_or(Same);
    const gid_t group = attributes.groupOwnerAccountID.value_or(Same);
    if (!folder) return false;
    if ((owner != Same || group != Same) && ::fchown(folder.number(), owner, group) != 0)
        return false;
    return !attributes.permissions ||
           FileCalls::current().fchmod(folder.number(), *attributes.permissions & 07777) == 0;
}

bool truncateRegular(const OpenFile& file) {
    const auto info = file.info();
    // A device has no end that one could move.
    return info && (!S_ISREG(info->st_mode) || file.calls().ftruncate(file.number(), 0) == 0);
}

}  // namespace

bool detail::makeFolders(FileCalls& calls, const std::string& path, mode_t mode) {
    std::vector<std::string> missing;  // the deepest first
    std::string folder(trimmedPath(path));
    mode_t own = mode;
    while (calls.mkdirat(AT_FDCWD, folder.c_str(), own) != 0) {
        if (errno == EEXIST) break;
        const std::string parent(parentOf(folder));
        if (errno != ENOENT || parent.empty() || parent == folder) return isFolder(calls, path);
        missing.push_back(std::move(folder));
        folder = parent;
        own = 0777;
    }
    for (; !missing.empty(); missing.pop_back())
        if (calls.mkdirat(AT_FDCWD, missing.back().c_str(), missing.size() == 1 ? mode : 0777) !=
                0 &&
            errno != EEXIST)
            return false;
    return isFolder(calls, path);
}

bool createFile(const Path& path) {
    return detail::isUsable(path) && (isThere(path) || makeFile(path));
}

bool createPathAndFile(const Path& path) {
    if (!detail::isUsable(path)) return false;
    if (isThere(path)) return true;
    makeFoldersAbove(path);
    return makeFile(path);
}

bool createPath(const Path& path, const FilePermissions& attributes) {
    if (!detail::isUsable(path)) return false;
    FileCalls& calls = FileCalls::current();
    if (isThere(path)) return isFolder(calls, path.bytes());
    // Never open to others, not even for a moment, and to be opened once more here.
    const mode_t mode = (attributes.permissions.value_or(0777) & 0777) | 0700;
    return detail::makeFolders(calls, path.bytes(), mode) &&
           giveAttributes(path.bytes(), attributes);
}

bool createPathToFile(const Path& path, const FilePermissions& attributes) {
    return detail::isUsable(path) && createPath(parentPath(path), attributes);
}

bool createPath(const Path& path, const Path& previousPath) {
    if (!detail::isUsable(path) || isThere(path)) return false;
    if (!previousPath.bytes().empty() && isFolder(FileCalls::current(), previousPath.bytes()))
        return movePath(previousPath, path);
    return createPath(path);
}

bool createWritableTemporaryPath(const Path& path) {
    if (!detail::isUsable(path)) return false;
    detail::removeQuietly(path.bytes());
    return createPath(path) && ::access(path.c_str(), W_OK) == 0;
}

bool createPathAndWriteObject(ObjectWriter writer, const Path& path, bool atomically) {
    if (!writer || !detail::isUsable(path)) return false;
    makeFoldersAbove(path);
    try {
        return writer(path, atomically);
    } catch (const std::bad_alloc&) {
        throw;  // nothing that the object did wrong
    } catch (const std::exception& exception) {
        detail::logException("createPathAndWriteObject:toFile:atomically:", "FileManager",
                             "exception", exception.what());
    } catch (...) {
        detail::logException("createPathAndWriteObject:toFile:atomically:", "FileManager",
                             "unknown", "");
    }
    return false;
}

bool createPathAndWriteObject(Bytes data, const Path& path, bool atomically) {
    const auto write = [data](const Path& to, bool whole) {
        return detail::writeFile(to.bytes(), data, whole);
    };
    return createPathAndWriteObject(write, path, atomically);
}

bool writeData(Bytes data, const Path& path, WriteOptions options) {
    if (!createFile(path)) return false;
    const int flags = O_WRONLY | (options.append ? O_APPEND : 0);
    OpenFile file(FileCalls::current(), AT_FDCWD, path.bytes(), flags);
    // What is no regular file may take the bytes bit by bit, and is waited for from here on.
    return file && ::fcntl(file.number(), F_SETFL, options.append ? O_APPEND : 0) == 0 &&
           (options.append || truncateRegular(file)) && file.write(data) && file.close();
}

bool writeString(const String& string, const Path& path, WriteOptions options) {
    if (string.isAbsent() || string.length() == 0) return false;
    const auto data = dataUsingEncoding(string, defaultEncoding());
    return data && writeData(*data, path, options);
}

}  // namespace velmo
