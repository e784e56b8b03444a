#include "storage/FileCalls.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdio>

namespace velmo::detail {

int FileCalls::open(const char* path, int flags, mode_t mode) { return ::open(path, flags, mode); }
int FileCalls::close(int file) { return ::close(file); }
ssize_t FileCalls::pread(int file, void* bytes, std::size_t count, off_t offset) {
    return ::pread(file, bytes, count, offset);
}
ssize_t FileCalls::pwrite(int file, const void* bytes, std::size_t count, off_t offset) {
    return ::pwrite(file, bytes, count, offset);
}
int FileCalls::fstat(int file, struct stat& info) { return ::fstat(file, &info); }
int FileCalls::ftruncate(int file, off_t length) { return ::ftruncate(file, length); }
int FileCalls::fsync(int file) { return ::fsync(file); }
int FileCalls::flock(int file, int operation) { return ::flock(file, operation); }
int FileCalls::rename(const char* from, const char* to) { return std::rename(from, to); }
int FileCalls::unlink(const char* path) { return ::unlink(path); }

FileCalls& FileCalls::system() noexcept {
    static FileCalls calls;
    return calls;
}

}  // namespace velmo::detail
