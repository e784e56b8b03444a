// A zip archive as it is written.
#pragma once

#include <memory>
#include <string>

#include "system/OpenFile.h"

struct archive;
struct archive_entry;

namespace velmo::detail {

class ArchiveReader;
struct ZipEntry;

class ArchiveWriter {
public:
    /// The file must outlive this. All that fails throws an ArchiveFailure.
    explicit ArchiveWriter(OpenFile& file);
    ~ArchiveWriter();
    ArchiveWriter(const ArchiveWriter&) = delete;
    ArchiveWriter& operator=(const ArchiveWriter&) = delete;

    /// What stands under a path in an open folder, alone, as an entry of some name.
    void add(int folder, const std::string& path, const std::string& name, const struct stat& info);
    /// The entry that a reader has come to.
    void add(ArchiveReader& reader, const ZipEntry& entry);
    void finish();

private:
    void begin(archive_entry* entry, const std::string& name);
    void write(Bytes bytes, const std::string& name);
    void addFile(int folder, const std::string& path, const std::string& name,
                 archive_entry* entry);
    /// Throws if libarchive says so by a result below 0, or if a write has failed.
    void check(long result, const std::string& name) const;

    OpenFile& file_;
    int failure_ = 0;  // of writing to the file
    std::unique_ptr<archive, int (*)(archive*)> archive_;
};

}  // namespace velmo::detail
