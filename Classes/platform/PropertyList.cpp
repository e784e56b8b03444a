#include <velmocore/platform/PropertyList.h>

#include <plist/plist.h>

#include <cstdlib>
#include <limits>
#include <memory>

#include "platform/PropertyListGuard.h"

namespace velmo {
namespace {

using Node = std::unique_ptr<void, decltype(&plist_free)>;

Node parse(Bytes bytes) {
    plist_t node = nullptr;
    if (bytes.size() <= std::numeric_limits<std::uint32_t>::max())
        plist_from_memory(reinterpret_cast<const char*>(bytes.data()),
                          static_cast<std::uint32_t>(bytes.size()), &node);
    return {node, &plist_free};
}

}  // namespace

std::optional<Data> propertyListAsXML(Bytes bytes) {
    // The parser looks at the first units without asking for the length.
    if (bytes.size() < 8) return std::nullopt;
    const detail::HarmlessList list = detail::harmlessPropertyList(bytes);
    if (!list.isHarmless) return std::nullopt;
    const Node root = parse(list.instead ? Bytes(*list.instead) : bytes);
    if (!root) return std::nullopt;
    char* xml = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(root.get(), &xml, &length);
    const std::unique_ptr<char, decltype(&std::free)> owner(xml, &std::free);
    if (!xml) return std::nullopt;
    return Data(xml, xml + length);
}

}  // namespace velmo
