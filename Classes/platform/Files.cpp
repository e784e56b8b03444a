// Writing without a moment at which half of a file can be seen, and reading that neither hangs
// nor fills memory.
//
// A file is replaced by a fresh one in the same folder, since a name can be moved within a file
// system only. The folder is opened once and the names are looked up in it, so that the path of
// the fresh file cannot be longer than allowed, and the two are in one folder even if somebody
// moves it meanwhile.
#include "platform/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <utility>

namespace velmo::detail {
namespace {

constexpr int MaxLinks = 40;  // as the system has it
constexpr int MaxAttempts = 100;

class File {
public:
    File() = default;
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() { close(); }

    bool open(int folder, const std::string& path, int flags) {
        descriptor_ = ::openat(folder, path.c_str(), flags | O_CLOEXEC, 0666);
        return descriptor_ >= 0;
    }
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
    int descriptor_ = -1;
};

/// Names a file for the system; none that a NUL would silently cut.
bool isUsable(const std::string& path) {
    return !path.empty() && path.find('\0') == std::string::npos;
}

/// A path as a folder and a name in it.
struct Place {
    std::string folder, name;

    explicit Place(const std::string& path) {
        const std::size_t slash = path.rfind('/');
        if (slash == std::string::npos)
            folder = ".", name = path;
        else
            folder = path.substr(0, slash + 1), name = path.substr(slash + 1);
    }
};

/// What a symbolic link says; absent if the path is none.
std::optional<std::string> targetOfLink(const std::string& path) {
    std::array<char, PATH_MAX> target;
    const ssize_t length = ::readlink(path.c_str(), target.data(), target.size());
    if (length <= 0 || length == static_cast<ssize_t>(target.size())) return std::nullopt;
    return std::string(target.data(), static_cast<std::size_t>(length));
}

/// The path that links lead to, whether there is anything or not; absent if they go round.
std::optional<std::string> followed(std::string path) {
    for (int links = 0; links <= MaxLinks; ++links) {
        const std::optional<std::string> target = targetOfLink(path);
        if (!target) return path;
        path = target->starts_with('/') ? *target : Place(path).folder + *target;
    }
    return std::nullopt;
}

/// A new file in a folder, under a name that nobody else has. It is short whatever the name of
/// the file that it is to become, which may be as long as the file system allows.
class FreshFile {
public:
    explicit FreshFile(const File& folder) : folder_(folder) {
        static std::atomic<unsigned> serial = 0;
        for (int attempt = 0; attempt < MaxAttempts; ++attempt) {
            name_ = ".velmo-" + std::to_string(::getpid()) + "-" + std::to_string(serial++);
            exists_ = file_.open(folder.descriptor(), name_, O_WRONLY | O_CREAT | O_EXCL);
            if (exists_ || errno != EEXIST) return;
        }
    }
    ~FreshFile() {
        if (exists_) ::unlinkat(folder_.descriptor(), name_.c_str(), 0);
    }

    bool exists() const { return exists_; }
    File& file() { return file_; }
    /// Takes the place of the file of that name.
    bool become(const std::string& name) {
        const int folder = folder_.descriptor();
        if (::renameat(folder, name_.c_str(), folder, name.c_str()) != 0) return false;
        exists_ = false;
        return true;
    }

private:
    const File& folder_;
    std::string name_;
    File file_;
    bool exists_ = false;
};

/// Gives the file the owner and the permissions of another. Rights that come with the owner are
/// not given away with a file that another one comes to own.
bool adopt(const File& file, const struct stat& old) {
    const bool sameOwner = ::fchown(file.descriptor(), old.st_uid, old.st_gid) == 0;
    return ::fchmod(file.descriptor(), old.st_mode & (sameOwner ? 07777 : 0777)) == 0;
}

bool replaceFile(const std::string& path, Bytes bytes) {
    const std::optional<std::string> target = followed(path);
    if (!target) return false;
    const Place place(*target);
    File folder;
    if (!folder.open(AT_FDCWD, place.folder, O_PATH | O_DIRECTORY)) return false;
    struct stat old;
    const bool hasOld = ::fstatat(folder.descriptor(), place.name.c_str(), &old, 0) == 0;
    if (hasOld ? !S_ISREG(old.st_mode) : errno != ENOENT) return false;
    FreshFile fresh(folder);
    return fresh.exists() && (!hasOld || adopt(fresh.file(), old)) && fresh.file().write(bytes) &&
           ::fsync(fresh.file().descriptor()) == 0 && fresh.file().close() &&
           fresh.become(place.name);
}

std::optional<Data> readAll(const File& file, const struct stat& info, std::size_t limit) {
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
        if (length > limit) return std::nullopt;
    }
    data.resize(length);
    return data;
}

}  // namespace

std::optional<Data> readFile(const std::string& path) {
    File file;
    struct stat info;
    if (!isUsable(path) || !file.open(AT_FDCWD, path, O_RDONLY) ||
        ::fstat(file.descriptor(), &info) != 0 || S_ISDIR(info.st_mode))
        return std::nullopt;
    return readAll(file, info, SIZE_MAX);
}

std::optional<Data> readRegularFile(const std::string& path, std::size_t limit) {
    File file;
    struct stat info;
    if (!isUsable(path) || !file.open(AT_FDCWD, path, O_RDONLY | O_NONBLOCK | O_NOCTTY) ||
        ::fstat(file.descriptor(), &info) != 0 || !S_ISREG(info.st_mode) ||
        static_cast<std::uint64_t>(info.st_size) > limit)
        return std::nullopt;
    return readAll(file, info, limit);
}

bool writeFile(const std::string& path, Bytes bytes, bool atomically) {
    if (!isUsable(path)) return false;
    if (atomically) return replaceFile(path, bytes);
    File file;
    return file.open(AT_FDCWD, path, O_WRONLY | O_CREAT | O_TRUNC) && file.write(bytes) &&
           file.close();
}

}  // namespace velmo::detail
