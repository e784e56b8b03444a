#include <velmocore/platform/PropertyList.h>

#include <cstdlib>
#include <limits>

#include "platform/PropertyListGuard.h"
#include "platform/PropertyListNodes.h"

namespace velmo {
namespace detail {

PropertyNode propertyNode(Bytes bytes) {
    // The parser looks at the first units without asking for the length.
    if (bytes.size() < 8) return nullptr;
    const HarmlessList list = harmlessPropertyList(bytes);
    if (!list.isHarmless) return nullptr;
    if (list.instead) bytes = *list.instead;
    plist_t node = nullptr;
    if (bytes.size() <= std::numeric_limits<std::uint32_t>::max())
        plist_from_memory(reinterpret_cast<const char*>(bytes.data()),
                          static_cast<std::uint32_t>(bytes.size()), &node);
    return PropertyNode(node);
}

std::optional<Data> writtenNode(void* node, void (*write)(plist_t, char**, std::uint32_t*)) {
    char* bytes = nullptr;
    std::uint32_t length = 0;
    write(node, &bytes, &length);
    const std::unique_ptr<char, decltype(&std::free)> owner(bytes, &std::free);
    if (!bytes) return std::nullopt;
    return Data(bytes, bytes + length);
}

}  // namespace detail

const PropertyList* PropertyList::valueForKey(std::u16string_view key) const noexcept {
    const auto* dictionary = as<PropertyListDictionary>();
    if (!dictionary) return nullptr;
    const auto found = dictionary->find(key);
    return found == dictionary->end() ? nullptr : &found->second;
}

const String* PropertyList::string(std::u16string_view key) const noexcept {
    const PropertyList* found = valueForKey(key);
    return found ? found->as<String>() : nullptr;
}

std::optional<Data> propertyListAsXML(Bytes bytes) {
    const detail::PropertyNode root = detail::propertyNode(bytes);
    if (!root) return std::nullopt;
    return detail::writtenNode(root.get(), &plist_to_xml);
}

}  // namespace velmo
