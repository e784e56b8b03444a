#include <velmocore/storage/DSStoreStream.h>

#include <fmt/core.h>

#include <algorithm>
#include <typeinfo>

#include "storage/BigEndian.h"

namespace velmo {

DSStoreStream::DSStoreStream(DSStoreFile file, std::uint32_t offset, std::uint32_t size)
    : _size(size), _offset(offset), _file(std::move(file)) {}

DSStoreStream DSStoreStream::streamWithFile(DSStoreFile file, std::uint32_t offset,
                                            std::uint32_t size) {
    return {std::move(file), offset, size};
}

std::size_t DSStoreStream::readBytes(std::span<std::uint8_t> bytes) {
    if (bytes.empty() || !hasAhead(bytes.size())) return 0;
    const std::uint64_t place = std::uint64_t{_offset} + _pos + headerOffset();
    const std::size_t count = _file.read(place, bytes);
    _pos += static_cast<std::uint32_t>(count);
    return count;
}

std::uint8_t DSStoreStream::readUInt8() {
    std::uint8_t byte[1];
    return readBytes(byte) == sizeof byte ? byte[0] : 0;
}

std::uint16_t DSStoreStream::readUInt16() {
    std::uint8_t bytes[2];
    return readBytes(bytes) == sizeof bytes ? detail::bigEndian16(bytes) : 0;
}

std::uint32_t DSStoreStream::readUInt32FromFile() {
    std::uint8_t bytes[4];
    return readBytes(bytes) == sizeof bytes ? detail::bigEndian32(bytes) : 0;
}

std::uint64_t DSStoreStream::readUInt64() {
    std::uint8_t bytes[8];
    return readBytes(bytes) == sizeof bytes ? detail::bigEndian64(bytes) : 0;
}

std::optional<Data> DSStoreStream::readDataOfLength(std::uint64_t length) {
    if (!hasAhead(length) || length == 0) return std::nullopt;
    if (length > mostBytes()) return skipBytes(length), std::nullopt;
    Data data(static_cast<std::size_t>(length));
    return readBytes(data) == length ? std::optional(std::move(data)) : std::nullopt;
}

bool DSStoreStream::isEqual(const DSStoreStream& other) const noexcept {
    return typeid(*this) == typeid(other) && _file == other._file && _offset == other._offset &&
           _size == other._size;
}

String DSStoreStream::description() const {
    const bool isBlock = typeid(*this) == typeid(DSStoreBlock);
    return String::fromUTF8(fmt::format(
        "{}: {} bytes at offset {}", isBlock ? "DSStoreBlock" : "DSStoreStream", _size, _offset));
}

DSStoreBlock::DSStoreBlock(DSStoreFile file, std::uint32_t offset, std::uint32_t size)
    : DSStoreStream(std::move(file), offset, size) {
    auto data = DSStoreStream(_file, offset, size).readDataOfLength(size);
    if (data) _value = std::make_shared<const Data>(std::move(*data));
}

DSStoreBlock DSStoreBlock::blockWithFile(DSStoreFile file, std::uint32_t offset,
                                         std::uint32_t size) {
    return {std::move(file), offset, size};
}

std::size_t DSStoreBlock::readBytes(std::span<std::uint8_t> bytes) {
    if (bytes.empty()) return 0;
    if (!_value) _pos = _size;
    if (!hasAhead(bytes.size())) {
        std::ranges::fill(bytes, std::uint8_t{0});
        return 0;
    }
    std::copy_n(_value->data() + _pos, bytes.size(), bytes.data());
    _pos += static_cast<std::uint32_t>(bytes.size());
    return bytes.size();
}

}  // namespace velmo
