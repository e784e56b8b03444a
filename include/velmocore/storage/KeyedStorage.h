#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/FunctionRef.h>
#include <velmocore/platform/Path.h>
#include <velmocore/storage/StorageBlocks.h>

namespace velmo {

namespace detail {
class BufferedFile;
struct BlockAt;
struct BlockHeader;
}  // namespace detail

class KeyedStorage;

/// Takes part in optimizeToPath().
class VELMO_API KeyedStorageHandler {
public:
    virtual ~KeyedStorageHandler() = default;
    /// Called for each block, with the store that it goes to, what it holds, which may be changed,
    /// and the offset that it will have there. False leaves it out.
    virtual bool handleData(KeyedStorage& destination, Data& data, std::uint64_t key) = 0;
    /// Called with the store that is read, after each block. True stops the run.
    virtual bool shouldCancelIterationOfStorage(KeyedStorage& source) {
        (void)source;
        return false;
    }
};

/// A file of blocks with checksums, compressed or not; a block goes by its offset. Made for much
/// appending and reading in order; blocks may be replaced where they stand if they fit, and
/// deleted. What a block holds is the caller's; often it is keyed data (KeyedData.h).
/// docs/formats.md describes the file byte by byte.
///
///     {
///         auto store = KeyedStorage::keyedStorageForAppendingAtPath("notes.store");
///         store.appendBlock("first");
///         store.appendBlock("second");
///         store.synchronizeFile();
///     }
///     auto notes = KeyedStorage::keyedStorageForReadingAtPath("notes.store");
///     while (const auto block = notes.nextAvailableBlock())
///         print(charsOf(*block));
///
/// Crashes. After a crash of the program or the machine at any point, a store that was appended to
/// holds every block that a successful synchronizeFile() covered, and behind them whole blocks or a
/// torn tail: readers report it and stop there, and the next appending takes it off. Not safe are
/// updateBlock() (the block may be lost, as its checksum tells) and
/// optimizeLastBlock() (blocks may be lost, and others be there twice). Instead of
/// updating, append the new block, synchronize, and delete the old one; instead of moving blocks,
/// use optimizeSafelyToPath(). deleteBlockAtFileOffset() rewrites 16 bytes, which is one step where
/// the block size is a multiple of 512, or the alignment one of 16.
///
/// Between processes: readers share a file, a writer has it alone, and nobody waits: opening fails
/// at once. One thread at a time uses a store. Damage is told to the log, and files that end early.
class VELMO_API KeyedStorage {
public:
    // The store always exists; isValid() tells whether the file could be opened, which it cannot if
    // it is no regular file, or if another process has it locked.

    /// Can only be read.
    [[nodiscard]] static KeyedStorage keyedStorageForReadingAtPath(const Path& path);
    /// Creates the file if there is none. It can be read and written.
    [[nodiscard]] static KeyedStorage keyedStorageForUpdatingAtPath(const Path& path);
    /// Creates the file if there is none. All that is written goes to its end; it cannot be read.
    [[nodiscard]] static KeyedStorage keyedStorageForAppendingAtPath(const Path& path);

    /// Without a file.
    KeyedStorage() noexcept;
    /// Takes over an open file, at its end or at its start.
    KeyedStorage(std::unique_ptr<detail::BufferedFile> file, const Path& path, bool append);
    /// Takes over a descriptor of a file that can be read and written, without locking it.
    [[nodiscard]] static KeyedStorage initWithFile(int descriptor, const Path& path, bool append);

    KeyedStorage(KeyedStorage&&) noexcept;
    KeyedStorage& operator=(KeyedStorage&&) noexcept;
    /// Unlocks and closes. What could not be written then is told to the log only: see closeFile().
    ~KeyedStorage();

