#include <velmocore/storage/DSStoreFile.h>

#include <algorithm>

#include "storage/StoreFile.h"

namespace velmo {

struct DSStoreFile::State {
    std::unique_ptr<detail::BufferedFile> file;  // none for bytes in memory
    Data data;
    std::uint64_t length = 0;
    bool isOpen = true;
};

DSStoreFile DSStoreFile::fileAtPath(const Path& path) {
    DSStoreFile result;
    auto file = detail::openStoreFile(detail::FileCalls::system(), path, detail::StoreAccess::Read);
    const auto length = file ? file->size() : std::nullopt;
    if (length) result._state = std::make_shared<State>(State{std::move(file), {}, *length});
    return result;
}

DSStoreFile DSStoreFile::fileWithData(Data data) {
    DSStoreFile result;
    const std::uint64_t length = data.size();
    result._state = std::make_shared<State>(State{nullptr, std::move(data), length});
    return result;
}

bool DSStoreFile::isOpen() const noexcept { return _state && _state->isOpen; }

std::uint64_t DSStoreFile::length() const noexcept { return isOpen() ? _state->length : 0; }

std::size_t DSStoreFile::read(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
    if (offset >= length()) return 0;
    const auto count =
        static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size(), length() - offset));
    if (_state->file) return _state->file->readAt(offset, bytes.data(), count);
    std::copy_n(_state->data.data() + offset, count, bytes.data());
    return count;
}

void DSStoreFile::close() {
    if (!isOpen()) return;
    if (_state->file) _state->file->close();
    _state->data = {};
    _state->isOpen = false;
}

}  // namespace velmo
