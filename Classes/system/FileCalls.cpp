#include "system/FileCalls.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

namespace velmo::detail {
namespace {

thread_local FileCalls* instead = nullptr;

}  // namespace

int FileCalls::open(const char* path, int flags, mode_t mode) { return ::open(path, flags, mode); }
int FileCalls::openat(int folder, const char* path, int flags, mode_t mode) {
    return ::openat(folder, path, flags, mode);
}
int FileCalls::close(int file) { return ::close(file); }
ssize_t FileCalls::read(int file, void* bytes, std::size_t count) {
    return ::read(file, bytes, count);
}
ssize_t FileCalls::write(int file, const void* bytes, std::size_t count) {
    return ::write(file, bytes, count);
}
ssize_t FileCalls::pread(int file, void* bytes, std::size_t count, off_t offset) {
    return ::pread(file, bytes, count, offset);
}
ssize_t FileCalls::pwrite(int file, const void* bytes, std::size_t count, off_t offset) {
    return ::pwrite(file, bytes, count, offset);
}
int FileCalls::fstat(int file, struct stat& info) { return ::fstat(file, &info); }
int FileCalls::fstatat(int folder, const char* path, struct stat& info, int flags) {
    return ::fstatat(folder, path, &info, flags);
}
int FileCalls::ftruncate(int file, off_t length) { return ::ftruncate(file, length); }
int FileCalls::fchmod(int file, mode_t mode) { return ::fchmod(file, mode); }
int FileCalls::futimens(int file, const timespec times[2]) { return ::futimens(file, times); }
int FileCalls::fsync(int file) { return ::fsync(file); }
int FileCalls::flock(int file, int operation) { return ::flock(file, operation); }
int FileCalls::rename(const char* from, const char* to) { return std::rename(from, to); }
int FileCalls::renameat2(int fromFolder, const char* from, int toFolder, const char* to,
                         unsigned flags) {
    return ::renameat2(fromFolder, from, toFolder, to, flags);
}
int FileCalls::unlink(const char* path) { return ::unlink(path); }
int FileCalls::unlinkat(int folder, const char* path, int flags) {
    return ::unlinkat(folder, path, flags);
}
int FileCalls::mkdirat(int folder, const char* path, mode_t mode) {
    return ::mkdirat(folder, path, mode);
}
int FileCalls::symlinkat(const char* target, int folder, const char* path) {
    return ::symlinkat(target, folder, path);
}
ssize_t FileCalls::readlinkat(int folder, const char* path, char* target, std::size_t size) {
    return ::readlinkat(folder, path, target, size);
}
dirent* FileCalls::readdir(DIR* folder) { return ::readdir(folder); }

FileCalls& FileCalls::system() noexcept {
    static FileCalls calls;
    return calls;
}

FileCalls& FileCalls::current() noexcept { return instead ? *instead : system(); }

FileCallsInstead::FileCallsInstead(FileCalls& calls) noexcept
    : former_(std::exchange(instead, &calls)) {}
FileCallsInstead::~FileCallsInstead() { instead = former_; }

}  // namespace velmo::detail
