// velmo: the library from a shell. Finds the command, and sees to it that every run ends with
// an exit code and never with an exception.
//
// What a command can do is data that it makes itself (frame/Command.h), so that help, suggestions
// and the parsing of arguments are written once here and in the frame, and none can disagree.
#include <fmt/ranges.h>

#include <csignal>
#include <iostream>
#include <new>

#include <velmocore/platform/Log.h>

#include "commands/Commands.h"
#include "frame/Manual.h"

namespace velmo::tool {
namespace {

constexpr std::string_view OverviewHead =
    "Examples:\n"
    "  velmo gather site/ --base https://example.org/ --query 'cat NEAR dog'\n"
    "  velmo fetch --output mirror/ https://www.example.org/page.html\n"
    "  velmo text page.html --only-body\n"
    "  velmo links page.html --base https://example.org/page.html --json\n"
    "  velmo match '(cat OR dog) -bird' notes.txt page.html\n"
    "  velmo excerpts 'cat* NEAR/5 dog' notes.txt page.html\n"
    "  velmo find -r 'data* [a-d]?se' letters/\n"
    "  velmo url simplify https://www.example.org/index.html\n"
    "  velmo help queries\n"
    "\n"
    "Reads pages and texts: charsets, plain text, links, words, languages and queries.\n"
    "\n"
    "Usage: velmo COMMAND [OPTION...] [ARGUMENT...]\n";

constexpr std::string_view OverviewTail =
    "\n"
    "velmo help COMMAND tells the options of a command, velmo help TOPIC one of the topics above, "
    "man\n"
    "velmo-COMMAND and man velmo everything. Each command that reads something takes --json, and "
    "FILE\n"
    "may be -, which is standard input, or an address of the web.\n"
    "Exit codes: 0 done or a hit, 1 no hit, 2 an input failed or the usage was wrong.\n";

/// A name and what it stands for, as all lists of names show it.
std::string nameRow(std::string_view name, std::string_view summary) {
    return fmt::format("  {:13}{}\n", name, summary);
}

std::string listOf(std::span<const CommandEntry> commands, Session& session) {
    std::string list;
    // A command is made only to ask for its summary: what it says of itself stands in its own
    // file.
    for (const CommandEntry& entry : commands)
        list += nameRow(entry.name, entry.make ? entry.make(session).summary : entry.summary);
    return list;
}

std::string listOfTopics() {
    std::string list;
    for (const Topic& topic : allTopics()) list += nameRow(topic.name, topic.summary);
    return list;
}

/// The topic that words of the command line name, as "exit-codes" or "exit codes".
const Topic* topicOf(const std::vector<std::string>& words) {
    return topicNamed(fmt::format("{}", fmt::join(words, "-")));
}

/// The entry of that name; throws a UsageError with the nearest names if there is none, among them
/// others that may stand there.
/// One walk for both: the names that were passed on the way are those to suggest from.
const CommandEntry& entryOf(std::span<const CommandEntry> commands, std::string_view name,
                            std::vector<std::string_view> names) {
    for (const CommandEntry& entry : commands) {
        if (entry.name == name) return entry;
        names.push_back(entry.name);
    }
    throw UsageError(fmt::format("unknown command {}{}", name, suggestion(name, names)));
}

bool isHelp(std::string_view argument) { return argument == "--help" || argument == "-h"; }

/// One run of the tool with its arguments.
class Run {
public:
    Run(Session& session, std::vector<std::string> arguments)
        : session_(session), report_(session), arguments_(std::move(arguments)) {}

    void run() {
        const std::string first = arguments_.empty() ? "" : arguments_.front();
        if (first == "--version" || first == "-V")
            report_.printLine("velmo " VELMO_VERSION);
        else if (first == "help")
            runHelp({arguments_.begin() + 1, arguments_.end()});
        else if (isHelp(first))
            runHelp({});
        else
            runCommand();
        report_.flush();
    }

