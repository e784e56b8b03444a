// Attributes by their names: listed, read, set and removed.
#include <fmt/core.h>

#include <velmocore/storage/Base64.h>

#include "AttributesCommands.h"
#include "PropertyListJson.h"

namespace velmo::tool {
namespace {

PropertyList valueOf(const String& name, const std::string& path, const AttributeOptions& options,
                     bool& isFound) {
    Error error;
    PropertyList value = VWMetaDataStore::objectForKey(name, path, options.access, &error);
    isFound = isThere(error);
    return value;
}

JsonObject attributeObject(const String& name, const PropertyList& value) {
    return {
        {"name", name}, {"type", typeOfPropertyList(value)}, {"value", jsonOfPropertyList(value)}};
}

void list(const std::string& path, const AttributeOptions& options, Report& report) {
    Error error;
    const auto names = VWMetaDataStore::metaDataKeysAtPath(path, options.access, &error);
    isThere(error);
    report.noteHit(names.has_value());
    JsonArray attributes;
    if (!report.json()) report.printHeading(path);
    for (const String& name : names.value_or(std::set<String>())) {
        bool isFound = false;
        const PropertyList value =
            options.values ? valueOf(name, path, options, isFound) : PropertyList();
        if (report.json())
            attributes.push_back(options.values ? attributeObject(name, value)
                                                : JsonObject{{"name", name}});
        else
            report.printLine(options.values ? fmt::format("{}: {}", name.utf8(),
                                                          jsonOfPropertyList(value).plain())
                                            : name.utf8());
    }
    if (report.json())
        report.printObject(fileObject(path, {{"attributes", std::move(attributes)}}));
}

void get(const std::string& path, const AttributeOptions& options, Report& report) {
    bool isFound = false;
    const PropertyList value = valueOf(options.name, path, options, isFound);
    report.noteHit(isFound);
    // Programs get an object a file, so that they can go by the count.
    if (report.json())
        return report.printObject(fileObject(path, attributeObject(options.name, value)));
    if (!isFound) return;
    report.printHeading(path);
    printPropertyList(report, value);
}

void set(const std::string& path, const AttributeOptions& options, Report& report) {
    Error error;
    VWMetaDataStore::setObject(options.value, options.name, path, options.access, &error);
    isThere(error);
    tellChange(report, path, "set " + options.name.utf8(),
               {{"name", options.name}, {"type", typeOfPropertyList(options.value)}});
}

void remove(const std::string& path, const AttributeOptions& options, Report& report) {
    Error error;
    VWMetaDataStore::removeObjectForKey(options.name, path, options.access, &error);
    // What is not there is as it is to be, but is told by the exit code.
    const bool isRemoved = isThere(error);
    report.noteHit(isRemoved);
    if (isRemoved || report.json())
        tellChange(report, path, "removed " + options.name.utf8(),
                   {{"name", options.name}, {"removed", isRemoved}});
}

enum class ValueForm { String, Data, Base64 };

PropertyList valueOfArgument(const std::string& text, ValueForm form) {
    const String string = String::fromUTF8(text);
    if (form == ValueForm::String) return {string};
    if (form == ValueForm::Data || text.empty()) return {Data(text.begin(), text.end())};
    // The decoder takes anything.
    if (text.size() % 4 != 0 || !isBase64String(string))
        throw UsageError("VALUE: '" + text + "' is not base64");
    return {decodedBase64Data(string).value_or(Data())};
}

}  // namespace

Command makeAttributesListCommand(Session& session) {
    auto options = std::make_shared<AttributeOptions>();
    Command command = attributeCommand(session, options, list);
    command.summary = "List the attributes of files";
    command.examples = {"velmo attributes list notes.txt",
                        "velmo attributes list -r --values --json letters/"};
    command.add({flag("--values", options->values, "their values too"), noFollowOption(*options),
                 jsonFlag(session, "one JSON object a file")});
    return command;
}

Command makeAttributesGetCommand(Session& session) {
    auto options = std::make_shared<AttributeOptions>();
    Command command = attributeCommand(session, options, get);
    command.summary = "Print an attribute: strings and bytes as they are, other values as JSON";
    command.examples = {"velmo attributes get comment notes.txt"};
    command.arguments.insert(command.arguments.begin(), attributeNameArgument(*options));
    command.add({noFollowOption(*options), jsonFlag(session, "one JSON object a file")});
    return command;
}

Command makeAttributesSetCommand(Session& session) {
    auto options = std::make_shared<AttributeOptions>();
    auto kind = std::make_shared<ValueForm>(ValueForm::String);
    auto value = std::make_shared<std::string>();
    Command command = attributeCommand(session, options, set);
    command.summary = "Set an attribute";
    command.examples = {"velmo attributes set comment 'to be read' notes.txt",
                        "velmo attributes set --as data charset utf-8 notes.txt"};
    command.arguments.insert(
        command.arguments.begin(),
        {attributeNameArgument(*options), required("VALUE", *value, "what it is to hold")});
    command.add({choice("--as", "KIND", *kind,
                        "VALUE is a string, stored as a property list; or data, stored as its "
                        "bytes are; or base64 of such bytes",
                        {{"string", ValueForm::String},
                         {"data", ValueForm::Data},
                         {"base64", ValueForm::Base64}}),
                 noFollowOption(*options), jsonFlag(session, "one JSON object a file")});
    command.run = [options, kind, value, run = command.run](Report& report) {
        options->value = valueOfArgument(*value, *kind);
        run(report);
    };
    return command;
}

Command makeAttributesRemoveCommand(Session& session) {
    auto options = std::make_shared<AttributeOptions>();
    Command command = attributeCommand(session, options, remove);
    command.summary = "Remove an attribute";
    command.examples = {"velmo attributes remove comment notes.txt"};
    command.arguments.insert(command.arguments.begin(), attributeNameArgument(*options));
    command.add({noFollowOption(*options), jsonFlag(session, "one JSON object a file")});
    return command;
}

}  // namespace velmo::tool
