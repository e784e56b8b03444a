#include "platform/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

namespace velmo::detail {
namespace {

class File {
public:
    File(const std::string& path, int flags, mode_t mode = 0666)
        : descriptor_(::open(path.c_str(), flags | O_CLOEXEC, mode)) {}
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() { close(); }

    explicit operator bool() const { return descriptor_ >= 0; }
    int descriptor() const { return descriptor_; }

    /// Some file systems report only here that the bytes could not be stored.
    bool close() {
        const int descriptor = std::exchange(descriptor_, -1);
        return descriptor < 0 || ::close(descriptor) == 0;
    }

    bool write(Bytes bytes) {
        while (!bytes.empty()) {
            const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) return false;
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        }
        return true;
    }

private:
    int descriptor_;
};

/// A name beside the path that no other thread or process uses.
std::string nameBeside(const std::string& path) {
    static std::atomic<unsigned> serial = 0;
    return path + ".velmo-" + std::to_string(::getpid()) + "-" + std::to_string(serial++);
}

/// The file that a path leads to through symbolic links; the path itself if there is none.
std::string resolved(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr),
                                                           &std::free);
    return real ? std::string(real.get()) : path;
}

bool replaceFile(const std::string& path, Bytes bytes) {
    const std::string target = resolved(path);
    const std::string fresh = nameBeside(target);
    File file(fresh, O_WRONLY | O_CREAT | O_EXCL);
    if (!file) return false;
    struct stat old;
    const bool hasOld = ::stat(target.c_str(), &old) == 0;
    const bool done = (!hasOld || ::fchmod(file.descriptor(), old.st_mode & 07777) == 0) &&
                      file.write(bytes) && ::fsync(file.descriptor()) == 0 && file.close() &&
                      std::rename(fresh.c_str(), target.c_str()) == 0;
    if (!done) ::unlink(fresh.c_str());
    return done;
}

}  // namespace

std::optional<Data> readFile(const std::string& path) {
    File file(path, O_RDONLY);
    struct stat info;
    if (!file || ::fstat(file.descriptor(), &info) != 0 || S_ISDIR(info.st_mode))
        return std::nullopt;
    // One byte more than the size, so that the end is seen in the same call.
    Data data(static_cast<std::size_t>(std::max<off_t>(info.st_size, 0)) + 1);
    std::size_t length = 0;
    for (;;) {
        if (length == data.size()) data.resize(data.size() * 2);
        const ssize_t count = ::read(file.descriptor(), data.data() + length, data.size() - length);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::nullopt;
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
    }
    data.resize(length);
    return data;
}

bool writeFile(const std::string& path, Bytes bytes, bool atomically) {
    if (atomically) return replaceFile(path, bytes);
    File file(path, O_WRONLY | O_CREAT | O_TRUNC);
    return file && file.write(bytes) && file.close();
}

}  // namespace velmo::detail
