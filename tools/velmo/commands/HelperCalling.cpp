// Helpers called from a shell: arguments in, the result out, and what there is to call.
#include <fmt/core.h>
#include <velmocore/platform/DateFormat.h>
#include <velmocore/storage/Base64.h>
#include <velmocore/system/ConnectionTable.h>
#include <velmocore/system/HelperTask.h>

#include <charconv>
#include <memory>

#include "Commands.h"
#include "HelperCommands.h"
#include "frame/FileBytes.h"

namespace velmo::tool {
namespace {

/// In seconds. A day is as good as without end.
constexpr double LongestWait = 86400;
/// Helpers that are only listed must not hold up the others.
constexpr double ListTimeout = 1;

struct CallOptions {
    std::string name, operation, program;
    std::vector<std::string> arguments;
    double wait = 0, timeout = 0;
    bool typed = false;
};

Json valueOf(const PropertyList& list);

Json valueOf(std::monostate) { return {}; }
Json valueOf(const Date& date) { return stringInISO8601(date); }
Json valueOf(const Data& bytes) { return encodedBase64Data(bytes); }
Json valueOf(const PropertyListArray& values) {
    JsonArray array;
    for (const PropertyList& value : values) array.push_back(valueOf(value));
    return array;
}
Json valueOf(const PropertyListDictionary& values) {
    JsonObject object;
    for (const auto& [key, value] : values) object.push_back({key, valueOf(value)});
    return object;
}
template <class Value>
Json valueOf(const Value& value) {
    return Json(value);
}
// No deeper than the library lets a result be.
Json valueOf(const PropertyList& list) {
    return std::visit([](const auto& held) { return valueOf(held); }, list.value);
}

template <class Number>
std::optional<PropertyList> numberOf(const std::string& text) {
    Number number{};
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
    return PropertyList{number};
}

PropertyList argumentOf(const std::string& text, bool typed) {
    if (text.starts_with("@@")) return {String::fromUTF8(text.substr(1))};
    if (text.starts_with('@')) return {readFile(text.substr(1))};
    if (typed && (text == "true" || text == "false")) return {text == "true"};
    if (typed)
        if (const auto integer = numberOf<std::int64_t>(text)) return *integer;
    if (typed)
        if (const auto real = numberOf<double>(text)) return *real;
    return {String::fromUTF8(text)};
}

/// Absent, which is reported, if a file cannot be read.
std::optional<PropertyListArray> argumentsOf(const CallOptions& options, Report& report) {
    PropertyListArray arguments;
    for (const std::string& text : options.arguments) {
        try {
            arguments.push_back(argumentOf(text, options.typed));
        } catch (const InputError& error) {
            report.fail(text.substr(1), error.what());
            return std::nullopt;
        }
    }
    return arguments;
}

void print(const PropertyList& result, Report& report, const CallOptions& options) {
    if (report.json())
        return report.printObject({{"name", options.name},
                                   {"operation", options.operation},
                                   {"result", valueOf(result)}});
    if (const String* text = result.as<String>()) return report.printText(*text);
    if (const Data* bytes = result.as<Data>()) return report.printBytes(charsOf(*bytes));
    if (const PropertyListArray* values = result.as<PropertyListArray>()) {
        for (const PropertyList& value : *values) report.printLine(valueOf(value).plain());
        return;
    }
    report.printLine(valueOf(result).plain());
}

std::optional<HelperProxy> findHelper(const CallOptions& options, HelperTask* task, Error* error) {
    const String name = String::fromUTF8(options.name);
    if (task) return task->proxy();
    if (!(options.wait > 0))
        return rootProxyForConnectionWithRegisteredName(name, {.timeout = options.timeout}, error);
    RootProxyWait wait;
    wait.timeout = options.timeout;
    wait.interval = options.wait;
    return waitForRootProxyForConnectionWithRegisteredName(name, wait, error);
}

void call(Report& report, const CallOptions& options) {
    const auto arguments = argumentsOf(options, report);
    if (!arguments) return;
    std::unique_ptr<HelperTask> task;
    if (!options.program.empty())
        task = HelperTask::helperTaskWithPath(options.program, String::fromUTF8(options.name),
                                              {.timeout = options.timeout});
    Error error = {u"velmo", 1, u"no helper serves under this name"};
    const auto proxy = findHelper(options, task.get(), &error);
    const auto result =
        proxy ? proxy->call(String::fromUTF8(options.operation), *arguments, &error) : std::nullopt;
    if (!result) return report.fail(options.name, reasonOf(error));
    print(*result, report, options);
}

void printHelper(const String& name, Report& report) {
    Error error;
    const auto proxy =
        rootProxyForConnectionWithRegisteredName(name, {.timeout = ListTimeout}, &error);
    const auto operations = proxy ? proxy->operations(&error) : std::vector<String>();
    const bool isKnown = proxy && error.domain.isAbsent();
    if (report.json())
        return report.printObject(
            {{"name", name}, {"operations", isKnown ? Json(jsonArray(operations)) : Json()}});
    std::string line = name.utf8() + (isKnown ? ":" : ": does not answer");
    for (const String& operation : operations) line += " " + operation.utf8();
    report.printLine(line);
}

void listHelpers(Report& report) {
    Error error;
    const std::vector<String> names = registeredConnectionNames(&error);
    if (!error.domain.isAbsent()) return report.fail("helper list", reasonOf(error));
    for (const String& name : names) printHelper(name, report);
    report.noteHit(!names.empty());
}

}  // namespace

Command makeHelperCallCommand(Session& session) {
    auto options = std::make_shared<CallOptions>();
    Command command = {
        .summary = "Call an operation of a helper and print its result",
        .examples = {"velmo helper call pages text @page.html",
                     "velmo helper call pages links @page.html https://example.org/"},
        .run = [options](Report& report) { call(report, *options); },
    };
    command.arguments = {required("NAME", options->name, "the name of the helper"),
                         required("OPERATION", options->operation, "as list tells them"),
                         list("ARG", options->arguments,
                              "a text; @FILE stands for the bytes of a file, @@ for an @")};
    command.add({
        text("--start", "PROGRAM", options->program,
             "start PROGRAM if nothing serves under the name, and end it with the call"),
        real("--wait", "SECONDS", options->wait, "wait so long for the name", 0, LongestWait),
        real("--timeout", "SECONDS", options->timeout,
             "wait so long for the answer; without end if not given, or 0", 0, LongestWait),
        flag("--typed", options->typed, "send numbers, true and false as such"),
        jsonFlag(session, "a JSON object; bytes are in base64"),
    });
    return command;
}

Command makeHelperListCommand(Session& session) {
    Command command = {
        .summary = "List the helpers that serve now, with their operations",
        .examples = {"velmo helper list --json"},
        .run = listHelpers,
    };
    command.add({jsonFlag(session, "one JSON object a helper")});
    return command;
}

std::span<const CommandEntry> helperActions() {
    // In the order of the help.
    static const CommandEntry actions[] = {
        {"serve", makeHelperServeCommand},
        {"call", makeHelperCallCommand},
        {"list", makeHelperListCommand},
    };
    return actions;
}

}  // namespace velmo::tool
