#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>
#include <velmocore/storage/DSStoreFile.h>
#include <velmocore/storage/DSStoreStream.h>

namespace velmo {

/// The blocks of a file of folder metadata: stretches that go by an index, of which some also have
/// a name. It closes its file when it goes; streams that were made from it read nothing from then
/// on.
///
///     const auto none = DSStoreAllocator::allocatorWithFile(DSStoreFile::fileAtPath("notes.txt"));
///     none.has_value();    // false
///
/// Offsets and sizes count bytes. What is damaged is absent, and nothing else is told. One thread
/// at a time uses an allocator.
class VELMO_API DSStoreAllocator : public DSStoreStream {
public:
    /// None if the file is closed, or its header and its root block are not those of such a file.
    [[nodiscard]] static std::optional<DSStoreAllocator> allocatorWithFile(DSStoreFile file);

    DSStoreAllocator(DSStoreAllocator&&) noexcept = default;
    DSStoreAllocator& operator=(DSStoreAllocator&& other) noexcept;
    ~DSStoreAllocator() override { close(); }

    /// 0: its own offsets count from the start of the file.
    [[nodiscard]] std::uint32_t headerOffset() const noexcept override { return 0; }

    /// The block of that name; NotFound for an empty or unknown one.
    [[nodiscard]] std::size_t indexOfEntryNamed(std::string_view name) const;
    /// Both are 0 for an index out of bounds, and the size is also 0 where there is no block.
    [[nodiscard]] std::uint32_t offsetAtIndex(std::size_t index) const noexcept;
    [[nodiscard]] std::uint32_t sizeAtIndex(std::size_t index) const noexcept;
    /// Of the table of blocks, which has more places than there are blocks.
    [[nodiscard]] std::uint32_t numberOfBlocks() const noexcept { return _numOffsets; }
    [[nodiscard]] std::uint32_t numberOfStreams() const noexcept { return _numOffsets; }

    /// None for an index out of bounds, where there is no block, and for one that ends behind the
    /// end of the file.
    [[nodiscard]] std::optional<DSStoreBlock> blockAtIndex(std::size_t index) const;
    [[nodiscard]] std::optional<DSStoreBlock> blockForEntryNamed(std::string_view name) const;
    /// None for an index out of bounds.
    [[nodiscard]] std::optional<DSStoreStream> streamAtIndex(std::size_t index) const;
    [[nodiscard]] std::optional<DSStoreStream> streamForEntryNamed(std::string_view name) const;

    /// For people: how many places for blocks it has, and which of them have names.
    [[nodiscard]] String description() const override;

protected:
    DSStoreAllocator() noexcept = default;
    [[nodiscard]] bool initWithFile(DSStoreFile file);
    [[nodiscard]] std::string descriptionOfEntries() const;

    DSStoreBlock _root;

private:
    bool readHeader();
    bool readOffsets();
    bool readEntries();

    std::vector<std::uint32_t> _offsets;
    std::uint32_t _numOffsets = 0;
    std::map<std::string, std::uint32_t, std::less<>> _entries;
};

}  // namespace velmo