    /// Whether it has an open file. Without one, reading gives nothing and writing fails.
    [[nodiscard]] bool isValid() const noexcept { return _file != nullptr; }
    /// Absent if no file was opened.
    [[nodiscard]] const Path& path() const noexcept { return _path; }
    /// Whether blocks are compressed when they are written, where that makes them shorter.
    [[nodiscard]] bool isCompressed() const noexcept { return _compressed; }
    void setCompressed(bool compressed) noexcept { _compressed = compressed; }
    /// In bytes; 0 for none. Appended blocks are padded to a multiple of it, so that they have room
    /// to grow. It should be a multiple of 512: another is used all the same, with a complaint on
    /// standard output.
    [[nodiscard]] std::uint64_t blockSize() const noexcept { return _blockSize; }
    void setBlockSize(std::uint64_t blockSize);
    /// Ours: in bytes; 0 for none. What is appended is padded so that the next block begins at a
    /// multiple of it. A multiple of 16 keeps headers from lying across two sectors of a disk, for
    /// less room than a block size takes, which goes before it.
    [[nodiscard]] std::uint64_t alignment() const noexcept { return _alignment; }
    void setAlignment(std::uint64_t alignment) noexcept { _alignment = alignment; }

    /// Bytes from the start of the file; 0 without one.
    [[nodiscard]] std::uint64_t offsetInFile() const;
    /// Both go to the end and give its offset; 0 without a file.
    std::uint64_t lengthOfFile() { return seekToEndOfFile(); }
    std::uint64_t seekToEndOfFile();
    /// Whether the position could be set.
    bool seekToFileOffset(std::uint64_t offset);

    // Reading. A deleted block is passed over, and so is one whose checksum is wrong. None at the
    // end, at a header that is wrong and at a block that breaks off. None also for a compressed
    // block that cannot be inflated: reading can go on behind it.

    /// What the next block holds, where it stands in memory: good until the next operation.
    [[nodiscard]] std::optional<Bytes> nextAvailableBlock() VELMO_LIFETIME;
    /// The same as a copy.
    [[nodiscard]] std::optional<Data> copyOfNextAvailableBlock();
    [[nodiscard]] std::optional<Data> mutableCopyOfNextAvailableBlock();
    /// A block and its packed form.
    struct BlockCopy {
        Data data;                       ///< what it holds
        std::optional<Data> compressed;  ///< as it is stored, if it is compressed there
    };
    /// As mutableCopyOfNextAvailableBlock().
    [[nodiscard]] std::optional<BlockCopy> mutableCopyOfNextAvailableBlockWithCompressed();
    /// Offset and whole length of the block whose header was read last, dead ones and those with a
    /// wrong checksum included.
    [[nodiscard]] std::uint64_t offsetOfLastBlock() const noexcept { return _lastPosition; }
    [[nodiscard]] std::uint64_t lengthOfLastBlock() const noexcept { return _lastLength; }

    /// Ours: calls the handler for each block and each damage from the start of the file, until it
    /// returns false, without a copy: the file is mapped. False without a file that can be mapped.
    /// Only programs that keep to the lock leave a file alone meanwhile: one that is cut short by
    /// another ends the program.
    bool forEachBlock(StorageBlockHandler handler, BlockWalking options = {});
    /// Ours: the same bytes as a whole, good until the handler returns.
    bool readMapped(FunctionRef<void(Bytes store)> handler);
    /// Ours: what the block at an offset holds, good until the next operation. None if no live
    /// block with the right checksum stands there; nothing is logged, and the position stays.
    [[nodiscard]] std::optional<Bytes> blockAtFileOffset(std::uint64_t offset) VELMO_LIFETIME;

    // Writing, at the position; that is the end where nothing else was said. True on success, which
    // is that the block waits to be stored: only synchronizeFile() and closeFile() tell that it is.
    // A block that could not be written is off the file again when the next one is appended.

    /// False for no data, and for 4 GB and more.
    bool appendBlock(Bytes data);
    /// Data that is compressed already.
    bool appendCompressedBlock(Bytes data);
    /// As it is, whatever isCompressed() says.
    bool appendUncompressedBlock(Bytes data);
    /// Ours: takes a torn block off the end now, which the next append does otherwise. Goes to the
    /// end. False if that could not be done.
    bool removeTornEnd();
    /// Ours: where the block begins that was appended last. The end of the file before may have
    /// been another place, if a torn block was taken off.
    [[nodiscard]] std::uint64_t offsetOfAppendedBlock() const noexcept { return _appendedAt; }
    /// Replaces what a block holds. False if it does not fit into the block and its padding. Not
    /// safe against a crash.
    bool updateBlock(Bytes data, std::uint64_t offset);
    /// Readers pass over the block from then on; its room can be filled again by an update. True if
    /// it is deleted already.
    bool deleteBlockAtFileOffset(std::uint64_t offset);

