#include <velmocore/url/URL.h>
#include <velmocore/url/URLHosts.h>
#include <velmocore/url/URLPaths.h>

#include <memory>

#include "UrlCommands.h"

namespace velmo::tool {
namespace {

Json partsOf(const URL& url) {
    const auto port = url.port();
    Json inverted = Json::array();
    for (const String& part : invertedHostComponents(url)) inverted.push_back(text(part));
    return {
        {"url", text(url.absoluteString())},
        {"scheme", text(url.scheme())},
        {"resourceSpecifier", text(url.resourceSpecifier())},
        {"authority", text(String(url.part(URLPart::Authority)))},
        {"user", text(url.user())},
        {"password", text(url.password())},
        {"host", text(url.host())},
        {"port", port ? Json(*port) : Json(nullptr)},
        {"path", text(url.path())},
        {"rawPath", text(url.rawPath())},
        {"parameterString", text(url.parameterString())},
        {"query", text(url.query())},
        {"fragment", text(url.fragment())},
        {"lastPathComponent", text(url.lastPathComponent())},
        {"pathExtension", text(url.pathExtension())},
        {"standardizedURL", text(url.standardizedURL().absoluteString())},
        {"baseDirectory", text(baseDirectory(url))},
        {"isBaseDirectory", isBaseDirectory(url)},
        {"invertedHostComponents", inverted},
        {"proposedFilename", text(proposedFilename(url))},
        {"display", text(displayString(url))},
    };
}

void printLines(Session& session, const Json& parts) {
    for (const auto& [name, value] : parts.items()) {
        if (value.is_null()) continue;
        const std::string shown = value.is_string() ? value.get<std::string>() : value.dump();
        session.printLine(name == "url" ? shown : fmt::format("  {:22} {}", name, shown));
    }
}

void run(Session& session, const std::vector<std::string>& urls) {
    forEachUrl(urls, [&session](const String& string) {
        const URL url = URL::URLWithString(string);
        if (url.isAbsent()) return session.fail(string.utf8(), "not a URL");
        if (session.json)
            session.printObject(partsOf(url));
        else
            printLines(session, partsOf(url));
    });
}

}  // namespace

void addUrlParseCommand(CLI::App& url, Session& session) {
    auto urls = std::make_shared<std::vector<std::string>>();
    CLI::App* command =
        url.add_subcommand("parse",
                           "Example: velmo url parse 'https://me@example.org:8080/a;b?c=d#e'\n"
                           "Tell the parts of URLs and of relative references");
    addUrlArguments(*command, *urls);
    command->add_flag("--json", session.json, "one JSON object a URL, null for parts not there");
    command->callback([&session, urls] { run(session, *urls); });
}

}  // namespace velmo::tool
