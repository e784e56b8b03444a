#include "PropertyListJson.h"

#include <velmocore/platform/DateFormat.h>
#include <velmocore/storage/Base64.h>

namespace velmo::tool {
namespace {

/// Lists nest at most as deep as reading one lets them.
struct JsonMaker {
    Json operator()(std::monostate) const { return {}; }
    Json operator()(Date date) const { return stringInISO8601(date); }
    Json operator()(const Data& bytes) const { return encodedBase64Data(bytes); }
    Json operator()(const PropertyListArray& values) const {
        JsonArray array;
        for (const PropertyList& value : values) array.push_back(jsonOfPropertyList(value));
        return array;
    }
    Json operator()(const PropertyListDictionary& values) const {
        JsonObject object;
        for (const auto& [key, value] : values) object.push_back({key, jsonOfPropertyList(value)});
        return object;
    }
    template <class Value>
    Json operator()(const Value& value) const {
        return value;
    }
};

}  // namespace

Json jsonOfPropertyList(const PropertyList& list) { return std::visit(JsonMaker(), list.value); }

std::string_view typeOfPropertyList(const PropertyList& list) {
    // In the order of the alternatives.
    constexpr std::string_view Names[] = {"none",   "bool", "integer", "real",      "date",
                                          "string", "data", "array",   "dictionary"};
    return Names[list.value.index()];
}

void printPropertyList(Report& report, const PropertyList& list) {
    if (const Data* bytes = list.as<Data>()) return report.printBytes(charsOf(*bytes));
    if (const String* text = list.as<String>()) return report.printText(*text);
    report.printLine(jsonOfPropertyList(list).plain());
}

}  // namespace velmo::tool