    /// What became of a block that was to be moved.
    struct Move {
        bool isMoved;              ///< whether it stands at the new place
        std::uint64_t nextOffset;  ///< where the next block may go
    };
    /// Moves the block that was read last down to an offset, if that gains something and stays
    /// before the end of the old one. With the compressed form it is not compressed anew. One step
    /// of a compaction in place, not safe against a crash.
    Move optimizeLastBlock(Bytes data, std::optional<Bytes> compressed, std::uint64_t toFileOffset);
    /// Writes all live blocks into a new file, in order. It stays behind, with what there is in it,
    /// if the run is cancelled or fails. Blocks of a compressed store are copied as they are
    /// stored, whatever a handler makes of the data; all others are stored plain. With skipErrors,
    /// blocks with a wrong checksum are left out; without, one ends the run, after the block behind
    /// it has been copied. A header that is wrong or a block that breaks off ends the run in
    /// success. False for an absent path, the store's own path in any letter case, and if a block
    /// could not be written.
    bool optimizeToPath(const Path& path, bool skipErrors, KeyedStorageHandler* handler = nullptr);
    /// Ours: the same, but the new file appears under the path as a whole, and stored, or not at
    /// all. The path may be the store's own if it was opened for updating: the store is then that
    /// of the new file. Damage makes it false unless errors are
    /// skipped, and also then if it hides blocks that are whole, which salvageToPath() finds.
    bool optimizeSafelyToPath(const Path& path, bool skipErrors,
                              KeyedStorageHandler* handler = nullptr);
    /// What a salvage came to.
    struct Salvage {
        bool isWritten;       ///< all that was found stands in the new file and is stored there
        std::size_t blocks;   ///< that were found
        std::size_t damages;  ///< that were met
    };
    /// Ours: writes every block that is whole into a new file, as it is stored, whatever stands
    /// between them; see BlockWalking.
    Salvage salvageToPath(const Path& path);

    /// Cuts the file. True if it had that length already.
    bool truncateFileAtOffset(std::uint64_t offset);
    /// Writes what waits and has the system store it. False if any of it could not be.
    bool synchronizeFile();
    /// Unlocks and closes. 0 on success, 1 without an open file, and -1 if what waited could not be
    /// written.
    int closeFile();

private:
    struct Found {
        Bytes data;
        std::optional<Bytes> compressed;
    };
    std::optional<Found> findNextAvailableBlock(bool& hasError);
    std::optional<Found> unpack(const detail::BlockAt& block);
    std::optional<BlockCopy> _mutableCopyOfNextAvailableBlock(bool& error);
    bool append(Bytes data, std::uint32_t marker);
    bool writeBlock(const detail::BlockHeader& header, Bytes payload, std::uint64_t zeros);
    std::optional<std::uint64_t> paddingFor(Bytes payload, std::uint64_t start) const;
    enum class Place : std::uint8_t { End, Middle };
    std::optional<Place> placeToAppend();
    bool mendTail(std::uint64_t end);
    bool canBeRead() const;
    bool hidesBlocks();
    bool copyAllInto(KeyedStorage& destination, bool skipErrors, KeyedStorageHandler* handler,
                     bool& hasError);
    bool copyInto(KeyedStorage& destination, BlockCopy& block, KeyedStorageHandler* handler);

    std::unique_ptr<detail::BufferedFile> _file;
    std::uint64_t _lastPosition = 0;
    std::uint64_t _lastLength = 0;
    std::uint64_t _blockSize = 0;
    std::uint64_t _alignment = 0;
    bool _compressed = false;
    Path _path;

    Data _unpacked;  // what the last compressed block held
    std::optional<std::uint64_t>
        _checkedEnd;  // the end of the file, once looked at for torn blocks
    std::uint64_t _appendedAt = 0;
    std::optional<std::uint64_t> _tornAt;  // a block that could only be written in part
};

}  // namespace velmo
