// What dictionaries of attributes say. They come from files or from a desktop's index, and hold
// what other programs wrote: a value of another type than expected is no value.
#include <velmocore/storage/MetaDataStore.h>

#include <fmt/core.h>

#include <velmocore/platform/Log.h>
#include <velmocore/text/Comparison.h>
#include <velmocore/text/StringFiles.h>
#include <velmocore/url/URLSchemes.h>

#include "text/PathParts.h"

namespace velmo {
namespace {

const PropertyList& valueOf(const PropertyListDictionary& attributes, std::u16string_view key) {
    static const PropertyList Absent;
    const auto found = attributes.find(key);
    return found == attributes.end() ? Absent : found->second;
}

/// In the order of the alternatives.
std::string_view classOf(const PropertyList& list) {
    constexpr std::string_view Names[] = {"nothing", "bool", "integer", "real",      "date",
                                          "string",  "data", "array",   "dictionary"};
    return Names[list.value.index()];
}

/// UTF-8; a zero at the end makes the first one end it.
String textOfBytes(Bytes bytes) {
    if (bytes.empty()) return {};
    std::string_view text = charsOf(bytes);
    if (text.back() == '\0') text = text.substr(0, text.find('\0'));
    return stringWithData(text, UTF8StringEncoding);
}

String textOf(const PropertyList& value) {
    if (const String* text = value.as<String>()) return *text;
    if (const Data* bytes = value.as<Data>()) return textOfBytes(*bytes);
    return {};
}

}  // namespace

std::optional<std::vector<String>> validatedTags(const PropertyList& tags) {
    if (tags.as<std::monostate>()) return std::nullopt;
    const auto* list = tags.as<PropertyListArray>();
    if (!list) {
        log(fmt::format("Invalid array: {}", classOf(tags)));
        return std::nullopt;
    }
    std::vector<String> result;
    // What is no string among the tags is left out.
    for (const PropertyList& tag : *list)
        if (const String* text = tag.as<String>()) {
            const std::size_t end = text->view().find(u'\n');
            result.push_back(
                end == std::u16string_view::npos ? *text : String(text->view().substr(0, end)));
        }
    return result;
}

bool isEditableNote(const PropertyListDictionary& attributes) {
    return attributes.contains(EditableNoteKey);
}

String getWhereFrom(const PropertyListDictionary& attributes) {
    const PropertyList* value = &valueOf(attributes, ItemWhereFromsKey);
    if (value->as<std::monostate>()) value = &valueOf(attributes, WhereFromsKey);
    if (const auto* list = value->as<PropertyListArray>()) {
        if (list->empty()) return {};
        value = &list->front();
    }
    const String source = textOf(*value);
    return isDataStringURL(source) ? String() : source;
}

std::optional<std::vector<String>> getFinderTags(const PropertyListDictionary& attributes) {
    return validatedTags(valueOf(attributes, UserTagsKey));
}

PropertyList getFinderComment(const PropertyListDictionary& attributes) {
    return valueOf(attributes, FinderCommentKey);
}

String getItemTitleForFile(const PropertyListDictionary& attributes, std::u16string_view path) {
    const String* title = valueOf(attributes, ItemTitleKey).as<String>();
    if (!title || isEqualToStringNoCase(*title, detail::lastComponentOf(path)) ||
        isEqualToStringNoCase(*title, path))
        return {};
    return *title;
}

}  // namespace velmo
