// libarchive packs. It marks a name as UTF-8 where the locale of the thread says so, and takes the
// bytes as they are; so the thread gets the locale that is right for the name, and for that time
// only.
//
// It never hears that a write failed: with an error in the middle of an entry it would forget to
// free what it packs with. After the first failure the rest is dropped, and each step asks for it.
#include "system/ArchiveWriter.h"

#include <archive.h>
#include <archive_entry.h>
#include <fcntl.h>
#include <locale.h>

#include <cerrno>
#include <memory>
#include <new>

#include "system/ArchiveErrors.h"
#include "system/ArchiveReader.h"

namespace velmo::detail {
namespace {

constexpr std::size_t Portion = 0x40000;

bool isUTF8(const std::string& name) { return String::fromUTF8(name).utf8() == name; }

class LocaleOfName {
public:
    explicit LocaleOfName(const std::string& name)
        : former_(::uselocale(isUTF8(name) ? unicode() : plain())) {}
    ~LocaleOfName() { ::uselocale(former_); }
    LocaleOfName(const LocaleOfName&) = delete;
    LocaleOfName& operator=(const LocaleOfName&) = delete;

private:
    static locale_t plain() {
        static const locale_t locale = ::newlocale(LC_CTYPE_MASK, "C", nullptr);
        return locale;
    }
    static locale_t unicode() {
        static const locale_t locale = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        return locale ? locale : plain();
    }

    locale_t former_;
};

using Entry = std::unique_ptr<archive_entry, decltype(&archive_entry_free)>;

Entry newEntry(const struct stat& info) {
    Entry entry(archive_entry_new(), &archive_entry_free);
    if (!entry) throw std::bad_alloc();
    archive_entry_set_mode(entry.get(), info.st_mode);
    archive_entry_set_mtime(entry.get(), info.st_mtim.tv_sec, info.st_mtim.tv_nsec);
    archive_entry_set_size(entry.get(), S_ISREG(info.st_mode) ? info.st_size : 0);
    return entry;
}

}  // namespace

ArchiveWriter::ArchiveWriter(OpenFile& file)
    : file_(file), archive_(archive_write_new(), &archive_write_free) {
    if (!archive_) throw std::bad_alloc();
    archive_write_set_format_zip(archive_.get());
    archive_write_set_bytes_per_block(archive_.get(), static_cast<int>(Portion));
    archive_write_set_bytes_in_last_block(archive_.get(), 1);
    const auto write = [](archive*, void* context, const void* bytes,
                          std::size_t count) -> la_ssize_t {
        auto& writer = *static_cast<ArchiveWriter*>(context);
        if (writer.failure_ == 0 &&
            !writer.file_.write({static_cast<const std::uint8_t*>(bytes), count}))
            writer.failure_ = errno;
        return static_cast<la_ssize_t>(count);
    };
    check(archive_write_open(archive_.get(), this, nullptr, write, nullptr), "");
}

ArchiveWriter::~ArchiveWriter() {
    // Given up before its end, nothing more is to be written.
    if (failure_ == 0) failure_ = ECANCELED;
    archive_write_close(archive_.get());
}

void ArchiveWriter::check(long result, const std::string& name) const {
    errno = failure_;
    demand(failure_ == 0, name.empty() ? "archive" : name);
    if (result >= ARCHIVE_OK) return;
    const char* reason = archive_error_string(archive_.get());
    throw ArchiveFailure(ArchiveProblem::Unsupported, name, reason ? reason : "cannot be packed");
}

void ArchiveWriter::begin(archive_entry* entry, const std::string& name) {
    const LocaleOfName locale(name);
    archive_entry_copy_pathname(entry, name.c_str());
    check(archive_write_header(archive_.get(), entry), name);
}

void ArchiveWriter::write(Bytes bytes, const std::string& name) {
    const la_ssize_t count = archive_write_data(archive_.get(), bytes.data(), bytes.size());
    check(static_cast<long>(count), name);
    // No more is taken than was told before.
    if (static_cast<std::size_t>(count) != bytes.size())
        throw ArchiveFailure(ArchiveProblem::Unsupported, name, "has changed meanwhile");
}

void ArchiveWriter::addFile(int folder, const std::string& path, const std::string& name,
                            archive_entry* entry) {
    OpenFile file(file_.calls(), folder, path, O_RDONLY | O_NOFOLLOW);
    demand(static_cast<bool>(file), name);
    begin(entry, name);
    Data buffer(Portion);
    std::int64_t done = 0;
    for (;;) {
        const auto count = file.read(buffer);
        demand(count.has_value(), name);
        if (*count == 0) break;
        write(Bytes(buffer).first(*count), name);
        done += static_cast<std::int64_t>(*count);
    }
    if (done != archive_entry_size(entry))
        throw ArchiveFailure(ArchiveProblem::Unsupported, name, "has changed meanwhile");
}

void ArchiveWriter::add(int folder, const std::string& path, const std::string& name,
                        const struct stat& info) {
    const Entry entry = newEntry(info);
    if (S_ISREG(info.st_mode)) return addFile(folder, path, name, entry.get());
    if (S_ISLNK(info.st_mode)) {
        const auto target = targetOfLink(file_.calls(), folder, path);
        demand(target.has_value(), name);
        archive_entry_copy_symlink(entry.get(), target->c_str());
    } else if (!S_ISDIR(info.st_mode)) {
        throw ArchiveFailure(ArchiveProblem::Unsupported, name, "is no file, folder or link");
    }
    begin(entry.get(), name);
}

void ArchiveWriter::add(ArchiveReader& reader, const ZipEntry& entry) {
    const Entry copy(archive_entry_clone(reader.current()), &archive_entry_free);
    if (!copy) throw std::bad_alloc();
    begin(copy.get(), entry.name);
    if (entry.isLink() || entry.isFolder) return;
    for (Bytes bytes = reader.read(); !bytes.empty(); bytes = reader.read())
        write(bytes, entry.name);
}

void ArchiveWriter::finish() { check(archive_write_close(archive_.get()), ""); }

}  // namespace velmo::detail
