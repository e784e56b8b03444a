#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>

namespace velmo {

/// What folder metadata (DSStore.h) is read from: an open file, or bytes in memory. Copies share
/// it; it is closed with close(), by the allocator that reads it, or with its last copy. A closed
/// one has no bytes. A default-made one is closed.
///
///     DSStoreFile file = DSStoreFile::fileWithData({1, 2, 3});
///     file.length();    // 3
///
/// One thread at a time uses a file and its copies.
class VELMO_API DSStoreFile {
public:
    /// A closed one.
    DSStoreFile() noexcept = default;
    /// Opens a regular file with a shared lock. Closed if that fails, as it does if another program
    /// has the file locked for writing; nobody waits.
    [[nodiscard]] static DSStoreFile fileAtPath(const Path& path);
    /// Bytes in memory, which it owns; open, also without any.
    [[nodiscard]] static DSStoreFile fileWithData(Data data);

    /// Whether there is anything to read.
    [[nodiscard]] bool isOpen() const noexcept;
    /// In bytes, when it was opened.
    [[nodiscard]] std::uint64_t length() const noexcept;
    /// Fills the bytes from an offset on, and gives how many there were.
    [[nodiscard]] std::size_t read(std::uint64_t offset, std::span<std::uint8_t> bytes) const;
    /// For all copies; unlocks the file.
    void close();

    /// Whether they are copies of each other.
    friend bool operator==(const DSStoreFile&, const DSStoreFile&) noexcept = default;

private:
    struct State;

    std::shared_ptr<State> _state;
};

}  // namespace velmo
