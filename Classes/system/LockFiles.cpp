// A lock is written to a name of its own and moved to its place, so that nobody reads half of one;
// and unless an old one is to be taken over, the move fails where another lock has come between.
#include <velmocore/system/LockFiles.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <optional>

#include <velmocore/platform/PropertyList.h>

#include "platform/Files.h"
#include "system/AccountNames.h"
#include "system/FileErrors.h"
#include "system/Folders.h"
#include "system/NewPlace.h"
#include "system/PathBytes.h"

namespace velmo {
namespace {

using detail::FileCalls;
using detail::NewPlace;
using detail::Occupied;

constexpr std::u16string_view UserName = u"userName", ProcessNumber = u"processNumber";
/// No lock is longer, in bytes.
constexpr std::size_t LongestLock = 0x10000;
/// How often a lock may come and go while one is wanted.
constexpr int MostTries = 100;

String userName() {
    String name = detail::accountName(::getuid());
    return name.isAbsent() ? String::fromUTF8(std::to_string(::getuid())) : name;
}

std::optional<PropertyList> readLock(const std::string& path) {
    const auto bytes = detail::readRegularFile(path, LongestLock);
    auto list = bytes ? propertyListFromData(*bytes) : std::nullopt;
    if (list && !list->as<PropertyListDictionary>()) list.reset();
    return list;
}

std::optional<Data> newLock() {
    const PropertyListDictionary lock = {{UserName, {userName()}},
                                         {ProcessNumber, {static_cast<std::int64_t>(::getpid())}}};
    return dataFromPropertyList({lock}, PropertyListFormat::XML);
}

bool writeLock(FileCalls& calls, const std::string& path, Occupied occupied) {
    const detail::Place place = detail::placeOf(calls, path);
    const auto bytes = newLock();
    if (!place || !bytes) return false;
    NewPlace fresh(calls, place.folder.number());
    detail::OpenFile file = fresh.makeFile(0666);
    return file && file.write(*bytes) && calls.fsync(file.number()) == 0 && file.close() &&
           fresh.become(place.name, occupied);
}

/// What can be looked at as a whole number, is one.
bool isNumber(const PropertyList* value, std::int64_t number) {
    if (!value) return false;
    if (const auto* whole = value->as<std::int64_t>()) return *whole == number;
    const auto* real = value->as<double>();
    return real && *real >= 0 && *real < 0x1p62 && static_cast<std::int64_t>(*real) == number;
}

}  // namespace

Path lockFileAtPath(const Path& path, LockOptions options) {
    if (!detail::isUsable(path)) return {};
    FileCalls& calls = FileCalls::current();
    const std::string lock = std::string(detail::trimmedPath(path.bytes())) + ".lock";
    if (const auto parent = detail::parentOf(lock); !parent.empty())
        detail::makeFolders(calls, std::string(parent));
    for (int tries = 0; tries < MostTries; ++tries) {
        if (!options.override && readLock(lock)) return {};
        const bool isThere = detail::infoOf(calls, AT_FDCWD, lock).has_value();
        if (writeLock(calls, lock, isThere ? Occupied::IsReplaced : Occupied::Fails)) return lock;
        if (isThere || errno != EEXIST) return {};
    }
    return {};
}

bool unlockFileAtPath(const Path& lockPath) {
    if (!detail::isUsable(lockPath)) return false;
    const auto lock = readLock(lockPath.bytes());
    if (!lock) return false;
    const String* user = lock->string(UserName);
    return user && *user == userName() && isNumber(lock->valueForKey(ProcessNumber), ::getpid()) &&
           FileCalls::current().unlink(lockPath.c_str()) == 0;
}

}  // namespace velmo
