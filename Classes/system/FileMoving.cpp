#include <velmocore/system/FileMoving.h>

#include <fcntl.h>
#include <fmt/core.h>

#include <cerrno>

#include <velmocore/platform/Log.h>

#include "system/FileErrors.h"
#include "system/NewPlace.h"
#include "system/PathBytes.h"
#include "system/Removal.h"
#include "system/TreeCopy.h"
#include "system/TreeWalk.h"

namespace velmo {
namespace {

using detail::FileCalls;
using detail::NewPlace;
using detail::Occupied;
using detail::Place;

bool copy(FileCalls& calls, const Place& from, const Place& to) {
    // Told before the work of copying is done; and once more when the copy is moved to its name.
    if (detail::infoOf(calls, to.folder.number(), to.name)) return detail::refused(EEXIST);
    NewPlace place(calls, to.folder.number());
    return detail::copyTree(calls, from.folder.number(), from.name, place) &&
           place.become(to.name, Occupied::Fails);
}

bool move(FileCalls& calls, const Place& from, const Place& to) {
    if (detail::moveName(calls, from.folder.number(), from.name, to.folder.number(), to.name,
                         Occupied::Fails))
        return true;
    return errno == EXDEV && copy(calls, from, to) &&
           detail::removeTree(calls, from.folder.number(), from.name);
}

template <class Work>
bool withPlaces(const Path& path, const Path& toPath, Error* error, Work work) {
    const bool isUsable = detail::isUsable(path) && detail::isUsable(toPath);
    if (!isUsable) return detail::reported(detail::refused(EINVAL), error, path.bytes());
    FileCalls& calls = FileCalls::current();
    const Place from = detail::placeOf(calls, path.bytes());
    if (!from) return detail::reported(false, error, path.bytes());
    const Place to = detail::placeOf(calls, toPath.bytes());
    return detail::reported(to && work(calls, from, to), error, toPath.bytes());
}

bool remove(const std::string& path) {
    FileCalls& calls = FileCalls::current();
    const Place place = detail::placeOf(calls, path);
    return place && detail::removeTree(calls, place.folder.number(), place.name);
}

bool isGone(const std::string& path) {
    const std::string trimmed(detail::trimmedPath(path));
    return !detail::infoOf(FileCalls::current(), AT_FDCWD, trimmed) &&
           (errno == ENOENT || errno == ENOTDIR);
}

}  // namespace

bool copyPath(const Path& path, const Path& toPath, Error* error) {
    return withPlaces(path, toPath, error, copy);
}

bool movePath(const Path& path, const Path& toPath, Error* error) {
    return withPlaces(path, toPath, error, move);
}

bool renamePath(const Path& path, const Path& name) {
    if (!detail::isUsable(path) || !detail::isUsable(name) || !detail::isPlainName(name.bytes()))
        return false;
    return movePath(path, detail::joinedPath(detail::parentOf(path.bytes()), name.bytes()));
}

void detail::removeQuietly(const std::string& path) { remove(path); }

bool removePath(const Path& path, Error* error) {
    if (error) *error = {};
    if (!detail::isUsable(path)) return false;
    if (remove(path.bytes())) return true;
    const int number = errno;
    if (isGone(path.bytes()) || unlinkFileAtPath(path)) return true;
    log(fmt::format("Couldn't remove path {}", path.bytes()));
    errno = number;
    return detail::reported(false, error, path.bytes());
}

bool unlinkFileAtPath(const Path& path) {
    return detail::isUsable(path) && FileCalls::current().unlink(path.c_str()) == 0;
}

}  // namespace velmo
