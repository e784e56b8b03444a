// Stores written anew: without their dead blocks, or all that can be saved of them.
#include <velmocore/platform/String.h>
#include <velmocore/storage/KeyedStorage.h>
#include <velmocore/text/FastCompare.h>

#include "storage/BlockHeader.h"
#include "storage/StoreFile.h"

namespace velmo {
namespace {

using detail::StoreAccess;

bool isSamePath(const Path& a, const Path& b) {
    const String first = a.string(), second = b.string();
    return fastCaseInsensitiveCompareUnichars(first, second) == 0;
}

}  // namespace

bool KeyedStorage::canBeRead() const { return _file && _file->access() != StoreAccess::Append; }

/// Whether damage keeps readers from blocks that are whole.
bool KeyedStorage::hidesBlocks() {
    std::size_t live[2] = {};
    for (const bool salvage : {false, true})
        forEachBlock(
            [&](const StorageBlock& block) {
                live[salvage] += block.state == BlockState::Live;
                return true;
            },
            {.salvage = salvage});
    return live[0] != live[1];
}

bool KeyedStorage::copyInto(KeyedStorage& destination, BlockCopy& block,
                            KeyedStorageHandler* handler) {
    if (handler && !handler->handleData(destination, block.data, destination.lengthOfFile()))
        return true;
    return _compressed && block.compressed ? destination.appendCompressedBlock(*block.compressed)
                                           : destination.appendBlock(block.data);
}

bool KeyedStorage::copyAllInto(KeyedStorage& destination, bool skipErrors,
                               KeyedStorageHandler* handler, bool& hasError) {
    seekToFileOffset(0);
    if (destination.isValid() && !destination.truncateFileAtOffset(0)) return false;
    destination._blockSize = _blockSize;
    destination._alignment = _alignment;
    while (auto block = _mutableCopyOfNextAvailableBlock(hasError)) {
        if (!copyInto(destination, *block, handler)) return false;
        if (hasError && !skipErrors) return false;
        if (handler && handler->shouldCancelIterationOfStorage(*this)) return false;
    }
    return !_file->readFailed();  // which is no damage of the store, and tells nothing of its rest
}

bool KeyedStorage::optimizeToPath(const Path& path, bool skipErrors, KeyedStorageHandler* handler) {
    if (!canBeRead() || path.isAbsent() || path.bytes().empty() || isSamePath(path, _path))
        return false;
    KeyedStorage destination(detail::openStoreFile(_file->calls(), path, StoreAccess::Append), path,
                             true);
    bool hasError = false;
    const bool isDone = copyAllInto(destination, skipErrors, handler, hasError);
    return destination.closeFile() >= 0 && isDone;
}

bool KeyedStorage::optimizeSafelyToPath(const Path& path, bool skipErrors,
                                        KeyedStorageHandler* handler) {
    if (!canBeRead()) return false;
    const bool isOwn = isSamePath(path, _path);
    if (isOwn && _file->access() != StoreAccess::ReadAndWrite) return false;
    detail::NewStoreFile fresh(_file->calls(), path);
    KeyedStorage destination(fresh.takeFile(), path, true);
    bool hasError = false;
    if (!destination.isValid() || !copyAllInto(destination, skipErrors, handler, hasError) ||
        (hasError && (!skipErrors || hidesBlocks())) || !destination.synchronizeFile() ||
        !fresh.become(*destination._file))
        return false;
    if (!isOwn) return destination.closeFile() == 0;
    _file = std::move(destination._file);
    _checkedEnd.reset();
    _tornAt.reset();
    return seekToFileOffset(0);
}

KeyedStorage::Salvage KeyedStorage::salvageToPath(const Path& path) {
    Salvage salvage = {false, 0, 0};
    if (!canBeRead() || isSamePath(path, _path)) return salvage;
    detail::NewStoreFile fresh(_file->calls(), path);
    KeyedStorage destination(fresh.takeFile(), path, true);
    destination._blockSize = _blockSize;
    destination._alignment = _alignment;
    bool isComplete = destination.isValid();
    const auto keep = [&](const StorageBlock& block) {
        if (block.state == BlockState::Live) {
            ++salvage.blocks;
            isComplete = isComplete &&
                         (block.isCompressed ? destination.appendCompressedBlock(block.stored)
                                             : destination.appendUncompressedBlock(block.stored));
        } else if (block.state != BlockState::Dead) {
            ++salvage.damages;
        }
        return isComplete;
    };
    salvage.isWritten = forEachBlock(keep, {.salvage = true}) && isComplete &&
                        destination.synchronizeFile() && fresh.become(*destination._file) &&
                        destination.closeFile() == 0;
    return salvage;
}

}  // namespace velmo
