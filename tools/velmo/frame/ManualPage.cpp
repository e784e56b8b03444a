// The man pages: what a command says of itself (its usage, options, examples), and around it what
// was written by hand. The overview ends in tables of all options and of all members of JSON, so that
// a name can be looked up without knowing whose it is.
#include <fmt/core.h>

#include <algorithm>
#include <map>
#include <tuple>

#include "Manual.h"
#include "Roff.h"

namespace velmo::tool {
namespace {

constexpr std::string_view JsonHeading = "JSON";

/// A command or an action with the words that name it.
struct Named {
    std::string name;  ///< "text", or "url key"
    Command command;
};

std::vector<Named> namedCommands(std::span<const CommandEntry> entries, Session& session,
                                 const std::string& prefix = "") {
    std::vector<Named> all;
    for (const CommandEntry& entry : entries) {
        const std::string name = prefix + std::string(entry.name);
        if (entry.make)
            all.push_back({name, entry.make(session)});
        else
            std::ranges::move(namedCommands(entry.actions, session, name + " "),
                              std::back_inserter(all));
    }
    return all;
}

std::string capitals(std::string_view name) {
    std::string result(name);
    std::ranges::transform(result, result.begin(),
                           [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return result;
}

/// As the line of a man page's name has it: "Turn pages" as "turn pages", but "URLs" as they are.
std::string lowered(std::string_view summary) {
    std::string result(summary);
    if (result.size() > 1 && std::islower(static_cast<unsigned char>(result[1])))
        result[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(result[0])));
    return result;
}

std::string synopsisOf(const Named& named) {
    std::string line = bold("velmo " + named.name) + " [" + italic("OPTION") + "...]";
    for (const Argument& argument : named.command.arguments) {
        const std::string shown = italic(argument.name) + (argument.isList ? "..." : "");
        line += argument.isRequired ? " " + shown : " [" + shown + "]";
    }
    return line;
}

std::string termOf(const Option& option) {
    std::string term;
    const std::size_t comma = option.names.find(',');
    if (comma != option.names.npos) term = bold(option.names.substr(0, comma)) + ", ";
    term += bold(option.names.substr(comma == option.names.npos ? 0 : comma + 1));
    if (option.isValueOptional) return term + "[=" + italic(option.value) + "]";
    return option.value.empty() ? term : term + " " + italic(option.value);
}

/// The text of a command or action under a heading, "" or "KEY", with "JSON" behind it or not.
std::string_view partOf(std::string_view text, std::string_view heading) {
    for (const ManualPart& part : partsOf(text))
        if (part.heading == heading) return part.text;
    return {};
}

void addArguments(RoffPage& page, const Command& command) {
    for (const Argument& argument : command.arguments)
        page.term(italic(argument.name), argument.help);
}

void addOptions(RoffPage& page, const Command& command) {
    for (const Option& option : command.options) page.term(termOf(option), helpOf(option));
    page.term(bold("-h") + ", " + bold("--help"), "this help");
}

void addMembers(RoffPage& page, std::string_view text) {
    bool isAfterRow = false;
    for (const JsonMember& member : jsonMembersOf(text)) {
        if (!member.name.empty()) {
            page.term(bold(member.name), member.meaning);
        } else {
            if (isAfterRow) page.paragraph();
            page.line(roffOf(member.meaning));
        }
        isAfterRow = true;
    }
}

void addExamples(RoffPage& page, std::span<const Named> commands) {
    page.section("EXAMPLES");
    std::string lines;
    for (const Named& named : commands)
        for (const std::string& example : named.command.examples) lines += "    " + example + "\n";
    page.verbatim(lines);
}

void addName(RoffPage& page, const std::string& name, std::string_view summary) {
    page.section("NAME");
    page.line(roffEscaped(name) + " \\- " + roffEscaped(lowered(summary)));
}

void addReferences(RoffPage& page, std::string_view list) {
    page.section("SEE ALSO");
    page.line(roffEscaped(list));
}

/// The page of a command that is no group.
void addCommand(RoffPage& page, const Named& named, std::string_view text) {
    page.section("SYNOPSIS");
    page.line(synopsisOf(named));
    page.section("DESCRIPTION");
    page.text(partOf(text, ""));
    if (!named.command.arguments.empty()) page.section("ARGUMENTS");
    addArguments(page, named.command);
    page.section("OPTIONS");
    addOptions(page, named.command);
    for (const auto& [heading, body] : partsOf(text)) {
        if (heading.empty()) continue;
        page.section(heading);
        heading == JsonHeading ? addMembers(page, body) : page.text(body);
    }
}

/// The page of a group has a part for each of its actions.
void addGroup(RoffPage& page, std::span<const Named> actions, std::string_view text) {
    page.section("SYNOPSIS");
    for (const Named& named : actions) {
        page.line(synopsisOf(named));
        if (&named != &actions.back()) page.line(".br");
    }
    page.section("DESCRIPTION");
    page.text(partOf(text, ""));
    for (const Named& named : actions) {
        const std::string heading = capitals(named.name.substr(named.name.find(' ') + 1));
        page.section(heading);
        page.text(partOf(text, heading));
        addArguments(page, named.command);
        addOptions(page, named.command);
        if (const auto members = partOf(text, heading + " JSON"); !members.empty()) {
            page.subsection("JSON");
            addMembers(page, members);
        }
    }
}

ManualPage pageOf(const CommandEntry& entry, Session& session) {
    const std::string name = "velmo-" + std::string(entry.name);
    RoffPage page(name, '1');
    const std::vector<Named> named = namedCommands({&entry, 1}, session);
    const std::string_view text = manualText("commands/" + std::string(entry.name));
    addName(page, name, entry.make ? named.front().command.summary : std::string(entry.summary));
    entry.make ? addCommand(page, named.front(), text) : addGroup(page, named, text);
    addExamples(page, named);
    addReferences(page, "velmo(1), velmo-json(7), velmo-exit-codes(7)");
    return {name, '1', page.take()};
}

ManualPage pageOf(const Topic& topic) {
    const std::string name = "velmo-" + std::string(topic.name);
    RoffPage page(name, '7');
    addName(page, name, topic.summary);
    page.section("DESCRIPTION");
    for (const auto& [heading, body] : partsOf(topic.text.substr(topic.text.find('\n') + 1))) {
        if (!heading.empty()) page.section(heading);
        page.text(body);
    }
    addReferences(page, "velmo(1)");
    return {name, '7', page.take()};
}

void addCommandTable(RoffPage& page, std::span<const Named> commands) {
    page.section("COMMANDS");
    for (const Named& named : commands) page.term(synopsisOf(named), named.command.summary);
}

/// By the long name without its dashes, then by what it is called besides and by its value.
using OptionKey = std::tuple<std::string_view, std::string_view, std::string_view>;
/// What it does, and the commands for which it does that.
using Meanings = std::vector<std::pair<std::string, std::string>>;

void addMeaning(Meanings& meanings, const std::string& help, const std::string& command) {
    const auto known = std::ranges::find(meanings, help, &Meanings::value_type::first);
    if (known == meanings.end())
        meanings.emplace_back(help, command);
    else
        known->second += ", " + command;
}

void addOptionTable(RoffPage& page, std::span<const Named> commands) {
    std::map<OptionKey, std::pair<Option, Meanings>> table;
    for (const Named& named : commands)
        for (const Option& option : named.command.options) {
            const auto longName = option.names.substr(option.names.find("--") + 2);
            auto& [shown, meanings] = table[{longName, option.names, option.value}];
            shown = option;
            addMeaning(meanings, helpOf(option), named.name);
        }
    page.section("TABLE OF OPTIONS");
    for (const auto& [key, row] : table) {
        const auto& [option, meanings] = row;
        for (const auto& [help, of] : meanings) {
            if (&help == &meanings.front().first)
                page.term(termOf(option), of + ": " + help);
            else
                page.line(".br\n" + roffOf(of + ": " + help));
        }
    }
    page.term(bold("-h") + ", " + bold("--help"), "all commands: this help");
}

/// What the JSON of a command or an action is made of.
std::string_view membersOf(const std::string& name) {
    const std::size_t space = name.find(' ');
    const std::string_view text = manualText("commands/" + name.substr(0, space));
    return partOf(text, space == name.npos ? std::string(JsonHeading)
                                           : capitals(name.substr(space + 1)) + " JSON");
}

void addJsonTable(RoffPage& page, std::span<const Named> commands) {
    page.section("TABLE OF JSON");
    page.line("What each holds is told by the man page of its command.");
    for (const Named& named : commands) {
        std::vector<std::string> names;
        for (const JsonMember& member : jsonMembersOf(membersOf(named.name)))
            if (!member.name.empty() && !std::ranges::count(names, member.name))
                names.push_back(member.name);
        std::string list;
        for (const std::string& name : names) (list += list.empty() ? "" : ", ") += name;
        if (!list.empty()) page.term(bold(named.name), list);
    }
}

ManualPage overviewOf(std::span<const CommandEntry> entries, Session& session) {
    RoffPage page("velmo", '1');
    const std::string_view text = manualText("velmo");
    addName(page, "velmo", text.substr(0, text.find('\n')));
    page.section("SYNOPSIS");
    page.line(bold("velmo") + " " + italic("COMMAND") + " [" + italic("OPTION") + "...] [" +
              italic("ARGUMENT") + "...]\n.br");
    page.line(bold("velmo help") + " [" + italic("COMMAND") + " | " + italic("TOPIC") + "]\n.br");
    page.line(bold("velmo") + " " + bold("-V") + " | " + bold("--version"));
    page.section("DESCRIPTION");
    const std::vector<Named> commands = namedCommands(entries, session);
    for (const auto& [heading, body] : partsOf(text.substr(text.find('\n') + 1))) {
        if (!heading.empty()) page.section(heading);
        page.text(body);
    }
    addCommandTable(page, commands);
    page.section("TOPICS");
    for (const Topic& topic : allTopics()) page.term(bold(topic.name), topic.summary);
    for (const std::string_view name : {"exit-codes", "environment"}) {
        page.section(name == "environment" ? "ENVIRONMENT" : "EXIT STATUS");
        const Topic* const topic = topicNamed(name);
        page.text(partOf(topic->text.substr(topic->text.find('\n') + 1), ""));
    }
    addOptionTable(page, commands);
    addJsonTable(page, commands);
    addReferences(page, "velmo-COMMAND(1), velmo-TOPIC(7)");
    return {"velmo", '1', page.take()};
}

}  // namespace

std::vector<ManualPage> manualPages(std::span<const CommandEntry> commands, Session& session) {
    std::vector<ManualPage> pages = {overviewOf(commands, session)};
    for (const CommandEntry& entry : commands) pages.push_back(pageOf(entry, session));
    for (const Topic& topic : allTopics()) pages.push_back(pageOf(topic));
    return pages;
}

}  // namespace velmo::tool
