#include <velmocore/storage/DSStoreAllocator.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <limits>

#include "storage/BigEndian.h"

namespace velmo {
namespace {

constexpr std::uint32_t Version = 1, Magic = 0x42756431;  // "Bud1"
constexpr std::uint32_t TableStep = 256;                  // places of the table, in one portion
constexpr std::uint32_t SizeBits = 0x1F;  // of a place: the block's size as a power of two
constexpr std::uint64_t BytesBeforeBlocks = 4;

/// None if it cannot be read or is no ASCII.
std::optional<std::string> readName(std::uint8_t length, DSStoreStream& stream) {
    const std::optional<Data> name = stream.readDataOfLength(length);
    if (!name || std::ranges::any_of(*name, [](std::uint8_t byte) { return byte > 0x7F; }))
        return std::nullopt;
    return std::string(charsOf(*name));
}

}  // namespace

std::optional<DSStoreAllocator> DSStoreAllocator::allocatorWithFile(DSStoreFile file) {
    DSStoreAllocator allocator;
    if (!allocator.initWithFile(std::move(file))) return std::nullopt;
    return allocator;
}

DSStoreAllocator& DSStoreAllocator::operator=(DSStoreAllocator&& other) noexcept {
    if (this == &other) return *this;
    close();
    DSStoreStream::operator=(static_cast<DSStoreStream&&>(other));
    _root = std::move(other._root);
    _offsets = std::move(other._offsets);
    _numOffsets = other._numOffsets;
    _entries = std::move(other._entries);
    return *this;
}

bool DSStoreAllocator::initWithFile(DSStoreFile file) {
    if (!file.isOpen()) return false;
    _size = static_cast<std::uint32_t>(
        std::min<std::uint64_t>(file.length(), std::numeric_limits<std::uint32_t>::max()));
    _file = std::move(file);
    return readHeader() && readOffsets() && readEntries();
}

bool DSStoreAllocator::readHeader() {
    if (readUInt32() != Version || readUInt32() != Magic) return false;
    const std::uint32_t offset = readUInt32(), size = readUInt32();
    if (readUInt32() != offset) return false;
    _root = DSStoreBlock(_file, offset, size);
    return true;
}

bool DSStoreAllocator::readOffsets() {
    const std::uint64_t blocks = _root.readUInt32();
    const std::uint64_t places = (blocks + TableStep - 1) / TableStep * TableStep;
    _root.skipBytes(4);
    if (places == 0 || places * sizeof(std::uint32_t) > remainingBytes()) return false;
    _numOffsets = static_cast<std::uint32_t>(places);
    _offsets.reserve(_numOffsets);
    std::array<std::uint8_t, TableStep * sizeof(std::uint32_t)> portion;
    while (_offsets.size() < _numOffsets) {
        _root.readBytes(portion);
        for (std::size_t i = 0; i < portion.size(); i += sizeof(std::uint32_t))
            _offsets.push_back(detail::bigEndian32(&portion[i]));
    }
    return true;
}

bool DSStoreAllocator::readEntries() {
    const std::uint32_t count = _root.readUInt32();
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint8_t length = _root.readUInt8();
        const auto name = readName(length, _root);
        if (!name) break;
        _entries[*name] = _root.readUInt32();
    }
    return count > 0;
}

std::size_t DSStoreAllocator::indexOfEntryNamed(std::string_view name) const {
    const auto entry = _entries.find(name);
    return entry == _entries.end() ? NotFound : entry->second;
}

std::uint32_t DSStoreAllocator::offsetAtIndex(std::size_t index) const noexcept {
    return index < _offsets.size() ? _offsets[index] & ~SizeBits : 0;
}

std::uint32_t DSStoreAllocator::sizeAtIndex(std::size_t index) const noexcept {
    const bool isThere = index < _offsets.size() && _offsets[index] != 0;
    return isThere ? std::uint32_t{1} << (_offsets[index] & SizeBits) : 0;
}

std::optional<DSStoreBlock> DSStoreAllocator::blockAtIndex(std::size_t index) const {
    const std::uint32_t offset = offsetAtIndex(index), size = sizeAtIndex(index);
    if (size == 0 || BytesBeforeBlocks + offset + size > _size) return std::nullopt;
    return DSStoreBlock(_file, offset, size);
}

std::optional<DSStoreBlock> DSStoreAllocator::blockForEntryNamed(std::string_view name) const {
    return blockAtIndex(indexOfEntryNamed(name));
}

std::optional<DSStoreStream> DSStoreAllocator::streamAtIndex(std::size_t index) const {
    if (index >= _offsets.size()) return std::nullopt;
    return DSStoreStream(_file, offsetAtIndex(index), sizeAtIndex(index));
}

std::optional<DSStoreStream> DSStoreAllocator::streamForEntryNamed(std::string_view name) const {
    return streamAtIndex(indexOfEntryNamed(name));
}

std::string DSStoreAllocator::descriptionOfEntries() const {
    std::string entries = "{\n";
    for (const auto& [name, index] : _entries)
        entries += fmt::format("    {} = {};\n", name, index);
    return entries + "}";
}

String DSStoreAllocator::description() const {
    return String::fromUTF8(fmt::format("DSStoreAllocator: {} blocks, Entries:\n{}", _numOffsets,
                                        descriptionOfEntries()));
}

}  // namespace velmo
