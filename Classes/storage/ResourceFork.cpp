// A header of 16 bytes tells where the data and the map are: offsets of both,
// then lengths of both. The map lists the types, each with a list of references to its resources,
// each of which tells where in the data a resource is: its length, then its bytes. Counts are one
// less than what they count.
#include "storage/ResourceFork.h"

#include "storage/BigEndian.h"
#include "storage/ByteParts.h"

namespace velmo::detail {
namespace {

constexpr std::size_t HeaderSize = 16, TypeSize = 8, ReferenceSize = 12;
/// In the map: where the list of types begins.
constexpr std::size_t TypeListField = 24;

std::uint32_t bigEndian24(const std::uint8_t* bytes) { return bigEndian32(bytes) >> 8; }

/// Numbers at offsets of a part; none if they do not lie in it.
std::optional<std::uint16_t> number16(Bytes part, std::uint64_t offset) {
    const auto bytes = partOf(part, offset, 2);
    if (!bytes) return std::nullopt;
    return bigEndian16(bytes->data());
}

std::optional<Bytes> partByFields(Bytes fork, const std::uint8_t* offset,
                                  const std::uint8_t* length) {
    return partOf(fork, bigEndian32(offset), bigEndian32(length));
}

/// The reference to the first resource of a type.
std::optional<Bytes> firstReference(Bytes map, std::uint32_t type) {
    const auto list = number16(map, TypeListField);
    if (!list) return std::nullopt;
    const auto lastType = number16(map, *list);
    if (!lastType) return std::nullopt;
    const std::size_t count = static_cast<std::uint16_t>(*lastType + 1);  // 0xFFFF is none
    for (std::size_t i = 0; i < count; ++i) {
        const auto row = partOf(map, *list + 2 + i * TypeSize, TypeSize);
        if (!row) return std::nullopt;
        if (bigEndian32(row->data()) == type)
            return partOf(map, std::uint64_t{*list} + bigEndian16(row->data() + 6), ReferenceSize);
    }
    return std::nullopt;
}

}  // namespace

std::optional<Bytes> firstResource(Bytes fork, std::uint32_t type) {
    const auto header = partOf(fork, 0, HeaderSize);
    if (!header) return std::nullopt;
    const std::uint8_t* const fields = header->data();
    const auto data = partByFields(fork, fields, fields + 8);
    const auto map = partByFields(fork, fields + 4, fields + 12);
    if (!data || !map) return std::nullopt;
    const auto reference = firstReference(*map, type);
    if (!reference) return std::nullopt;
    const std::uint32_t offset = bigEndian24(reference->data() + 5);
    const auto length = partOf(*data, offset, 4);
    if (!length) return std::nullopt;
    return partOf(*data, std::uint64_t{offset} + 4, bigEndian32(length->data()));
}

}  // namespace velmo::detail
