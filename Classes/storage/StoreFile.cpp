// Opening is done with care for what else may stand under a name: a pipe or a device is neither
// waited for nor taken, and a file that was replaced between opening and locking it is opened anew,
// as a lock on a file without a name keeps nobody out.
#include "storage/StoreFile.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <optional>

#include <velmocore/platform/Log.h>
#include <velmocore/system/FileCreation.h>

namespace velmo::detail {
namespace {

constexpr mode_t UsualMode = 0666;
constexpr int MostTries = 100;
constexpr int AnyFlags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

struct OpenMode {
    int flags, lock;
    bool isCreated;
};

OpenMode modeOf(StoreAccess access) {
    switch (access) {
        case StoreAccess::ReadAndWrite:
            return {O_RDWR, LOCK_EX, true};
        case StoreAccess::Append:
            return {O_WRONLY | O_APPEND | O_CREAT, LOCK_EX, true};
        default:
            return {O_RDONLY, LOCK_SH, false};
    }
}

bool isUsable(const Path& path) { return !path.isAbsent() && !path.bytes().empty(); }

int openRetrying(FileCalls& calls, const Path& path, int flags) {
    int file;
    do file = calls.open(path.c_str(), flags | AnyFlags, UsualMode);
    while (file < 0 && errno == EINTR);
    return file;
}

/// Has the names in a folder stored. Some file systems have no such thing and say so.
bool synchronizeFolderOf(FileCalls& calls, const Path& path) {
    const std::filesystem::path parent = path.filesystemPath().parent_path();
    const int folder = openRetrying(calls, parent.empty() ? std::filesystem::path(".") : parent,
                                    O_RDONLY | O_DIRECTORY);
    if (folder < 0) return errno == EACCES;  // may be written and not read
    const bool isStored = calls.fsync(folder) == 0 || errno == EINVAL;
    return calls.close(folder) == 0 && isStored;
}

/// True if something of that name is there, whatever it is. Without its name stored too, a new file
/// would be lost in a crash of the machine, with all that is stored in it.
bool createStoredFile(FileCalls& calls, const Path& path) {
    if (struct stat info; ::stat(path.c_str(), &info) == 0) return true;
    const FileCallsInstead these(calls);
    return createFile(path) && synchronizeFolderOf(calls, path);
}

bool isStill(FileCalls& calls, int file, const Path& path) {
    struct stat own, named;
    return calls.fstat(file, own) == 0 && ::stat(path.c_str(), &named) == 0 &&
           own.st_dev == named.st_dev && own.st_ino == named.st_ino;
}

bool isRegular(FileCalls& calls, int file) {
    struct stat info;
    if (calls.fstat(file, info) != 0) return false;
    if (!S_ISREG(info.st_mode)) errno = EINVAL;
    return S_ISREG(info.st_mode);
}

/// Makes a file ready that was opened and locked. What says where to write is the offset alone from
/// now on, so that a write can be done again after it failed. That the pages of what is appended
/// are not wanted soon is a hint, and nothing comes of its failing.
bool settle(int file, StoreAccess access) {
    if (access == StoreAccess::Append) ::posix_fadvise(file, 0, 0, POSIX_FADV_NOREUSE);
    return ::fcntl(file, F_SETFL, 0) == 0;
}

}  // namespace

std::unique_ptr<BufferedFile> openStoreFile(FileCalls& calls, const Path& path,
                                            StoreAccess access) {
    if (!isUsable(path)) return nullptr;
    const OpenMode mode = modeOf(access);
    for (int tries = 0; tries < MostTries; ++tries) {
        if (mode.isCreated && !createStoredFile(calls, path)) return nullptr;
        const int number = openRetrying(calls, path, mode.flags);
        if (number < 0) return nullptr;
        auto file = std::make_unique<BufferedFile>(calls, number, access);
        if (!isRegular(calls, number)) {
            log(fmt::format("Failed fdopen: {} {}", path.bytes(), errno));
            return nullptr;
        }
        if (calls.flock(number, mode.lock | LOCK_NB) != 0) return nullptr;
        if (!settle(number, access)) return nullptr;
        if (isStill(calls, number, path)) return file;
    }
    return nullptr;
}

std::unique_ptr<BufferedFile> openForReadingToo(const BufferedFile& file, const Path& path) {
    if (!isUsable(path) || !isStill(file.calls(), file.descriptor(), path)) return nullptr;
    const int number = openRetrying(file.calls(), path, O_RDONLY);
    if (number < 0) return nullptr;
    auto other = std::make_unique<BufferedFile>(file.calls(), number, StoreAccess::Read);
    return isStill(file.calls(), number, path) ? std::move(other) : nullptr;
}

NewStoreFile::NewStoreFile(FileCalls& calls, const Path& path) : calls_(calls) {
    static std::atomic<unsigned> serial = 0;
    if (!isUsable(path)) return;
    std::error_code error;
    const auto target = std::filesystem::weakly_canonical(path.filesystemPath(), error);
    if (error) return;
    target_ = target;
    for (int tries = 0; tries < MostTries && !isThere_; ++tries) {
        name_ = target.parent_path() / fmt::format(".velmo-{}-{}", ::getpid(), serial++);
        const int number = openRetrying(calls, name_, O_RDWR | O_CREAT | O_EXCL);
        if (number < 0 && errno != EEXIST) return;
        if (number < 0) continue;
        isThere_ = true;
        file_ = std::make_unique<BufferedFile>(calls, number, StoreAccess::ReadAndWrite);
        if (calls.flock(number, LOCK_EX | LOCK_NB) != 0) file_ = nullptr;
    }
}

NewStoreFile::~NewStoreFile() {
    if (isThere_) calls_.unlink(name_.c_str());
}

bool NewStoreFile::become(const BufferedFile& file) {
    struct stat old;
    if (::stat(target_.c_str(), &old) == 0 && ::fchmod(file.descriptor(), old.st_mode & 0777) != 0)
        return false;
    if (calls_.rename(name_.c_str(), target_.c_str()) != 0) return false;
    isThere_ = false;
    return synchronizeFolderOf(calls_, target_);
}

FileMapping::FileMapping(int file) {
    struct stat info;
    if (::fstat(file, &info) != 0 || !S_ISREG(info.st_mode)) return;
    isWhole_ = info.st_size == 0;
    if (isWhole_) return;
    length_ = static_cast<std::size_t>(info.st_size);
    start_ = ::mmap(nullptr, length_, PROT_READ, MAP_PRIVATE, file, 0);
    isWhole_ = start_ != MAP_FAILED;
    if (isWhole_) return;
    start_ = nullptr;
    length_ = 0;
}

void FileMapping::release(Bytes bytes) {
    const std::uintptr_t page = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
    const auto start = reinterpret_cast<std::uintptr_t>(bytes.data());
    const std::uintptr_t from = (start + page - 1) / page * page;
    const std::uintptr_t to = (start + bytes.size()) / page * page;
    // A hint, of which nothing depends.
    if (from < to)
        static_cast<void>(::madvise(reinterpret_cast<void*>(from), to - from, MADV_DONTNEED));
}

FileMapping::~FileMapping() {
    if (start_) ::munmap(start_, length_);
}

}  // namespace velmo::detail
