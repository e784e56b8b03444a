// The calls of the system by which stores reach their files. They stand behind one class so that
// a test can make any of them fail, fall short or find the disk full.
//
// Each is the call of the same name: what it returns, and errno with it. Interrupted calls and short
// counts are not mended here but where the calls are used.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>

#include <velmocore/platform/Export.h>

namespace velmo::detail {

class VELMO_API FileCalls {
public:
    virtual ~FileCalls() = default;

    virtual int open(const char* path, int flags, mode_t mode);
    virtual int close(int file);
    virtual ssize_t pread(int file, void* bytes, std::size_t count, off_t offset);
    virtual ssize_t pwrite(int file, const void* bytes, std::size_t count, off_t offset);
    virtual int fstat(int file, struct stat& info);
    virtual int ftruncate(int file, off_t length);
    virtual int fsync(int file);
    virtual int flock(int file, int operation);
    virtual int rename(const char* from, const char* to);
    virtual int unlink(const char* path);

    /// Those of the system; they live as long as the program.
    static FileCalls& system() noexcept;
};

}  // namespace velmo::detail
