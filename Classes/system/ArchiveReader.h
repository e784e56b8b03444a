// What the entries of a zip archive hold, one after the other.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "system/ZipDirectory.h"

struct archive;
struct archive_entry;

namespace velmo::detail {

class ArchiveReader {
public:
    /// The entries as checkLocalHeaders() leaves them. Both must outlive this.
    ArchiveReader(const OpenFile& file, const std::vector<ZipEntry>& entries);
    ~ArchiveReader();
    ArchiveReader(const ArchiveReader&) = delete;
    ArchiveReader& operator=(const ArchiveReader&) = delete;

    /// Goes to the next entry; null behind the last one. All that fails throws an ArchiveFailure.
    const ZipEntry* next();
    archive_entry* current() const { return current_; }
    /// What the link of the current entry says.
    std::string linkTarget() const;
    /// The next bytes of the current entry, none behind the last one: all together no more than the
    /// directory tells.
    Bytes read();

private:
    struct Source;

    [[noreturn]] void fail() const;

    std::unique_ptr<Source> source_;
    const std::vector<ZipEntry>& entries_;
    std::size_t count_ = 0;
    archive* archive_;
    archive_entry* current_ = nullptr;
    Data buffer_;
    std::uint64_t done_ = 0;
};

}  // namespace velmo::detail
