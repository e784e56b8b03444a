// The tool as a helper: it offers what it knows of pages to other programs, until it is told to
// end.
#include <fmt/core.h>
#include <velmocore/markup/Page.h>
#include <velmocore/system/HelperService.h>

#include <atomic>
#include <csignal>
#include <memory>

#include "HelperCommands.h"

namespace velmo::tool {
namespace {

using Values = PropertyListArray;

/// For the handler of signals, which can be told nothing else.
std::atomic<HelperService*> serving = nullptr;

void endServing(int) {
    if (HelperService* service = serving) service->stop();
}

/// The first argument is the page, as bytes or as text; the second, if there is one, its URL.
std::optional<Page> pageOf(const Values& arguments, Error* error) {
    const Data* bytes = arguments.empty() ? nullptr : arguments[0].as<Data>();
    const String* markup = arguments.empty() ? nullptr : arguments[0].as<String>();
    const String* address = arguments.size() < 2 ? nullptr : arguments[1].as<String>();
    const URL url = address ? URL::URLWithString(*address) : URL();
    if (bytes) return Page(*bytes, {.url = url});
    if (markup) return Page::pageWithString(*markup, url);
    *error = {u"velmo", 1, u"a page is wanted, and its URL if there is one"};
    return std::nullopt;
}

PropertyList textOf(const Page& page) { return {page.plainText()}; }

PropertyList titleOf(const Page& page) { return {page.title()}; }

PropertyList linksOf(const Page& page) {
    Values links;
    for (const URL& link : page.links()) links.push_back({link.absoluteString()});
    return {links};
}

struct Operation {
    std::u16string_view name;
    PropertyList (*work)(const Page& page);
};
constexpr Operation Operations[] = {{u"links", linksOf}, {u"text", textOf}, {u"title", titleOf}};

void addOperations(HelperService& service) {
    for (const Operation& operation : Operations)
        service.addOperation(operation.name,
                             [work = operation.work](const Values& arguments, Error* error) {
                                 const std::optional<Page> page = pageOf(arguments, error);
                                 return page ? std::optional(work(*page)) : std::nullopt;
                             });
}

void tellServing(Report& report, const std::string& name) {
    JsonArray names;
    std::string line = "serving " + name + ":";
    for (const Operation& operation : Operations) {
        names.push_back(String(operation.name));
        line += " " + utf8(operation.name);
    }
    if (report.json())
        report.printObject({{"name", name}, {"operations", std::move(names)}});
    else
        report.printLine(line);
    report.flush();  // whoever started the tool waits for it
}

void serve(Report& report, const std::string& name) {
    HelperService service;
    addOperations(service);
    Error error;
    serving = &service;
    for (const int signal : {SIGINT, SIGTERM}) std::signal(signal, endServing);
    if (service.publish(String::fromUTF8(name), &error)) {
        tellServing(report, name);
        error = {};
        (void)service.serve(&error);
    }
    for (const int signal : {SIGINT, SIGTERM}) std::signal(signal, SIG_DFL);
    serving = nullptr;
    if (!error.domain.isAbsent()) report.fail(name, reasonOf(error));
}

}  // namespace

Command makeHelperServeCommand(Session& session) {
    auto name = std::make_shared<std::string>();
    Command command = {
        .summary = "Offer the links, the text and the title of pages to other programs",
        .examples = {"velmo helper serve my-pages & velmo helper call --wait 9 my-pages title "
                     "@page.html; kill $!"},
        .run = [name](Report& report) { serve(report, *name); },
    };
    command.arguments = {required("NAME", *name, "what callers find it by; any text")};
    command.add({jsonFlag(session, "a JSON object when it is ready")});
    command.more =
        "Ends on SIGINT and SIGTERM. Operations take a page and, if it is known, its URL.";
    return command;
}

}  // namespace velmo::tool