    /// The words of the command line that name the command, as far as it has been found.
    const std::string& path() const { return path_; }

private:
    void printOverview() {
        report_.printLine(std::string(OverviewHead) + "\nCommands:\n" +
                          listOf(allCommands(), session_) + "\nTopics:\n" + listOfTopics() +
                          std::string(OverviewTail));
    }

    void runHelp(const std::vector<std::string>& names) {
        if (names.empty()) return printOverview();
        if (const Topic* topic = topicOf(names)) return report_.printBytes(topic->text);
        for (const Topic& topic : allTopics()) otherNames_.push_back(topic.name);
        arguments_ = names;
        runHelpOf(allCommands());
    }

    void runHelpOf(std::span<const CommandEntry> commands) {
        const CommandEntry* entry = find(commands);
        if (!entry) return printOverview();  // "help --help"
        if (entry->make)
            report_.printLine(helpOf(entry->make(session_), path_));
        else
            printActions(*entry);
    }

    void printActions(const CommandEntry& group) {
        report_.printLine(fmt::format(
            "{}\n\nUsage: velmo {} ACTION [OPTION...] {}\n\nActions:\n{}\n"
            "velmo help {} ACTION tells the options of an action, man velmo-{} everything.",
            group.summary, group.name, group.operands, listOf(group.actions, session_), group.name,
            group.name));
    }

    /// Takes the words that name a command off the arguments.
    const CommandEntry* find(std::span<const CommandEntry> commands) {
        const CommandEntry* entry = nullptr;
        // A group has no work of its own, so the next word is looked up among its actions.
        do {
            if (arguments_.empty() || isHelp(arguments_.front())) break;
            entry = &entryOf(entry ? entry->actions : commands, arguments_.front(),
                             entry ? std::vector<std::string_view>() : otherNames_);
            path_ += (path_.empty() ? "" : " ") + arguments_.front();
            arguments_.erase(arguments_.begin());
        } while (!entry->make);
        return entry;
    }

    void runCommand() {
        const CommandEntry* entry = find(allCommands());
        if (!entry) throw UsageError("a command is missing");
        if (!entry->make) {
            // What is left can only be a wish for help: find() stopped there.
            if (arguments_.empty()) throw UsageError("an action is missing");
            return printActions(*entry);
        }
        Command command = entry->make(session_);
        if (parseArguments(command, arguments_))
            command.run(report_);
        else
            report_.printLine(helpOf(command, path_));
    }

    Session& session_;
    Report report_;
    std::vector<std::string> arguments_;
    std::vector<std::string_view> otherNames_;  ///< that might be meant besides commands
    std::string path_;
};

/// What an OutputError makes of the exit code: a reader who has gone has all that he wanted.
int exitCodeAfter(const OutputError& error, Session& session) {
    if (!error.isClosedPipe()) session.fail("standard output", error.what());
    return session.exitCode();
}

int runTool(Session& session, Run& run) {
    try {
        run.run();
    } catch (const UsageError& error) {
        const std::string where = run.path().empty() ? "" : run.path() + ": ";
        session.console.complain(where + error.what());
        session.console.complain(
            fmt::format("see velmo help{}{}", run.path().empty() ? "" : " ", run.path()));
        return Failure;
    } catch (const OutputError& error) {
        return exitCodeAfter(error, session);
    } catch (const std::bad_alloc&) {
        session.console.complain("not enough memory");
        return Failure;
    } catch (const std::exception& error) {
        session.console.complain(error.what());
        return Failure;
    }
    return session.exitCode();
}

}  // namespace
}  // namespace velmo::tool

int main(int argc, char** argv) {
    using namespace velmo::tool;
    // Writing to a closed pipe is told by the call that writes.
    std::signal(SIGPIPE, SIG_IGN);
    std::ios::sync_with_stdio(false);
    velmo::setLogHandler(Report::logLine);
    // The session outlives the run, whose reports write to its console until they are destroyed.
    Session session;
    Run run(session, {argv + 1, argv + argc});
    return runTool(session, run);
}
