// Records. What their values look like stands in one table; reading one and stepping over one both
// go by it. A record that is not wanted is stepped over without being decoded: a search looks at
// every record of a folder for one comment.
#include <velmocore/storage/DSStoreEntry.h>

#include <algorithm>
#include <array>

#include "storage/BigEndianText.h"

namespace velmo {
namespace {

constexpr std::uint32_t CountBytes = 4, CodesBytes = 8;

enum class Kind : std::uint8_t { Truth, Number, Bytes, Text };

/// One row a type: how a value is read, and how many bytes it has, or each of so many units that
/// a number in front of it tells.
struct TypeRow {
    DSStoreType type;
    Kind kind;
    std::uint8_t bytes;

    bool isCounted() const { return kind == Kind::Bytes || kind == Kind::Text; }
};
constexpr TypeRow Types[] = {
    {DSStoreType::Blob, Kind::Bytes, 1},  {DSStoreType::Bool, Kind::Truth, 1},
    {DSStoreType::Comp, Kind::Number, 8}, {DSStoreType::Dutc, Kind::Number, 8},
    {DSStoreType::Long, Kind::Number, 4}, {DSStoreType::Short, Kind::Number, 4},
    {DSStoreType::Type, Kind::Number, 4}, {DSStoreType::Ustr, Kind::Text, 2},
};

/// Null for one that is not known.
const TypeRow* rowOf(DSStoreType type) {
    const auto* row = std::ranges::find(Types, type, &TypeRow::type);
    return row == std::end(Types) ? nullptr : row;
}

std::uint64_t lengthOfValue(const TypeRow& row, DSStoreStream& stream) {
    return row.isCounted() ? std::uint64_t{stream.readUInt32()} * row.bytes : row.bytes;
}

void skipValue(DSStoreType type, DSStoreStream& stream) {
    if (const TypeRow* row = rowOf(type)) stream.skipBytes(lengthOfValue(*row, stream));
}

std::int64_t readNumber(std::size_t bytes, DSStoreStream& stream) {
    return bytes == 8 ? static_cast<std::int64_t>(stream.readUInt64())
                      : static_cast<std::int32_t>(stream.readUInt32());
}

DSStoreValue readValue(const TypeRow& row, std::uint64_t length, DSStoreStream& stream) {
    if (row.kind == Kind::Truth) return stream.readUInt8() != 0;
    if (row.kind == Kind::Number) return readNumber(row.bytes, stream);
    std::optional<Data> data = stream.readDataOfLength(length);
    if (!data) return {};
    if (row.kind == Kind::Text) return detail::bigEndianString(*data);
    return std::move(*data);
}

DSStoreValue readValue(DSStoreType type, DSStoreStream& stream) {
    const TypeRow* row = rowOf(type);
    return row ? readValue(*row, lengthOfValue(*row, stream), stream) : DSStoreValue();
}

/// The same if all of it is there; none moves to the end.
std::optional<DSStoreValue> readWholeValue(DSStoreType type, DSStoreStream& stream) {
    const TypeRow* row = rowOf(type);
    if (!row) return DSStoreValue();
    const bool hasCount = !row->isCounted() || stream.remainingBytes() >= CountBytes;
    const std::uint64_t length = lengthOfValue(*row, stream);
    if (hasCount && length <= stream.remainingBytes()) return readValue(*row, length, stream);
    stream.skipBytes(length);
    return std::nullopt;
}

/// Bytes of the name that comes next; 0 if there is none.
std::uint64_t readNameLength(DSStoreStream& stream) {
    return std::uint64_t{stream.readUInt32()} * 2;
}

/// Whether codec and type come next; if not, the stream is at its end.
bool hasCodes(DSStoreStream& stream) {
    const bool isThere = stream.remainingBytes() >= CodesBytes;
    if (!isThere) stream.skipBytes(CodesBytes);
    return isThere;
}

/// Whether the stream has these bytes next. It moves on by so many, whether or not.
bool readsAs(Bytes expected, DSStoreStream& stream) {
    if (const Bytes ahead = stream.loadedBytes(); ahead.size() >= expected.size()) {
        stream.skipBytes(expected.size());
        return std::equal(expected.begin(), expected.end(), ahead.begin());
    }
    std::array<std::uint8_t, 512> portion;
    bool isEqual = true;
    while (isEqual && !expected.empty()) {
        const std::span part = std::span(portion).first(std::min(expected.size(), portion.size()));
        isEqual = stream.readBytes(part) == part.size() &&
                  std::equal(part.begin(), part.end(), expected.begin());
        expected = expected.subspan(part.size());
    }
    stream.skipBytes(expected.size());
    return isEqual;
}

}  // namespace

DSStoreEntry::DSStoreEntry(String filename, std::uint32_t codec, DSStoreType type,
                           DSStoreValue value)
    : _filename(std::move(filename)), _codec(codec), _type(type), _value(std::move(value)) {}

DSStoreEntry DSStoreEntry::initWithFilenameWithBytes(Bytes filename, std::uint32_t codec,
                                                     DSStoreType type, DSStoreValue value) {
    return {detail::bigEndianString(filename), codec, type, std::move(value)};
}

String DSStoreEntry::description() const {
    return String(u"DSStoreEntry <") + _filename + u">: " + stringOfDSStoreCode(_codec) + u":" +
           stringOfDSStoreCode(static_cast<std::uint32_t>(_type));
}

DSStoreEntry::Reading DSStoreEntry::valueForFilenameWithBytes(Bytes filename, std::uint32_t codec,
                                                              DSStoreStream& stream) {
    if (filename.empty() || codec == 0) return {};
    const std::uint64_t length = readNameLength(stream);
    if (length == 0) return {};
    const bool isNamedSo = length == filename.size() && readsAs(filename, stream);
    if (length != filename.size()) stream.skipBytes(length);
    if (!hasCodes(stream)) return {};
    const std::uint32_t found = stream.readUInt32();
    Reading reading = {.isWanted = isNamedSo && found == codec,
                       .type = DSStoreType{stream.readUInt32()}};
    if (reading.isWanted)
        reading.value = readValue(reading.type, stream);
    else
        skipValue(reading.type, stream);
    return reading;
}

DSStoreEntry::Reading DSStoreEntry::valueForFilename(std::u16string_view filename,
                                                     std::uint32_t codec, DSStoreStream& stream) {
    return valueForFilenameWithBytes(detail::bigEndianBytesOf(filename), codec, stream);
}

std::optional<DSStoreEntry> DSStoreEntry::entryForFilenameWithBytes(Bytes filename,
                                                                    std::uint32_t codec,
                                                                    DSStoreStream& stream) {
    Reading reading = valueForFilenameWithBytes(filename, codec, stream);
    if (!reading.isWanted) return std::nullopt;
    return initWithFilenameWithBytes(filename, codec, reading.type, std::move(reading.value));
}

std::optional<DSStoreEntry> DSStoreEntry::entryForFilename(std::u16string_view filename,
                                                           std::uint32_t codec,
                                                           DSStoreStream& stream) {
    return entryForFilenameWithBytes(detail::bigEndianBytesOf(filename), codec, stream);
}

std::optional<DSStoreEntry> DSStoreEntry::nextEntry(DSStoreStream& stream) {
    const std::optional<Data> name = stream.readDataOfLength(readNameLength(stream));
    if (!name || !hasCodes(stream)) return std::nullopt;
    const std::uint32_t codec = stream.readUInt32();
    const DSStoreType type{stream.readUInt32()};
    std::optional<DSStoreValue> value = readWholeValue(type, stream);
    if (!value) return std::nullopt;
    return initWithFilenameWithBytes(*name, codec, type, std::move(*value));
}

String stringOfDSStoreCode(std::uint32_t code) {
    char16_t units[4];
    for (int i = 0; i < 4; ++i) units[i] = static_cast<char16_t>(code >> (3 - i) * 8 & 0xFF);
    return std::u16string_view(units, 4);
}

bool isKnownDSStoreType(DSStoreType type) { return rowOf(type) != nullptr; }

}  // namespace velmo
