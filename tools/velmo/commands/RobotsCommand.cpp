// What a robots.txt lets a program load. A file that is an address is answered for as a crawl
// would: a server that has none allows all, and one that fails allows nothing.
#include <memory>

#include <velmocore/gather/RobotsRules.h>
#include <velmocore/net/DownloadRequest.h>
#include <velmocore/url/URLConstruction.h>
#include <velmocore/url/URLSchemes.h>

#include "Commands.h"
#include "UrlCommands.h"
#include "frame/FileBytes.h"
#include "frame/Remote.h"

namespace velmo::tool {
namespace {

/// More is not loaded; it is far beyond what is read.
constexpr std::size_t LoadLimit = std::size_t{1} << 23;

struct Options {
    std::string file, agent;
    std::vector<std::string> urls;
};

RobotsRules rulesOfServer(const Options& options) {
    requireNetwork();
    const URL url = URLWithNormalizedStringURL(String::fromUTF8(options.file));
    if (!isHTTPURL(url)) throw InputError("not a URL");
    const DownloadResult answer = downloadSynchronous(
        url, {.limits = {.body = LoadLimit, .redirects = RobotsRules::MostRedirects}});
    if (answer.error) throw InputError(answer.error->text.utf8());
    return RobotsRules::rulesOfAnswer(answer.statusCode,
                                      answer.data ? Bytes(*answer.data) : Bytes(), options.agent);
}

void ask(Report& report, const RobotsRules& rules, const String& text) {
    const URL url = URLWithNormalizedStringURL(text);
    if (url.isAbsent()) return report.fail(text.utf8(), "not a URL");
    const bool isAllowed = rules.isAllowed(url);
    if (report.json())
        report.printObject({{"url", text}, {"allowed", isAllowed}});
    else
        report.printLine((isAllowed ? "allowed    " : "forbidden  ") + text.utf8());
    // All must be allowed for a success, so one that is not is no hit, and there is no other kind.
    if (!isAllowed) report.noteHit(false);
}

void run(Report& report, const Options& options) {
    if (options.file == "-" && options.urls.empty())
        throw UsageError("standard input cannot be both the file and the URLs");
    try {
        const RobotsRules rules = isRemote(options.file)
                                      ? rulesOfServer(options)
                                      : RobotsRules(readFile(options.file), options.agent);
        forEachUrl(report, options.urls, [&](const String& url) { ask(report, rules, url); });
    } catch (const InputError& error) {
        report.fail(options.file, error.what());
    }
}

}  // namespace

Command makeRobotsCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Tell which URLs a robots.txt lets a program load",
        .examples = {"velmo robots robots.txt mybot https://www.example.org/page.html"},
        .run = [options](Report& report) { run(report, *options); },
    };
    command.arguments = {
        required("FILE", options->file, "a robots.txt, as a file or an address of the web"),
        required("AGENT", options->agent, "the name of the program, as mybot or mybot/1.0"),
    };
    addUrlArguments(command, options->urls);
    command.add({jsonFlag(session, "one JSON object a URL")});
    return command;
}

}  // namespace velmo::tool
