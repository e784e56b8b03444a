// How stores get at their files: opening and locking, replacing one by another, and mapping.
#pragma once

#include <cstddef>
#include <memory>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>

#include "storage/BufferedFile.h"

namespace velmo::detail {

using StoreAccess = BufferedFile::Access;

/// Opens and locks a regular file; one to be written is created if there is none. Null if that
/// fails, without waiting for anybody.
VELMO_API std::unique_ptr<BufferedFile> openStoreFile(FileCalls& calls, const Path& path,
                                                      StoreAccess access);

/// Another look at a file that can only be appended to; null if it is not allowed, or the path
/// leads to another file by now.
std::unique_ptr<BufferedFile> openForReadingToo(const BufferedFile& file, const Path& path);

/// A new file, open and locked, that takes the place of another, or is gone.
class NewStoreFile {
public:
    /// In the folder of the path, which symbolic links are followed to.
    NewStoreFile(FileCalls& calls, const Path& path);
    ~NewStoreFile();
    NewStoreFile(const NewStoreFile&) = delete;
    NewStoreFile& operator=(const NewStoreFile&) = delete;

    /// Null if it could not be made. Taken out, it is to be closed or kept by the taker.
    std::unique_ptr<BufferedFile> takeFile() { return std::move(file_); }
    /// Takes the place and the permissions of what is at the path. The file's bytes are to be
    /// stored before; this has the folder stored.
    bool become(const BufferedFile& file);

private:
    FileCalls& calls_;
    Path target_, name_;
    std::unique_ptr<BufferedFile> file_;
    bool isThere_ = false;
};

/// The bytes of an open file, mapped; none if that fails or there are none.
class VELMO_API FileMapping {
public:
    explicit FileMapping(int file);
    ~FileMapping();
    FileMapping(const FileMapping&) = delete;
    FileMapping& operator=(const FileMapping&) = delete;

    /// Whether the bytes are all that the file has.
    bool isWhole() const { return isWhole_; }
    Bytes bytes() const { return {static_cast<const std::uint8_t*>(start_), length_}; }

    /// Takes what is mapped of some bytes out of memory until it is looked at again, so that a walk
    /// over a large file does not hold all of it.
    static void release(Bytes bytes);

private:
    void* start_ = nullptr;
    std::size_t length_ = 0;
    bool isWhole_ = false;
};

}  // namespace velmo::detail
