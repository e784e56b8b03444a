// The walk through the records of a keyed buffer: the one place that knows where a record ends and
// when to stop. The readers, the comparison and the removal all go through it.
//
// No length is believed: what lies behind the end of the buffer is told to be absent. That the walk
// does not step to a last fragment of less than a header is as the format has it.
#pragma once

#include <algorithm>
#include <optional>

#include <velmocore/platform/Bytes.h>
#include <velmocore/storage/KeyedData.h>

#include "storage/BigEndian.h"

namespace velmo::detail {

/// The row of a tag; null for an unknown one.
constexpr const KeyedType* keyedTypeOf(KeyedTag tag) noexcept {
    for (const KeyedType& type : KeyedTypes)
        if (type.tag == tag) return &type;
    return nullptr;
}

constexpr bool hasKeyedPayload(KeyedTag tag) noexcept {
    return tag == KeyedTag::Blob || tag == KeyedTag::Text;
}

/// A record in the rest of its buffer, which begins with it and has a whole header at least.
class RecordView {
public:
    RecordView(Bytes data, std::size_t offset) : rest_(data.subspan(offset)), offset_(offset) {}

    std::size_t offset() const { return offset_; }
    KeyedTag tag() const { return KeyedTag{bigEndian32(rest_.data())}; }
    std::uint32_t key() const { return bigEndian32(rest_.data() + 4); }
    const std::uint8_t* value() const { return rest_.data() + 8; }
    /// That the payload is said to have.
    std::size_t payloadLength() const { return hasKeyedPayload(tag()) ? bigEndian32(value()) : 0; }
    /// With its payload; may be more than there is.
    std::size_t size() const { return KeyedHeaderSize + payloadLength(); }
    bool isWhole() const { return size() <= rest_.size(); }
    /// From its start to the end of the buffer.
    std::size_t bytesLeft() const { return rest_.size(); }
    Bytes bytes() const { return rest_.first(std::min(size(), rest_.size())); }
    /// What stands behind the header; none if some of it is missing.
    std::optional<Bytes> payload() const {
        if (!isWhole()) return std::nullopt;
        return rest_.subspan(KeyedHeaderSize, payloadLength());
    }
    bool is(KeyedTag tag, std::uint32_t key) const {
        return this->tag() == tag && this->key() == key;
    }

private:
    Bytes rest_;
    std::size_t offset_;
};

enum class UnknownTags { EndTheWalk, AreSteppedOver };

/// Calls visit(RecordView) for each record until it returns false.
template <UnknownTags Unknown = UnknownTags::EndTheWalk, class Visit>
void walkRecords(Bytes data, Visit visit) {
    if (data.size() < KeyedHeaderSize) return;
    for (std::size_t offset = 0;;) {
        const RecordView record(data, offset);
        if (Unknown == UnknownTags::EndTheWalk && !keyedTypeOf(record.tag())) return;
        const std::size_t size = record.size();  // the visit may move the record
        if (!visit(record) || record.bytesLeft() < size + KeyedHeaderSize) return;
        offset += size;
    }
}

/// The first record of that tag and key.
inline std::optional<RecordView> findRecord(Bytes data, KeyedTag tag, std::uint32_t key) {
    std::optional<RecordView> found;
    walkRecords(data, [&](const RecordView& record) {
        if (record.is(tag, key)) found = record;
        return !found;
    });
    return found;
}

}  // namespace velmo::detail
