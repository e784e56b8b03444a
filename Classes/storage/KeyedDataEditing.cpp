// Writing of keyed buffers. Removal is one compacting pass that mends the buffer as it goes: what
// no reader would ever see is cut off, so that a record that is added next is seen.
#include <velmocore/storage/KeyedDataEditing.h>

#include <bit>
#include <cstring>
#include <functional>
#include <limits>

#include <velmocore/platform/Log.h>

#include "platform/Assertion.h"
#include "platform/Surrogates.h"
#include "platform/Utf8.h"
#include "storage/KeyedWalk.h"
#include "text/SmallBuffer.h"

namespace velmo {
namespace {

using detail::RecordView;

constexpr const char* Source = "Classes/KeyedData";
constexpr std::size_t LongestPayload = std::numeric_limits<std::uint32_t>::max();
constexpr std::size_t BytesAUnit = 6, BytesOnStack = 512;

void appendHeader(Data& data, KeyedTag tag, std::uint32_t key, std::uint64_t bits,
                  std::size_t valueBytes) {
    std::uint8_t header[KeyedHeaderSize] = {};
    detail::putBigEndian(header, static_cast<std::uint32_t>(tag), 4);
    detail::putBigEndian(header + 4, key, 4);
    detail::putBigEndian(header + 8, bits, valueBytes);
    data.insert(data.end(), header, header + KeyedHeaderSize);
}

void appendPayload(Data& data, KeyedTag tag, Bytes payload, std::uint32_t key) {
    appendHeader(data, tag, key, payload.size(), 4);
    data.insert(data.end(), payload.begin(), payload.end());
}

/// Whether bytes lie in the buffer, which is about to move or change.
bool isWithin(Bytes bytes, const Data& data) {
    const std::less_equal<const std::uint8_t*> notAbove;
    return !bytes.empty() && notAbove(data.data(), bytes.data()) &&
           notAbove(bytes.data(), data.data() + data.size());
}

bool addPayload(Data& data, KeyedTag tag, Bytes payload, std::uint32_t key) {
    if (payload.empty() || payload.size() > LongestPayload) return false;
    const Data copy = isWithin(payload, data) ? Data(payload.begin(), payload.end()) : Data();
    appendPayload(data, tag, copy.empty() ? payload : Bytes(copy), key);
    return true;
}

/// Keeps the records for which the test is false.
template <class Test>
void removeRecords(Data& data, unsigned line, Test test) {
    std::size_t kept = 0;
    detail::walkRecords(data, [&](const RecordView& record) {
        if (!record.isWhole()) return false;
        if (test(record)) return true;
        const std::size_t size = record.size();
        std::memmove(data.data() + kept, data.data() + record.offset(), size);
        kept += size;
        return true;
    });
    detail::require(kept <= data.size(), Source, line, "(NSUInteger)(dst-src)<=srcLength");
    data.resize(kept);
}

std::uint64_t bitsOfSeconds(Date date) {
    return std::bit_cast<std::uint64_t>((date - ReferenceDate).count());
}

}  // namespace

bool detail::addKeyedBits(Data& data, KeyedTag tag, std::uint64_t bits, std::uint32_t key) {
    appendHeader(data, tag, key, bits, keyedTypeOf(tag)->valueBytes);
    return true;
}

bool detail::setKeyedBits(Data& data, KeyedTag tag, std::uint64_t bits, std::uint32_t key) {
    const auto record = findRecord(data, tag, key);
    if (!record) return addKeyedBits(data, tag, bits, key);
    putBigEndian(data.data() + record->offset() + 8, bits, keyedTypeOf(tag)->valueBytes);
    return true;
}

void detail::removeFirstKeyed(Data& data, KeyedTag tag, std::uint32_t key) {
    bool isGone = false;
    removeRecords(data, __LINE__, [&](const RecordView& record) {
        return !isGone && (isGone = record.is(tag, key));
    });
}

bool addData(Data& data, Bytes value, std::uint32_t key) {
    return addPayload(data, KeyedTag::Blob, value, key);
}

bool addUTF8String(Data& data, std::string_view value, std::uint32_t key) {
    return addPayload(data, KeyedTag::Text, value, key);
}

bool setData(Data& data, Bytes value, std::uint32_t key) {
    if (isWithin(value, data)) return setData(data, Data(value.begin(), value.end()), key);
    removeDataForKey(data, key);
    return addData(data, value, key);
}

bool addString(Data& data, std::u16string_view value, std::uint32_t key) {
    if (value.empty() || value.size() > LongestPayload) return false;
    if (detail::hasLoneSurrogate(value)) {
        log("Failed addStringToKeyedDataUsingEncoding: " + utf8(value));
        return false;
    }
    const std::size_t bufLen = BytesAUnit * value.size();
    detail::SmallBuffer<char, BytesOnStack> buffer(bufLen);
    const std::size_t usedBufLen = detail::encodeUtf8(value, buffer.data());
    detail::require(usedBufLen <= bufLen, Source, __LINE__, "usedBufLen<=bufLen");
    if (usedBufLen > LongestPayload) return false;
    appendPayload(data, KeyedTag::Text, std::string_view(buffer.data(), usedBufLen), key);
    return true;
}

bool setString(Data& data, std::u16string_view value, std::uint32_t key) {
    removeStringForKey(data, key);
    return addString(data, value, key);
}

bool addURL(Data& data, const URL& value, std::uint32_t key) {
    return addString(data, value.absoluteString(), key);
}

bool setURL(Data& data, const URL& value, std::uint32_t key) {
    return setString(data, value.absoluteString(), key);
}

bool addDate(Data& data, std::optional<Date> value, std::uint32_t key) {
    return value && detail::addKeyedBits(data, KeyedTag::Time, bitsOfSeconds(*value), key);
}

bool setDate(Data& data, std::optional<Date> value, std::uint32_t key) {
    return value && detail::setKeyedBits(data, KeyedTag::Time, bitsOfSeconds(*value), key);
}

void removeStringsForKey(Data& data, std::uint32_t key) {
    removeRecords(data, __LINE__,
                  [&](const RecordView& record) { return record.is(KeyedTag::Text, key); });
}

void removeKeyedDataUsingHandler(Data& data,
                                 FunctionRef<bool(KeyedTag tag, std::uint32_t key)> handler) {
    if (!handler) return;
    removeRecords(data, __LINE__,
                  [&](const RecordView& record) { return handler(record.tag(), record.key()); });
}

}  // namespace velmo
