#include "system/OpenFile.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <memory>

namespace velmo::detail {
namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

}  // namespace

OpenFile::OpenFile(FileCalls& calls, int folder, const std::string& path, int flags, mode_t mode)
    : calls_(&calls) {
    do file_ = calls.openat(folder, path.c_str(), flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, mode);
    while (file_ < 0 && errno == EINTR);
}

std::optional<struct stat> OpenFile::info() const {
    struct stat info;
    if (calls_->fstat(file_, info) != 0) return std::nullopt;
    return info;
}

std::optional<std::size_t> OpenFile::read(std::span<std::uint8_t> buffer) {
    ssize_t count;
    do count = calls_->read(file_, buffer.data(), buffer.size());
    while (count < 0 && errno == EINTR);
    if (count < 0) return std::nullopt;
    return static_cast<std::size_t>(count);
}

bool OpenFile::write(Bytes bytes) {
    while (!bytes.empty()) {
        const ssize_t count = calls_->write(file_, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return true;
}

bool OpenFile::close() {
    const int file = std::exchange(file_, -1);
    // An interrupted close has closed the file, and all that was written before is with the system.
    return file < 0 || calls_->close(file) == 0 || errno == EINTR;
}

std::optional<std::vector<std::string>> namesInFolder(FileCalls& calls, int folder,
                                                      const std::string& path) {
    const int file =
        calls.openat(folder, path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK, 0);
    if (file < 0) return std::nullopt;
    const std::unique_ptr<DIR, CloseFolder> list(::fdopendir(file));
    if (!list) return calls.close(file), std::nullopt;
    std::vector<std::string> names;
    errno = 0;  // which alone tells the end from a failure
    while (const dirent* entry = calls.readdir(list.get())) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") names.push_back(name);
    }
    if (errno != 0) return std::nullopt;
    std::ranges::sort(names);
    return names;
}

std::optional<struct stat> infoOf(FileCalls& calls, int folder, const std::string& path) {
    struct stat info;
    if (calls.fstatat(folder, path.c_str(), info, AT_SYMLINK_NOFOLLOW) != 0) return std::nullopt;
    return info;
}

std::optional<struct stat> infoBehindLinks(FileCalls& calls, const std::string& path) {
    struct stat info;
    if (calls.fstatat(AT_FDCWD, path.c_str(), info, 0) != 0) return std::nullopt;
    return info;
}

std::optional<std::string> targetOfLink(FileCalls& calls, int folder, const std::string& path) {
    std::array<char, PATH_MAX> target;
    const ssize_t length = calls.readlinkat(folder, path.c_str(), target.data(), target.size());
    if (length < 0) return std::nullopt;
    return std::string(target.data(), static_cast<std::size_t>(length));
}

}  // namespace velmo::detail
