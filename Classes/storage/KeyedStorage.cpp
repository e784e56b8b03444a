// The blocks of a store, one at a time: reading, appending, replacing and deleting. How bytes get
// to the file and back is BufferedFile's, what makes a block BlockHeader's.
//
// Appending looks once at what stands at the end of the file. A block that was written in part
// only, by a program that was killed or to a disk that was full, would swallow all that comes
// behind it. So it is taken off first; but only if nothing in it proves to be a block, since a
// length that is damaged in the middle of a store looks just like a torn end.
#include <velmocore/storage/KeyedStorage.h>

#include <fmt/core.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <new>

#include <velmocore/platform/Log.h>
#include <velmocore/storage/Compression.h>

#include "storage/BlockHeader.h"
#include "storage/BlockIndex.h"
#include "storage/StoreFile.h"

namespace velmo {
namespace {

using detail::BlockAt;
using detail::BlockHeader;
using detail::BufferedFile;
using detail::FileCalls;
using detail::StoreAccess;

constexpr const char* Source = "Classes/KeyedStorage";
constexpr std::uint64_t Alignment = 512;
constexpr std::uint64_t LargestField = std::numeric_limits<std::uint32_t>::max();
constexpr int FastCompression = 1;

void complain(unsigned line, const char* expression) {
    std::printf("%s:%u: Failed debug assertion `%s'\n", Source, line, expression);
}

/// What is stored for data: itself, or it compressed if that is shorter.
struct Prepared {
    Bytes payload;
    std::uint32_t marker = detail::PlainMarker;
    Data compressed = {};

