// The parts of a URL by the plain grammar: this command shows what a URL is, so it repairs
// nothing, and what is no URL is a failure and not a guess. Relative references are URLs too.
#include <fmt/core.h>

#include <velmocore/url/URL.h>
#include <velmocore/url/URLHosts.h>
#include <velmocore/url/URLPaths.h>

#include <memory>

#include "UrlCommands.h"

namespace velmo::tool {
namespace {

struct Options {
    std::vector<std::string> urls;
    WebRules web;
};

JsonObject partsOf(const URL& url) {
    const auto port = url.port();
    return {
        {"url", url.absoluteString()},
        {"scheme", url.scheme()},
        {"resourceSpecifier", url.resourceSpecifier()},
        {"authority", String(url.part(URLPart::Authority))},
        {"user", url.user()},
        {"password", url.password()},
        {"host", url.host()},
        {"port", port ? Json(*port) : Json()},
        {"path", url.path()},
        // Beside the decoded path, which cannot tell a slash from an escaped one.
        {"rawPath", url.rawPath()},
        {"parameterString", url.parameterString()},
        {"query", url.query()},
        {"fragment", url.fragment()},
        {"lastPathComponent", url.lastPathComponent()},
        {"pathExtension", url.pathExtension()},
        {"standardizedURL", url.standardizedURL().absoluteString()},
        {"baseDirectory", baseDirectory(url)},
        {"isBaseDirectory", isBaseDirectory(url)},
        {"invertedHostComponents", jsonArray(invertedHostComponents(url))},
        {"proposedFilename", proposedFilename(url)},
        {"display", displayString(url)},
    };
}

void printLines(Report& report, const JsonObject& parts) {
    for (const auto& [name, value] : parts)
        // For people what is absent is left out; a program finds every name, with null.
        if (!value.isNull())
            report.printLine(name.plain() == "url"
                                 ? value.plain()
                                 : fmt::format("  {:22} {}", name.plain(), value.plain()));
}

void run(Report& report, const Options& options) {
    forEachUrl(report, options.urls, [&](const String& string) {
        const URL url =
            options.web.resolution ? readURL(string, options.web) : URL::URLWithString(string);
        if (url.isAbsent()) return report.fail(string.utf8(), "not a URL");
        if (report.json())
            report.printObject(partsOf(url));
        else
            printLines(report, partsOf(url));
    });
}

}  // namespace

Command makeUrlParseCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Tell the parts of URLs and of relative references",
        .examples = {"velmo url parse 'https://me@example.org:8080/a;b?c=d#e'"},
        .run = [options](Report& report) { run(report, *options); },
    };
    addUrlArguments(command, options->urls);
    command.add({webFlag(options->web, "whole URLs as browsers read them"),
                 jsonFlag(session, "one JSON object a URL, null for parts not there")});
    return command;
}

}  // namespace velmo::tool
