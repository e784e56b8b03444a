// An open file or folder, and the few things that every operation does with one.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <velmocore/platform/Bytes.h>

#include "system/FileCalls.h"

namespace velmo::detail {

/// Owns a descriptor; none if it could not be opened, and errno then tells why.
class OpenFile {
public:
    OpenFile() = default;
    /// Opens a path from a folder on; that may be AT_FDCWD. Neither a pipe nor a terminal is waited
    /// for or taken over.
    OpenFile(FileCalls& calls, int folder, const std::string& path, int flags, mode_t mode = 0666);
    ~OpenFile() { close(); }
    OpenFile(OpenFile&& other) noexcept
        : calls_(other.calls_), file_(std::exchange(other.file_, -1)) {}
    OpenFile& operator=(OpenFile&& other) noexcept {
        std::swap(calls_, other.calls_);
        std::swap(file_, other.file_);
        return *this;
    }

    explicit operator bool() const { return file_ >= 0; }
    int number() const { return file_; }
    FileCalls& calls() const { return *calls_; }

    /// Absent if the system does not tell.
    std::optional<struct stat> info() const;
    /// As many bytes as there are, up to the size of the buffer; absent if reading fails.
    std::optional<std::size_t> read(std::span<std::uint8_t> buffer);
    bool write(Bytes bytes);
    /// Some file systems report only here that the bytes could not be stored.
    bool close();

private:
    FileCalls* calls_ = nullptr;
    int file_ = -1;
};

/// The names in a folder but for "." and "..", in the order of their bytes; absent if they cannot
/// all be read.
std::optional<std::vector<std::string>> namesInFolder(FileCalls& calls, int folder,
                                                      const std::string& path = ".");

/// What stands at a path, which may be a link itself; absent if nothing does.
std::optional<struct stat> infoOf(FileCalls& calls, int folder, const std::string& path);
/// The same behind links.
std::optional<struct stat> infoBehindLinks(FileCalls& calls, const std::string& path);

/// What a symbolic link says; absent if it cannot be read.
std::optional<std::string> targetOfLink(FileCalls& calls, int folder, const std::string& path);

inline bool isSameFile(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

}  // namespace velmo::detail