    Prepared(Bytes data, bool compress) : payload(data) {
        if (!compress) return;
        std::optional<Data> packed = dataByDeflatingData(data, FastCompression);
        if (!packed || packed->size() >= data.size()) return;
        compressed = std::move(*packed);
        payload = compressed;
        marker = detail::CompressedMarker;
    }
    Prepared(const Prepared&) = delete;
    Prepared& operator=(const Prepared&) = delete;
};

BlockHeader headerOf(const Prepared& block, std::uint64_t padding) {
    return {block.marker, static_cast<std::uint32_t>(block.payload.size()),
            static_cast<std::uint32_t>(padding), CRC32(block.payload)};
}

/// Where the blocks that follow one another from the start end.
std::uint64_t endOfWholeBlocks(BufferedFile& file, std::uint64_t end) {
    std::uint64_t from = 0;
    while (from < end) {
        const Bytes bytes = file.view(from, BlockHeaderSize);
        if (bytes.size() < BlockHeaderSize) break;
        const BlockHeader header = BlockHeader::of(bytes.data());
        if (!detail::isBlockMarker(header.marker) || header.size() > end - from) break;
        from += header.size();
    }
    return from;
}

/// Whether the end of a file from an offset on is what is left of one block. It may be zeros too,
/// as a file system makes them of what it could not store before a crash.
bool isTorn(const BufferedFile& file, std::uint64_t offset) {
    const detail::FileMapping mapping(file.descriptor());
    if (!mapping.isWhole() || offset >= mapping.bytes().size()) return false;
    const Bytes tail = mapping.bytes().subspan(offset);
    if (std::ranges::all_of(tail, [](std::uint8_t byte) { return byte == 0; })) return true;
    const bool isHeader =
        tail.size() < BlockHeaderSize || detail::isBlockMarker(detail::bigEndian32(tail.data()));
    return isHeader && !detail::BlockIndex(tail).firstValid(1);
}

KeyedStorage opened(const Path& path, StoreAccess access) {
    return {detail::openStoreFile(FileCalls::current(), path, access), path,
            access == StoreAccess::Append};
}

/// Reads the header at an offset for a change of the block; tells the log if it is none.
std::optional<BlockHeader> headerAt(BufferedFile& file, std::uint64_t offset) {
    if (!file.seek(offset)) return std::nullopt;
    const Bytes bytes = file.view(offset, BlockHeaderSize);
    if (bytes.empty() && !file.readFailed()) return std::nullopt;
    if (bytes.size() == BlockHeaderSize) {
        const BlockHeader header = BlockHeader::of(bytes.data());
        if (detail::isBlockMarker(header.marker)) return header;
    }
    log(fmt::format("Invalid header at {}", offset));
    return std::nullopt;
}

}  // namespace

KeyedStorage KeyedStorage::keyedStorageForReadingAtPath(const Path& path) {
    return opened(path, StoreAccess::Read);
}
KeyedStorage KeyedStorage::keyedStorageForUpdatingAtPath(const Path& path) {
    return opened(path, StoreAccess::ReadAndWrite);
}
KeyedStorage KeyedStorage::keyedStorageForAppendingAtPath(const Path& path) {
    return opened(path, StoreAccess::Append);
}
KeyedStorage KeyedStorage::initWithFile(int descriptor, const Path& path, bool append) {
    if (descriptor < 0) return {nullptr, path, append};
    return {
        std::make_unique<BufferedFile>(FileCalls::system(), descriptor, StoreAccess::ReadAndWrite),
        path, append};
}

KeyedStorage::KeyedStorage(std::unique_ptr<BufferedFile> file, const Path& path, bool append)
    : _file(std::move(file)) {
    if (!_file) return;
    _path = path;
    if (append) seekToEndOfFile();
}

KeyedStorage::KeyedStorage() noexcept = default;
KeyedStorage::KeyedStorage(KeyedStorage&&) noexcept = default;
KeyedStorage& KeyedStorage::operator=(KeyedStorage&&) noexcept = default;
KeyedStorage::~KeyedStorage() = default;

void KeyedStorage::setBlockSize(std::uint64_t blockSize) {
    if (blockSize % Alignment != 0) complain(172, "(blockSize%512)==0");
    _blockSize = blockSize;
}

std::uint64_t KeyedStorage::offsetInFile() const { return _file ? _file->position() : 0; }

std::uint64_t KeyedStorage::seekToEndOfFile() {
    const auto end = _file ? _file->size() : std::nullopt;
    return end && _file->seek(*end) ? *end : 0;
}

bool KeyedStorage::seekToFileOffset(std::uint64_t offset) { return _file && _file->seek(offset); }

std::optional<KeyedStorage::Found> KeyedStorage::unpack(const BlockAt& block) {
    if (block.header.marker != detail::CompressedMarker) return Found{block.stored, std::nullopt};
    if (!setDataByInflating(_unpacked, block.stored, LargestField)) return std::nullopt;
    return Found{_unpacked, block.stored};
}

std::optional<KeyedStorage::Found> KeyedStorage::findNextAvailableBlock(bool& hasError) {
    const auto tell = [&](const char* what, std::uint64_t offset) {
        hasError = true;
        log(fmt::format("{} at {}", what, offset));
    };
    while (_file) {
        const std::uint64_t offset = _file->position();
        BlockAt block;
        try {
            block = detail::blockAt(*_file, offset);
        } catch (const std::bad_alloc&) {
            // Only the payload takes memory, and its header could be read before.
            block = {BlockState::End, BlockHeader::of(_file->view(offset, BlockHeaderSize).data())};
            _file->seek(offset + block.header.size());
            return std::nullopt;
        }
        if (block.state == BlockState::End && !_file->readFailed()) return std::nullopt;
        if (block.state == BlockState::End || block.state == BlockState::InvalidHeader) {
            tell("Invalid header", offset);
            _file->seek(offset + block.headerBytes);
            return std::nullopt;
        }
        _lastPosition = offset;
        _lastLength = block.header.size();
        if (!_file->seek(offset + _lastLength)) complain(259, "seekToFileOffset(_file,o=n)");
        switch (block.state) {
            case BlockState::Live:
                return unpack(block);
            case BlockState::Truncated:
                return tell("Truncated data", offset), std::nullopt;
            case BlockState::InvalidChecksum:
                tell("Invalid checksum", offset);
                break;
            default:
                break;
        }
    }
    return std::nullopt;
}

std::optional<KeyedStorage::BlockCopy> KeyedStorage::_mutableCopyOfNextAvailableBlock(bool& error) {
    const auto found = findNextAvailableBlock(error);
    if (!found) return std::nullopt;
    BlockCopy copy;
    if (found->compressed) {
        copy.compressed.emplace(found->compressed->begin(), found->compressed->end());
        copy.data = std::move(_unpacked);
    } else {
        copy.data.assign(found->data.begin(), found->data.end());
    }
    return copy;
}

std::optional<Bytes> KeyedStorage::nextAvailableBlock() {
    bool error = false;
    const auto found = findNextAvailableBlock(error);
    return found ? std::optional(found->data) : std::nullopt;
}

std::optional<Data> KeyedStorage::copyOfNextAvailableBlock() {
    return mutableCopyOfNextAvailableBlock();
}

std::optional<Data> KeyedStorage::mutableCopyOfNextAvailableBlock() {
    const auto block = nextAvailableBlock();
    if (!block) return std::nullopt;
    return Data(block->begin(), block->end());
}

std::optional<KeyedStorage::BlockCopy>
KeyedStorage::mutableCopyOfNextAvailableBlockWithCompressed() {
    bool error = false;
    return _mutableCopyOfNextAvailableBlock(error);
}

bool KeyedStorage::forEachBlock(StorageBlockHandler handler, BlockWalking options) {
    return readMapped([&](Bytes store) { forEachStorageBlock(store, handler, options); });
}

bool KeyedStorage::readMapped(FunctionRef<void(Bytes store)> handler) {
    if (!_file || !_file->flush()) return false;
    const detail::FileMapping mapping(_file->descriptor());
    if (!mapping.isWhole()) return false;
    handler(mapping.bytes());
    return true;
}

std::optional<Bytes> KeyedStorage::blockAtFileOffset(std::uint64_t offset) {
    if (!_file) return std::nullopt;
    const BlockAt block = detail::blockAt(*_file, offset);
    const auto found = block.state == BlockState::Live ? unpack(block) : std::nullopt;
    return found ? std::optional(found->data) : std::nullopt;
}

std::optional<std::uint64_t> KeyedStorage::paddingFor(Bytes payload, std::uint64_t start) const {
    const std::uint64_t unit = _blockSize != 0 ? _blockSize : _alignment;
    if (unit == 0) return 0;
    const std::uint64_t from = _blockSize != 0 ? 0 : start % unit;
    const std::uint64_t over = (from + payload.size() + BlockHeaderSize) % unit;
    const std::uint64_t padding = over == 0 ? 0 : unit - over;
    return padding <= LargestField ? std::optional(padding) : std::nullopt;
}

bool KeyedStorage::mendTail(std::uint64_t end) {
    const bool appends = _file->access() == StoreAccess::Append;
    if (!_file->flush()) return false;
    const auto other = appends ? detail::openForReadingToo(*_file, _path) : nullptr;
    if (appends && !other) return true;  // may be written only; nothing is known then
    BufferedFile& readable = other ? *other : *_file;
    const std::uint64_t whole = endOfWholeBlocks(readable, end);
    if (whole == end || !isTorn(readable, whole)) return true;
    log(fmt::format("Removed a torn block at {}", whole));
    return truncateFileAtOffset(whole);
}

std::optional<KeyedStorage::Place> KeyedStorage::placeToAppend() {
    if (_tornAt && _file->position() >= *_tornAt) {
        if (!truncateFileAtOffset(*_tornAt) || !_file->seek(*_tornAt)) return std::nullopt;
        _tornAt.reset();
        _checkedEnd = _file->position();
    }
    if (_file->position() == _checkedEnd) return Place::End;
    auto end = _file->size();
    if (!end) return std::nullopt;
    if (_file->access() != StoreAccess::Append && _file->position() != end) return Place::Middle;
    if (_checkedEnd != end && (!mendTail(*end) || !(end = _file->size()) || !_file->seek(*end)))
        return std::nullopt;
    _checkedEnd = end;
    return Place::End;
}

bool KeyedStorage::removeTornEnd() {
    seekToEndOfFile();
    return _file && placeToAppend().has_value();
}

bool KeyedStorage::writeBlock(const BlockHeader& header, Bytes payload, std::uint64_t zeros) {
    // Writing changes what was read ahead, where the payload may stand.
    if (_file->isOwn(payload))
        return writeBlock(header, Data(payload.begin(), payload.end()), zeros);
    std::uint8_t bytes[BlockHeaderSize];
    header.put(bytes);
    return _file->write(bytes) && _file->write(payload) && _file->writeZeros(zeros);
}

bool KeyedStorage::append(Bytes data, std::uint32_t marker) {
    if (!_file || data.empty() || data.size() > LargestField) return false;
    if (_file->isOwn(data)) return append(Data(data.begin(), data.end()), marker);
    if (!paddingFor(data, 0)) return false;
    const auto place = placeToAppend();
    if (!place || !_file->goToEnd()) return false;
    const std::uint64_t start = _file->position();
    const std::optional<std::uint64_t> padding = paddingFor(data, start);
    if (!padding) return false;
    const BlockHeader header = {marker, static_cast<std::uint32_t>(data.size()),
                                static_cast<std::uint32_t>(*padding), CRC32(data)};
    const bool isWritten = writeBlock(header, data, *padding);
    _checkedEnd.reset();
    if (isWritten) _appendedAt = start;
    if (isWritten && place == Place::End) _checkedEnd = _file->position();
    if (!isWritten) _file->dropFrom(start);
    if (!isWritten && place == Place::End) _tornAt = start;
    return isWritten;
}

bool KeyedStorage::appendBlock(Bytes data) {
    const Prepared block(data, _compressed);
    return append(block.payload, block.marker);
}

bool KeyedStorage::appendCompressedBlock(Bytes data) {
    return append(data, detail::CompressedMarker);
}

bool KeyedStorage::appendUncompressedBlock(Bytes data) { return append(data, detail::PlainMarker); }

bool KeyedStorage::updateBlock(Bytes data, std::uint64_t offset) {
    if (!_file || data.empty()) return false;
    if (_file->isOwn(data)) return updateBlock(Data(data.begin(), data.end()), offset);
    const Prepared block(data, _compressed);
    const auto old = headerAt(*_file, offset);
    if (!old || block.payload.size() > old->room()) return false;
    // The room may be more than a padding can tell; then the block stays as it is.
    const std::uint64_t padding = old->room() - block.payload.size();
    if (padding > LargestField) return false;
    return writeBlock(headerOf(block, padding), block.payload, 0) && _file->flush();
}

bool KeyedStorage::deleteBlockAtFileOffset(std::uint64_t offset) {
    if (!_file) return false;
    const auto old = headerAt(*_file, offset);
    if (!old || old->length == 0) return old.has_value();
    if (old->room() > LargestField) return false;
    return writeBlock({detail::PlainMarker, 0, static_cast<std::uint32_t>(old->room()), 0}, {},
                      0) &&
           _file->flush();
}

KeyedStorage::Move KeyedStorage::optimizeLastBlock(Bytes data, std::optional<Bytes> compressed,
                                                   std::uint64_t toFileOffset) {
    const std::uint64_t end = _lastPosition + _lastLength;
    const Move stays = {false, end};
    if (!_file) return stays;
    const bool isPacked = compressed && _compressed;
    Prepared block(isPacked ? *compressed : data, !isPacked && _compressed);
    if (isPacked) block.marker = detail::CompressedMarker;
    const auto padding = paddingFor(block.payload, toFileOffset);
    if (block.payload.empty() || block.payload.size() > LargestField || !padding) return stays;
    const std::uint64_t total = BlockHeaderSize + block.payload.size() + *padding;
    const bool gains = _lastPosition > toFileOffset || _lastLength > total;
    if (!gains || total > end || toFileOffset > end - total) return stays;
    _checkedEnd.reset();
    const bool isMoved = _file->seek(toFileOffset) &&
                         writeBlock(headerOf(block, *padding), block.payload, *padding) &&
                         _file->flush();
    return {isMoved, toFileOffset + total};
}

bool KeyedStorage::truncateFileAtOffset(std::uint64_t offset) {
    if (!_file) return false;
    if (_file->size() == offset) return true;
    _checkedEnd.reset();
    return _file->truncate(offset);
}

bool KeyedStorage::synchronizeFile() { return _file && _file->synchronize(); }

int KeyedStorage::closeFile() {
    if (!_file) return 1;
    const int result = _file->close();
    _file.reset();
    return result;
}

}  // namespace velmo
