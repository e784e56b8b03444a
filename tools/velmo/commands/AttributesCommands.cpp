#include "AttributesCommands.h"

#include <fmt/core.h>

#include <cerrno>

#include "Commands.h"
#include "frame/FileBytes.h"

namespace velmo::tool {

Command attributeCommand(Session& session, std::shared_ptr<AttributeOptions> options,
                         AttributeWork work) {
    Command command;
    addFileOptions(command, session, options->input, "files and folders");
    command.arguments.back().name = "PATH";
    command.run = [options, work](Report& report) {
        const NameOptions& names = options->input.names;
        // No attributes come from standard input.
        if (names.paths.empty() && names.filesFrom.empty() && !names.recursive)
            throw UsageError("PATH is missing");
        forEachName(report, options->input,
                    [&](const FileName& file, Report& own) { work(file.path, *options, own); });
    };
    return command;
}

Option noFollowOption(AttributeOptions& options) {
    return offFlag("--no-dereference", options.access.traverseLink,
                   "of a symbolic link the link itself and not what it leads to");
}

Argument attributeNameArgument(AttributeOptions& options) {
    return {
        .name = "NAME",
        .help = "of the attribute, without the \"user.\" that the system puts in front",
        .take = [&options](const std::string& value) { options.name = String::fromUTF8(value); },
        .isRequired = true};
}

bool isThere(const Error& error) {
    if (error.text.isAbsent()) return true;
    if (error.domain == u"posix" && error.code == ENODATA) return false;
    // The reason is what of several attributes failed, or which value.
    const std::string reason = error.reason.utf8();
    throw InputError(error.text.utf8() + (reason.empty() ? "" : " " + reason));
}

void tellChange(Report& report, const std::string& path, std::string_view what,
                JsonObject members) {
    if (report.json()) return report.printObject(fileObject(path, std::move(members)));
    report.printLine(fmt::format("{}: {}", path, what));
}

std::span<const CommandEntry> attributeActions() {
    // In the order of the help.
    static const CommandEntry actions[] = {
        {"list", makeAttributesListCommand},       {"get", makeAttributesGetCommand},
        {"set", makeAttributesSetCommand},         {"remove", makeAttributesRemoveCommand},
        {"tags", makeAttributesTagsCommand},       {"source", makeAttributesSourceCommand},
        {"comment", makeAttributesCommentCommand},
    };
    return actions;
}

}  // namespace velmo::tool
