#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/storage/DSStoreFile.h>

namespace velmo {

/// Numbers and bytes read one after the other from a stretch of a file, the highest byte of a
/// number first. Nothing behind the stretch is read, and never a part of what was asked for: what
/// does not fit moves the position to the end and gives 0 or nothing.
///
///     DSStoreStream stream(DSStoreFile::fileWithData({0, 0, 0, 1, 'B', 'u', 'd', '1'}), 0, 4);
///     stream.readUInt16();        // 17013; that is "Bu", as offsets count from byte 4 on
///     stream.remainingBytes();    // 2
///     stream.description();       // DSStoreStream: 4 bytes at offset 0
///
/// One thread at a time uses the streams of a file.
class VELMO_API DSStoreStream {
public:
    /// Of no bytes.
    DSStoreStream() noexcept = default;
    /// Of so many bytes of a file, from an offset on.
    DSStoreStream(DSStoreFile file, std::uint32_t offset, std::uint32_t size);
    [[nodiscard]] static DSStoreStream streamWithFile(DSStoreFile file, std::uint32_t offset,
                                                      std::uint32_t size);

    DSStoreStream(const DSStoreStream&) = default;
    DSStoreStream(DSStoreStream&&) noexcept = default;
    DSStoreStream& operator=(const DSStoreStream&) = default;
    DSStoreStream& operator=(DSStoreStream&&) noexcept = default;
    virtual ~DSStoreStream() = default;

    /// What it reads from.
    [[nodiscard]] const DSStoreFile& file() const noexcept VELMO_LIFETIME { return _file; }
    /// How many bytes of the file stand before offset 0.
    [[nodiscard]] virtual std::uint32_t headerOffset() const noexcept { return 4; }
    /// How many bytes are ahead, and whether none are.
    [[nodiscard]] std::uint32_t remainingBytes() const noexcept {
        return isEOF() ? 0 : _size - _pos;
    }
    [[nodiscard]] bool isEOF() const noexcept { return _pos >= _size; }
    /// Closes the file, for all that read it.
    void close() { _file.close(); }

    /// The next number; 0 if it is not all there.
    std::uint8_t readUInt8();
    std::uint16_t readUInt16();
    std::uint32_t readUInt32() {
        const Bytes ahead = loadedBytes();
        if (ahead.size() < 4) return readUInt32FromFile();
        _pos += 4;
        return std::uint32_t{ahead[0]} << 24 | std::uint32_t{ahead[1]} << 16 |
               std::uint32_t{ahead[2]} << 8 | ahead[3];
    }
    std::uint64_t readUInt64();
    /// Moves on, stopping at the end.
    void skipBytes(std::uint64_t count) noexcept {
        if (hasAhead(count)) _pos += static_cast<std::uint32_t>(count);
    }
    /// Fills all of the bytes and gives their number, or 0. Where a file gives less than it has by
    /// its length, that is told, and the position stands behind it.
    virtual std::size_t readBytes(std::span<std::uint8_t> bytes);
    /// None for a length of 0, and if so many bytes cannot be read.
    [[nodiscard]] std::optional<Data> readDataOfLength(std::uint64_t length);

    /// Ours: those of the bytes to come that are in memory; all of a block's, none of another
    /// stream's.
    [[nodiscard]] Bytes loadedBytes() const noexcept VELMO_LIFETIME {
        return _value ? Bytes(_value->data() + _pos, remainingBytes()) : Bytes();
    }

    /// Whether both are of one class and read the same stretch of the same file.
    [[nodiscard]] bool isEqual(const DSStoreStream& other) const noexcept;
    /// For people: its class, offset and size.
    [[nodiscard]] virtual String description() const;

protected:
    /// Whether so many bytes are ahead; if not, the position goes to the end.
    bool hasAhead(std::uint64_t count) noexcept {
        const bool isThere = count <= remainingBytes();
        if (!isThere) _pos = _size;
        return isThere;
    }
    /// The most bytes that can be had, as a stretch may be said to be longer than its file.
    virtual std::uint64_t mostBytes() const noexcept { return _file.length(); }

    std::uint32_t _size = 0, _offset = 0, _pos = 0;
    DSStoreFile _file;
    std::shared_ptr<const Data> _value;  // all bytes of a block; copies share them

private:
    std::uint32_t readUInt32FromFile();
};

/// The same for a block that is read into memory at once.
class VELMO_API DSStoreBlock final : public DSStoreStream {
public:
    /// Of no bytes; or of so many of a file, from an offset on.
    DSStoreBlock() noexcept = default;
    DSStoreBlock(DSStoreFile file, std::uint32_t offset, std::uint32_t size);
    [[nodiscard]] static DSStoreBlock blockWithFile(DSStoreFile file, std::uint32_t offset,
                                                    std::uint32_t size);

    /// On a failed read the bytes are zeros.
    std::size_t readBytes(std::span<std::uint8_t> bytes) override;

    /// Ours: all of the block; none if it could not be read.
    [[nodiscard]] std::optional<Bytes> value() const noexcept VELMO_LIFETIME {
        return _value ? std::optional<Bytes>(*_value) : std::nullopt;
    }

private:
    std::uint64_t mostBytes() const noexcept override { return _value ? _value->size() : 0; }
};

}  // namespace velmo
