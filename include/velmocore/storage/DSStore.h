#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/FunctionRef.h>
#include <velmocore/platform/Path.h>
#include <velmocore/platform/String.h>
#include <velmocore/storage/DSStoreAllocator.h>
#include <velmocore/storage/DSStoreEntry.h>

namespace velmo {

/// What macOS keeps of a folder in its hidden file ".DS_Store": a tree of records, each of a file
/// and of what it says, such as the place of its icon or its Finder comment. It is only read.
/// docs/formats.md describes the file byte by byte.
///
///     if (const auto store = DSStore::storeWithDirectory("letters"))
///         store->forEachEntry([](const DSStoreEntry& entry) {
///             print(entry.filename());
///             return true;
///         });
///     print(DSStore::finderCommentAtPath("letters/tea.txt"));
///
/// The file is open, with a shared lock, as long as the store lives; each search reads it as it is
/// by then, but for the table of blocks, which is read once. Whatever is damaged is absent. Work
/// and memory are linear in the size of the file, whatever it holds.
///
/// One thread at a time uses a store.
class VELMO_API DSStore : public DSStoreAllocator {
public:
    /// None if there is no such folder, no such file in it, or one that is locked by a writer or
    /// cannot be read.
    [[nodiscard]] static std::optional<DSStore> storeWithDirectory(const Path& directory);
    /// Ours: the same for a file of any name, or bytes in memory. The directory is only kept.
    [[nodiscard]] static std::optional<DSStore> storeWithFile(DSStoreFile file,
                                                              const Path& directory = {});

    /// The folder that it was made with; absent if none was told.
    [[nodiscard]] const Path& directory() const noexcept VELMO_LIFETIME { return _directory; }
    /// What the store says of its tree; 0 if it says nothing. Only the root is used.
    [[nodiscard]] std::uint32_t rootnode() const noexcept { return _rootnode; }
    [[nodiscard]] std::uint32_t levels() const noexcept { return _levels; }
    [[nodiscard]] std::uint32_t records() const noexcept { return _records; }
    [[nodiscard]] std::uint32_t nodes() const noexcept { return _nodes; }
    [[nodiscard]] std::uint32_t pageSize() const noexcept { return _page_size; }

    // Searches look at record after record until one has exactly that file name, unit by unit,
    // and codec; "A" and "a" differ, and so do composed and decomposed letters. Nothing is found
    // for an empty name and for the codec 0. A node that cannot be, or is met again, is told to
    // standard output and passed over.

    /// Of the first such record.
    [[nodiscard]] DSStoreValue valueForFilename(std::u16string_view filename,
                                                std::uint32_t codec) const;
    [[nodiscard]] std::optional<DSStoreEntry> entryForFilename(std::u16string_view filename,
                                                               std::uint32_t codec) const;
    /// Absent if there is none, or if it is no text.
    [[nodiscard]] String finderCommentForFilename(std::u16string_view filename) const;

    /// Ours: calls the handler for each record, in the order in which they are sorted in the file,
    /// until it returns false. A record of a type that is not known comes without a value, and is
    /// the last of its node; one that is cut off does not come. Gives the number of nodes that
    /// could not be read to their end, and tells nothing else.
    std::size_t forEachEntry(FunctionRef<bool(const DSStoreEntry& entry)> handler) const;

    /// The Finder comment of a file or folder, from the store of the folder that it is in; from
    /// spotlightCommentAtPath() if that has no store that can be read. Absent if there is none, and
    /// for an absent path and one without a folder. Each thread keeps the last store that it used,
    /// with its lock, and asks it again for 60 seconds, in which changes of the file may not be
    /// seen.
    [[nodiscard]] static String finderCommentAtPath(const Path& path);
    /// What an index of metadata knows as the comment. There is none on this system: it is absent,
    /// unless a reader was set.
    [[nodiscard]] static String spotlightCommentAtPath(const Path& path);
    /// Ours: asks this reader from now on, for all threads; null is none.
    using SpotlightReader = String (*)(const Path& path);
    static void setSpotlightReader(SpotlightReader reader) noexcept;
    /// Closes the store that this thread keeps.
    static void invalidateFinderCommentsCache();

    [[nodiscard]] String description() const override;

private:
    DSStore() noexcept = default;
    void readTreeHeader();
    [[nodiscard]] DSStoreEntry::Reading _findEntryForFilename(std::u16string_view filename,
                                                              std::uint32_t codec,
                                                              std::uint32_t node) const;

    Path _directory;
    std::uint32_t _rootnode = 0, _levels = 0, _records = 0, _nodes = 0, _page_size = 0;
};

}  // namespace velmo
