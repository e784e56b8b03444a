// Values to the trees of the library and back.
//
// Both ways recurse, at most 256 levels deep: reading because the guard lets nothing deeper
// pass, writing because it counts. The library cuts texts at their first zero byte and looks
// through all keys of a dictionary before it adds one; what this would harm is refused.
#include <velmocore/platform/PropertyList.h>

#include <cmath>
#include <cstdlib>

#include "platform/PropertyListGuard.h"
#include "platform/PropertyListNodes.h"

namespace velmo {
namespace {

using detail::PropertyNode;

/// The dates of the format count from 2001 on.
constexpr Date Epoch = std::chrono::sys_days(std::chrono::year(2001) / 1 / 1);

PropertyList valueOf(plist_t node);

std::string_view textOf(plist_t node, const char* (*view)(plist_t, std::uint64_t*)) {
    std::uint64_t length = 0;
    const char* bytes = view(node, &length);
    return bytes ? std::string_view(bytes, length) : std::string_view();
}

PropertyListArray arrayOf(plist_t node) {
    PropertyListArray array;
    plist_array_iter raw = nullptr;
    plist_array_new_iter(node, &raw);
    const std::unique_ptr<void, decltype(&std::free)> position(raw, &std::free);
    plist_t item = nullptr;
    while (plist_array_next_item(node, raw, &item), item) array.push_back(valueOf(item));
    return array;
}

PropertyListDictionary dictionaryOf(plist_t node) {
    PropertyListDictionary dictionary;
    plist_dict_iter raw = nullptr;
    plist_dict_new_iter(node, &raw);
    const std::unique_ptr<void, decltype(&std::free)> position(raw, &std::free);
    while (true) {
        char* text = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(node, raw, &text, &item);
        const std::unique_ptr<char, decltype(&std::free)> key(text, &std::free);
        if (!item) return dictionary;
        if (key) dictionary.insert_or_assign(String::fromUTF8(key.get()), valueOf(item));
    }
}

Date dateOf(plist_t node) {
    std::int32_t seconds = 0, microseconds = 0;
    plist_get_date_val(node, &seconds, &microseconds);
    return Epoch + std::chrono::duration<double>(seconds + microseconds / 1e6);
}

/// What the library tells through an out-argument.
template <class Number>
Number numberOf(plist_t node, void (*read)(plist_t, Number*)) {
    Number number = 0;
    read(node, &number);
    return number;
}

PropertyList valueOf(plist_t node) {
    switch (plist_get_node_type(node)) {
        case PLIST_BOOLEAN:
            return {numberOf<std::uint8_t>(node, &plist_get_bool_val) != 0};
        case PLIST_UINT:
            return {static_cast<std::int64_t>(numberOf(node, &plist_get_uint_val))};
        case PLIST_UID:
            return {static_cast<std::int64_t>(numberOf(node, &plist_get_uid_val))};
        case PLIST_REAL:
            return {numberOf<double>(node, &plist_get_real_val)};
        case PLIST_DATE:
            return {dateOf(node)};
        case PLIST_STRING:
            return {String::fromUTF8(textOf(node, &plist_get_string_ptr))};
        case PLIST_DATA: {
            const std::string_view bytes = textOf(node, &plist_get_data_ptr);
            return {Data(bytes.begin(), bytes.end())};
        }
        case PLIST_ARRAY:
            return {arrayOf(node)};
        case PLIST_DICT:
            return {dictionaryOf(node)};
        default:
            return {};
    }
}

/// Makes the nodes of a value; null for what cannot be written.
class NodeMaker {
public:
    PropertyNode node(const PropertyList& list) const { return std::visit(*this, list.value); }

    PropertyNode operator()(std::monostate) const { return nullptr; }
    PropertyNode operator()(bool value) const { return PropertyNode(plist_new_bool(value)); }
    PropertyNode operator()(std::int64_t value) const {
        return PropertyNode(plist_new_uint(static_cast<std::uint64_t>(value)));
    }
    PropertyNode operator()(double value) const { return PropertyNode(plist_new_real(value)); }
    PropertyNode operator()(Date value) const {
        const double time = (value - Epoch).count(), seconds = std::floor(time);
        if (!(std::abs(time) < 2147483647)) return nullptr;
        return PropertyNode(plist_new_date(static_cast<std::int32_t>(seconds),
                                           static_cast<std::int32_t>((time - seconds) * 1e6)));
    }
    PropertyNode operator()(const String& value) const {
        return canBeText(value) ? PropertyNode(plist_new_string(value.utf8().c_str())) : nullptr;
    }
    PropertyNode operator()(const Data& value) const {
        const Bytes bytes = value;  // the library wants an address even for no bytes
        return PropertyNode(plist_new_data(
            bytes.empty() ? "" : reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    }
    PropertyNode operator()(const PropertyListArray& values) const {
        if (levels_ == 0) return nullptr;
        PropertyNode array(plist_new_array());
        for (const PropertyList& value : values) {
            PropertyNode item = NodeMaker(levels_ - 1).node(value);
            if (!item) return nullptr;
            plist_array_append_item(array.get(), item.release());
        }
        return array;
    }
    PropertyNode operator()(const PropertyListDictionary& values) const {
        if (levels_ == 0 || values.size() > detail::MaxListKeys) return nullptr;
        PropertyNode dictionary(plist_new_dict());
        for (const auto& [key, value] : values) {
            PropertyNode item = NodeMaker(levels_ - 1).node(value);
            if (!item || !canBeText(key)) return nullptr;
            plist_dict_set_item(dictionary.get(), key.utf8().c_str(), item.release());
        }
        return dictionary;
    }

    explicit NodeMaker(std::size_t levels) : levels_(levels) {}

private:
    static bool canBeText(const String& text) {
        return !text.isAbsent() && text.view().find(u'\0') == std::u16string_view::npos;
    }

    std::size_t levels_;  // that arrays and dictionaries may still nest
};

}  // namespace

std::optional<PropertyList> propertyListFromData(Bytes bytes) {
    const PropertyNode root = detail::propertyNode(bytes);
    if (!root) return std::nullopt;
    return valueOf(root.get());
}

std::optional<Data> dataFromPropertyList(const PropertyList& list, PropertyListFormat format) {
    const PropertyNode root = NodeMaker(detail::MaxListLevels).node(list);
    if (!root) return std::nullopt;
    return detail::writtenNode(root.get(),
                               format == PropertyListFormat::XML ? &plist_to_xml : &plist_to_bin);
}

}  // namespace velmo
