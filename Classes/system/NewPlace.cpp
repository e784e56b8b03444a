#include "system/NewPlace.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>

#include "system/FileErrors.h"
#include "system/PathBytes.h"
#include "system/TreeWalk.h"

namespace velmo::detail {

Place placeOf(FileCalls& calls, const std::string& path) {
    const std::string parent(parentOf(path)), name(nameOf(path));
    Place place;
    place.name = name;
    if (isPlainName(name))
        place.folder =
            OpenFile(calls, AT_FDCWD, parent.empty() ? "." : parent, O_PATH | O_DIRECTORY);
    else
        errno = EINVAL;
    return place;
}

bool moveName(FileCalls& calls, int fromFolder, const std::string& from, int toFolder,
              const std::string& to, Occupied occupied) {
    const unsigned flags = occupied == Occupied::Fails ? RENAME_NOREPLACE : 0;
    if (calls.renameat2(fromFolder, from.c_str(), toFolder, to.c_str(), flags) == 0) return true;
    if ((errno != EINVAL && errno != ENOSYS) || flags == 0) return false;
    // Some file systems cannot do both in one step, and the check before is the best there is.
    if (infoOf(calls, toFolder, to)) return refused(EEXIST);
    if (errno != ENOENT) return false;
    return calls.renameat2(fromFolder, from.c_str(), toFolder, to.c_str(), 0) == 0;
}

NewPlace::NewPlace(FileCalls& calls, int folder) : calls_(calls), folder_(folder) {
    static std::atomic<unsigned> serial = 0;
    // Left over from a process of that number that was killed, one may be in the way.
    do name_ = fmt::format(".velmo-{}-{}", ::getpid(), serial++);
    while (infoOf(calls, folder, name_));
}

NewPlace::~NewPlace() {
    const int number = errno;  // why it was not wanted in the end
    if (isMade_) removeTree(calls_, folder_, name_);
    errno = number;
}

bool NewPlace::made(bool isDone) {
    isMade_ = isMade_ || isDone;
    return isDone;
}

OpenFile NewPlace::makeFile(mode_t mode) {
    OpenFile file(calls_, folder_, name_, O_RDWR | O_CREAT | O_EXCL, mode);
    made(static_cast<bool>(file));
    return file;
}

bool NewPlace::makeFolder(mode_t mode) {
    return made(calls_.mkdirat(folder_, name_.c_str(), mode) == 0);
}

bool NewPlace::makeLink(const std::string& target) {
    return made(calls_.symlinkat(target.c_str(), folder_, name_.c_str()) == 0);
}

bool NewPlace::become(const std::string& name, Occupied occupied) {
    if (!moveName(calls_, folder_, name_, folder_, name, occupied)) return false;
    isMade_ = false;
    return true;
}

}  // namespace velmo::detail
