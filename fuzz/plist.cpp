// Bytes as a property list: what is read is bounded, and reading it again changes nothing. With
// the first byte odd they become the objects of a binary list.
#include <velmocore/platform/PropertyList.h>

#include "Input.h"

using namespace velmo;
using fuzz::require;

namespace {

/// A header and a trailer around the bytes, which hold the objects and the table behind them.
std::string binaryList(std::string_view bytes) {
    std::string list = "bplist00" + std::string(bytes);
    const std::size_t count = bytes.size() / 4, table = list.size() - count;
    list += std::string(6, '\0') + "\x01\x01";
    for (const std::size_t number : {count, std::size_t{0}, table})
        for (int shift = 56; shift >= 0; shift -= 8) list += static_cast<char>(number >> shift);
    return list;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string list(reinterpret_cast<const char*>(data), size);
    if (size > 0 && (data[0] & 1)) list = binaryList(std::string_view(list).substr(1));
    const auto xml = propertyListAsXML(list);
    if (!xml) return 0;
    require(xml->size() <= 64 * list.size() + (1 << 20));
    const auto again = propertyListAsXML(*xml);
    if (again) require(propertyListAsXML(*again) == again);
    const auto value = propertyListFromData(list);
    require(value.has_value());
    const auto binary = dataFromPropertyList(*value, PropertyListFormat::Binary);
    if (binary) require(propertyListFromData(*binary).has_value());
    return 0;
}
