#include <velmocore/storage/KeyedFiles.h>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>

#include <velmocore/storage/KeyedDataEditing.h>
#include <velmocore/system/FileCreation.h>

#include "platform/Files.h"
#include "storage/StoreFile.h"

namespace velmo {
namespace {

constexpr std::size_t PortionSize = 0x100000;

class Descriptor {
public:
    Descriptor(const Path& path, int flags)
        : file_(path.isAbsent() ? -1 : ::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK, 0666)) {
    }
    ~Descriptor() {
        if (file_ >= 0) ::close(file_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number() const { return file_; }

private:
    int file_;
};

/// File systems of other machines and of programs, whose files may go at any moment.
bool isElsewhere(int file) {
    constexpr unsigned long Types[] = {NFS_SUPER_MAGIC,  SMB_SUPER_MAGIC,  SMB2_SUPER_MAGIC,
                                       CIFS_SUPER_MAGIC, CODA_SUPER_MAGIC, AFS_SUPER_MAGIC,
                                       FUSE_SUPER_MAGIC, V9FS_MAGIC,       CEPH_SUPER_MAGIC};
    struct statfs info;
    return ::fstatfs(file, &info) != 0 ||
           std::ranges::count(Types, static_cast<unsigned long>(info.f_type)) > 0;
}

}  // namespace

std::optional<Data> dataWithKeyedFile(const Path& path) { return detail::readFile(path.bytes()); }

std::optional<Data> dataWithUncachedKeyedFile(const Path& path) {
    std::optional<Data> data = dataWithKeyedFile(path);
    // A hint: nothing comes of its failing.
    if (const Descriptor file(path, O_RDONLY); file.number() >= 0)
        ::posix_fadvise(file.number(), 0, 0, POSIX_FADV_DONTNEED);
    return data;
}

Bytes MappedKeyedFile::bytes() const noexcept {
    if (mapping_) return mapping_->bytes();
    return data_ ? Bytes(*data_) : Bytes();
}

std::optional<MappedKeyedFile> dataWithMappedKeyedFile(const Path& path) {
    MappedKeyedFile result;
    const Descriptor file(path, O_RDONLY);
    if (file.number() >= 0 && !isElsewhere(file.number())) {
        auto mapping = std::make_shared<detail::FileMapping>(file.number());
        if (!mapping->bytes().empty()) result.mapping_ = std::move(mapping);
    }
    if (result.mapping_) return result;
    std::optional<Data> data = dataWithKeyedFile(path);
    if (!data) return std::nullopt;
    result.data_ = std::make_shared<Data>(std::move(*data));
    return result;
}

struct detail::KeyedStringsFile::State {
    explicit State(int number)
        : file(FileCalls::system(), number, BufferedFile::Access::ReadAndWrite) {
        buffer.reserve(PortionSize);
        isRight = file.truncate(0);
    }
    void write() {
        isRight = isRight && file.write(buffer);
        buffer.clear();
    }

    BufferedFile file;
    Data buffer;
    bool isRight = false;
};

detail::KeyedStringsFile::KeyedStringsFile(const Path& path) {
    if (!createPathAndFile(path)) return;
    const int number = ::open(path.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK);
    if (number >= 0) state_ = std::make_unique<State>(number);
}

detail::KeyedStringsFile::~KeyedStringsFile() = default;

void detail::KeyedStringsFile::add(std::u16string_view string) {
    if (!state_) return;
    addString(state_->buffer, string, KeyOfListedStrings);
    if (state_->buffer.size() >= PortionSize) state_->write();
}

bool detail::KeyedStringsFile::finish() {
    if (!state_) return false;
    state_->write();
    return state_->isRight && state_->file.synchronize() && state_->file.close() == 0;
}

}  // namespace velmo
