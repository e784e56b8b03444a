// libarchive unpacks; what an entry is called and how long it may be is told by the directory.
//
// It would also bring names that are marked as UTF-8 into another form, and refuse those that are
// none. So it is shown the archive without these marks: the bytes that hold them are changed on
// their way from the file.
#include "system/ArchiveReader.h"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <new>

#include "system/ArchiveErrors.h"

namespace velmo::detail {
namespace {

constexpr std::size_t Portion = 0x40000;
/// In the second byte of the flags.
constexpr std::uint8_t Utf8Mark = 0x08;
/// Where that byte stands in a local header.
constexpr std::uint64_t LocalFlags = 7;

}  // namespace

/// The file as libarchive reads it.
struct ArchiveReader::Source {
    Source(const OpenFile& from, const std::vector<ZipEntry>& entries) : file(from) {
        for (const ZipEntry& entry : entries) {
            flags.push_back(entry.flags);
            flags.push_back(entry.offset + LocalFlags);
        }
        std::ranges::sort(flags);
    }

    static la_ssize_t read(archive* reader, void* context, const void** bytes) {
        return static_cast<Source*>(context)->readNext(reader, bytes);
    }
    static la_int64_t seek(archive*, void* context, la_int64_t offset, int whence) {
        auto& source = *static_cast<Source*>(context);
        const auto info = source.file.info();
        if (!info) return ARCHIVE_FATAL;
        const la_int64_t from = whence == SEEK_SET   ? 0
                                : whence == SEEK_CUR ? static_cast<la_int64_t>(source.position)
                                                     : info->st_size;
        if (from + offset < 0) return ARCHIVE_FATAL;
        source.position = static_cast<std::uint64_t>(from + offset);
        return from + offset;
    }

    la_ssize_t readNext(archive* reader, const void** bytes) {
        ssize_t got;
        do
            got = file.calls().pread(file.number(), buffer.data(), buffer.size(),
                                     static_cast<off_t>(position));
        while (got < 0 && errno == EINTR);
        if (got < 0) {
            archive_set_error(reader, errno, "cannot be read");
            return ARCHIVE_FATAL;
        }
        const std::uint64_t end = position + static_cast<std::uint64_t>(got);
        for (auto flag = std::ranges::lower_bound(flags, position);
             flag != flags.end() && *flag < end; ++flag)
            buffer[*flag - position] &= static_cast<std::uint8_t>(~Utf8Mark);
        position = end;
        *bytes = buffer.data();
        return got;
    }

    const OpenFile& file;
    std::vector<std::uint64_t> flags;
    std::uint64_t position = 0;
    Data buffer = Data(Portion);
};

ArchiveReader::ArchiveReader(const OpenFile& file, const std::vector<ZipEntry>& entries)
    : source_(std::make_unique<Source>(file, entries)),
      entries_(entries),
      archive_(archive_read_new()),
      buffer_(Portion) {
    if (!archive_) throw std::bad_alloc();
    archive_read_support_format_zip_seekable(archive_);
    archive_read_set_seek_callback(archive_, Source::seek);
    const int result = archive_read_open(archive_, source_.get(), nullptr, Source::read, nullptr);
    if (result == ARCHIVE_OK || entries.empty()) return;
    const std::string reason = archive_error_string(archive_) ? archive_error_string(archive_) : "";
    archive_read_free(archive_);
    throw ArchiveFailure(ArchiveProblem::Damaged, "", reason);
}

ArchiveReader::~ArchiveReader() { archive_read_free(archive_); }

void ArchiveReader::fail() const {
    const char* reason = archive_error_string(archive_);
    throw ArchiveFailure(ArchiveProblem::Damaged, count_ > 0 ? entries_[count_ - 1].name : "",
                         reason ? reason : "cannot be unpacked");
}

const ZipEntry* ArchiveReader::next() {
    if (count_ == entries_.size()) return nullptr;
    const ZipEntry& entry = entries_[count_++];
    done_ = 0;
    const int result = archive_read_next_header(archive_, &current_);
    // A warning is one of its own names and dates, which are not used.
    if (result != ARCHIVE_OK && result != ARCHIVE_WARN) fail();
    // Both go by the offsets, so that this is the same entry, unless the file changes meanwhile.
    const bool isSame = !entry.isFile() || !archive_entry_size_is_set(current_) ||
                        static_cast<std::uint64_t>(archive_entry_size(current_)) == entry.size;
    if (!isSame) throw ArchiveFailure(ArchiveProblem::Damaged, entry.name, "has two sizes");
    return &entry;
}

std::string ArchiveReader::linkTarget() const {
    const char* target = archive_entry_symlink(current_);
    return target ? target : "";
}

Bytes ArchiveReader::read() {
    const la_ssize_t count = archive_read_data(archive_, buffer_.data(), buffer_.size());
    if (count < 0) fail();
    done_ += static_cast<std::uint64_t>(count);
    const ZipEntry& entry = entries_[count_ - 1];
    if (done_ > entry.size || (count == 0 && done_ < entry.size))
        throw ArchiveFailure(ArchiveProblem::Damaged, entry.name, "has another size than told");
    return Bytes(buffer_).first(static_cast<std::size_t>(count));
}

}  // namespace velmo::detail
