// The attributes that desktops know: tags, the source of a download, the comment. Each is printed,
// or set and cleared.
#include "AttributesCommands.h"
#include "PropertyListJson.h"

namespace velmo::tool {
namespace {

/// What there is for people, and the same as a member for programs.
void print(const std::string& path, std::string_view member, const PropertyList& value,
           Report& report) {
    const bool isFound = !value.as<std::monostate>();
    report.noteHit(isFound);
    if (report.json())
        return report.printObject(fileObject(path, {{member, jsonOfPropertyList(value)}}));
    if (!isFound) return;
    report.printHeading(path);
    printPropertyList(report, value);
}

void tellSet(const std::string& path, std::string_view member, const AttributeOptions& options,
             Report& report) {
    const std::string what = (options.clear ? "cleared " : "set ") + std::string(member);
    tellChange(report, path, what, {{member, jsonOfPropertyList(options.value)}});
}

/// What is set under one key; nothing is there to be cleared twice.
void change(const std::string& path, std::u16string_view key, const AttributeOptions& options) {
    Error error;
    if (options.clear)
        VWMetaDataStore::removeObjectForKey(key, path, options.access, &error);
    else
        VWMetaDataStore::setObject(options.value, key, path, options.access, &error);
    isThere(error);
}

PropertyList valueOf(const std::string& path, std::u16string_view key,
                     const AttributeOptions& options) {
    Error error;
    PropertyList value = VWMetaDataStore::objectForKey(key, path, options.access, &error);
    isThere(error);
    return value;
}

void tags(const std::string& path, const AttributeOptions& options, Report& report) {
    Error error;
    if (options.changes()) {
        std::vector<String> given;
        for (const std::string& tag : options.given) given.push_back(String::fromUTF8(tag));
        VWMetaDataStore::setFinderTags(given, path, &error);
        isThere(error);
        return tellSet(path, "tags", options, report);
    }
    const auto found = VWMetaDataStore::getFinderTags(path, &error);
    isThere(error);
    report.noteHit(found && !found->empty());
    const std::vector<String> list = found.value_or(std::vector<String>());
    if (report.json()) return report.printObject(fileObject(path, {{"tags", jsonArray(list)}}));
    if (!list.empty()) report.printHeading(path);
    for (const String& tag : list) report.printText(tag);
}

void source(const std::string& path, const AttributeOptions& options, Report& report) {
    if (options.changes()) {
        change(path, WhereFromsKey, options);
        return tellSet(path, "source", options, report);
    }
    const String found = getWhereFrom({{WhereFromsKey, valueOf(path, WhereFromsKey, options)}});
    print(path, "source", found.isAbsent() ? PropertyList() : PropertyList{found}, report);
}

void comment(const std::string& path, const AttributeOptions& options, Report& report) {
    if (options.changes()) {
        change(path, FinderCommentKey, options);
        return tellSet(path, "comment", options, report);
    }
    print(path, "comment", valueOf(path, FinderCommentKey, options), report);
}

/// --set and --clear.
void addChanges(Command& command, std::shared_ptr<AttributeOptions> options, std::string_view value,
                std::string help, bool isList) {
    Option set = texts("--set", value, options->given, std::move(help));
    set.excludes = "--clear";
    // Kept as the value to store and to print, whatever the attribute.
    set.take = [take = set.take, isList, options](const std::string& text) {
        take(text);
        const String string = String::fromUTF8(text);
        if (!isList) return void(options->value = {string});
        PropertyListArray array;
        if (const auto* old = options->value.as<PropertyListArray>()) array = *old;
        array.push_back({string});
        options->value = {std::move(array)};
    };
    command.add({std::move(set), flag("--clear", options->clear, "remove what there is")});
}

struct TextCommand {
    std::string summary;
    std::vector<std::string> examples;
    std::string_view value;  ///< of --set
    std::string help;        ///< the same
};

/// A command for an attribute that is one text.
Command textCommand(Session& session,
                    void (*work)(const std::string&, const AttributeOptions&, Report&),
                    TextCommand told) {
    auto options = std::make_shared<AttributeOptions>();
    Command command = attributeCommand(session, options, work);
    command.summary = std::move(told.summary);
    command.examples = std::move(told.examples);
    addChanges(command, options, told.value, std::move(told.help), false);
    command.add({noFollowOption(*options), jsonFlag(session, "one JSON object a file")});
    return command;
}

}  // namespace

Command makeAttributesTagsCommand(Session& session) {
    auto options = std::make_shared<AttributeOptions>();
    Command command = attributeCommand(session, options, tags);
    command.summary = "Print or set the tags of files";
    command.examples = {"velmo attributes tags notes.txt",
                        "velmo attributes tags --set Red --set 'to do' notes.txt"};
    addChanges(command, options, "TAG", "replace the tags by this one; may be given again", true);
    command.add({jsonFlag(session, "one JSON object a file")});
    return command;
}

Command makeAttributesSourceCommand(Session& session) {
    return textCommand(
        session, source,
        {.summary = "Print or set where files were loaded from",
         .examples = {"velmo attributes source page.html",
                      "velmo attributes source --set https://example.org/ page.html"},
         .value = "URL",
         .help = "where the files come from"});
}

Command makeAttributesCommentCommand(Session& session) {
    return textCommand(session, comment,
                       {.summary = "Print or set the comments of files",
                        .examples = {"velmo attributes comment notes.txt",
                                     "velmo attributes comment --set 'to be read' notes.txt"},
                        .value = "TEXT",
                        .help = "the comment"});
}

}  // namespace velmo::tool
