// The calls of the system by which files are reached. They stand behind one class so that a test
// can make any of them fail, fall short or find the disk full.
//
// Each is the call of the same name: what it returns, and errno with it. Interrupted calls and
// short counts are not mended here but where the calls are used.
#pragma once

#include <dirent.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>

#include <velmocore/platform/Export.h>

namespace velmo::detail {

class VELMO_API FileCalls {
public:
    virtual ~FileCalls() = default;

    virtual int open(const char* path, int flags, mode_t mode);
    virtual int openat(int folder, const char* path, int flags, mode_t mode);
    virtual int close(int file);
    virtual ssize_t read(int file, void* bytes, std::size_t count);
    virtual ssize_t write(int file, const void* bytes, std::size_t count);
    virtual ssize_t pread(int file, void* bytes, std::size_t count, off_t offset);
    virtual ssize_t pwrite(int file, const void* bytes, std::size_t count, off_t offset);
    virtual int fstat(int file, struct stat& info);
    virtual int fstatat(int folder, const char* path, struct stat& info, int flags);
    virtual int ftruncate(int file, off_t length);
    virtual int fchmod(int file, mode_t mode);
    virtual int futimens(int file, const timespec times[2]);
    virtual int fsync(int file);
    virtual int flock(int file, int operation);
    virtual int rename(const char* from, const char* to);
    virtual int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
                          unsigned flags);
    virtual int unlink(const char* path);
    virtual int unlinkat(int folder, const char* path, int flags);
    virtual int mkdirat(int folder, const char* path, mode_t mode);
    virtual int symlinkat(const char* target, int folder, const char* path);
    virtual ssize_t readlinkat(int folder, const char* path, char* target, std::size_t size);
    virtual dirent* readdir(DIR* folder);

    /// Those of the system; they live as long as the program.
    static FileCalls& system() noexcept;
    /// Those by which this thread works: the system's, unless a test has put others in their place.
    static FileCalls& current() noexcept;
};

/// Puts other calls into the place of the system's, for this thread and as long as it lives.
class VELMO_API FileCallsInstead {
public:
    explicit FileCallsInstead(FileCalls& calls) noexcept;
    ~FileCallsInstead();
    FileCallsInstead(const FileCallsInstead&) = delete;
    FileCallsInstead& operator=(const FileCallsInstead&) = delete;

private:
    FileCalls* former_;
};

}  // namespace velmo::detail
