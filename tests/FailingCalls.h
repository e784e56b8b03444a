// The calls of the system by which files are reached, of which one fails.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include "system/FileCalls.h"

namespace velmo::test {

/// The call with that number fails, in one way or another; of a full disk, all behind it that write.
class FailingCalls : public detail::FileCalls {
public:
    enum class Way { Fails, IsShort, FindsDiskFull, IsInterrupted };

    std::size_t calls = 0, failing = SIZE_MAX;
    Way way = Way::Fails;
    bool hasFailed = false;
    bool hasFailedToRemove = false;  ///< so that what was to go may still be there

    int open(const char* path, int flags, mode_t mode) override {
        return failed() ? -1 : FileCalls::open(path, flags, mode);
    }
    int openat(int folder, const char* path, int flags, mode_t mode) override {
        return failed() ? -1 : FileCalls::openat(folder, path, flags, mode);
    }
    int close(int file) override { return failed() ? (FileCalls::close(file), -1) : FileCalls::close(file); }
    ssize_t read(int file, void* bytes, std::size_t count) override {
        if (!failed()) return FileCalls::read(file, bytes, count);
        return way == Way::IsShort ? FileCalls::read(file, bytes, (count + 1) / 2) : -1;
    }
    ssize_t pread(int file, void* bytes, std::size_t count, off_t offset) override {
        if (!failed()) return FileCalls::pread(file, bytes, count, offset);
        return way == Way::IsShort ? FileCalls::pread(file, bytes, (count + 1) / 2, offset) : -1;
    }
    ssize_t write(int file, const void* bytes, std::size_t count) override {
        return partly(count, [&](std::size_t some) { return FileCalls::write(file, bytes, some); });
    }
    ssize_t pwrite(int file, const void* bytes, std::size_t count, off_t offset) override {
        return partly(count, [&](std::size_t some) { return FileCalls::pwrite(file, bytes, some, offset); });
    }
    int fstat(int file, struct stat& info) override { return failed() ? -1 : FileCalls::fstat(file, info); }
    int ftruncate(int file, off_t length) override { return failed() ? -1 : FileCalls::ftruncate(file, length); }
    int fchmod(int file, mode_t mode) override { return failed() ? -1 : FileCalls::fchmod(file, mode); }
    int futimens(int file, const timespec times[2]) override {
        return failed() ? -1 : FileCalls::futimens(file, times);
    }
    int fsync(int file) override { return failed() ? -1 : FileCalls::fsync(file); }
    int flock(int file, int operation) override { return failed() ? -1 : FileCalls::flock(file, operation); }
    int rename(const char* from, const char* to) override { return failed() ? -1 : FileCalls::rename(from, to); }
    int renameat2(int folder, const char* from, int toFolder, const char* to, unsigned flags) override {
        return failed() ? -1 : FileCalls::renameat2(folder, from, toFolder, to, flags);
    }
    int unlink(const char* path) override { return removed(failed() ? -1 : FileCalls::unlink(path)); }
    int unlinkat(int folder, const char* path, int flags) override {
        return removed(failed() ? -1 : FileCalls::unlinkat(folder, path, flags));
    }
    int mkdirat(int folder, const char* path, mode_t mode) override {
        return failed() ? -1 : FileCalls::mkdirat(folder, path, mode);
    }
    int symlinkat(const char* target, int folder, const char* path) override {
        return failed() ? -1 : FileCalls::symlinkat(target, folder, path);
    }
    ssize_t readlinkat(int folder, const char* path, char* target, std::size_t size) override {
        return failed() ? -1 : FileCalls::readlinkat(folder, path, target, size);
    }
    dirent* readdir(DIR* folder) override { return failed() ? nullptr : FileCalls::readdir(folder); }

private:
    bool failed() {
        const bool isBroken = way == Way::FindsDiskFull ? calls >= failing : calls == failing;
        ++calls;
        if (isBroken) hasFailed = true, errno = way == Way::IsInterrupted ? EINTR : way == Way::Fails ? EIO : ENOSPC;
        return isBroken;
    }
    int removed(int result) {
        hasFailedToRemove = hasFailedToRemove || result != 0;
        return result;
    }
    template <class Write>
    ssize_t partly(std::size_t count, Write write) {
        const bool wasFull = hasFailed;
        if (!failed()) return write(count);
        // A disk becomes full between two of its blocks; a call that fails has written nothing.
        const bool isPart = way == Way::IsShort || (way == Way::FindsDiskFull && !wasFull && count > 512);
        return isPart ? write((count + 1) / 2) : -1;
    }
};

}  // namespace velmo::test
