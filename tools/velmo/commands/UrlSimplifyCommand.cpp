// The key by which a page is known again, or one of the reductions of which it is made: run alone
// they show which of them changed a URL.
#include <velmocore/url/URLSimplification.h>

#include <memory>

#include "UrlCommands.h"

namespace velmo::tool {
namespace {

using Reducer = String (*)(const String&);

struct Options {
    std::vector<std::string> urls;
    Reducer only = nullptr;
    WebRules web;
};

void run(Report& report, const Options& options) {
    forEachUrl(report, options.urls, [&](const String& url) {
        // The text as it came, not a URL made of it: the key is defined for any text.
        const String text = readText(url, options.web);
        const String simplified = options.only ? options.only(text) : simplifiedStringURL(text);
        if (report.json())
            report.printObject({{"url", url}, {"simplified", simplified}});
        else
            report.printLine(simplified.utf8());
    });
}

}  // namespace

Command makeUrlSimplifyCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Reduce URLs to the key of their page, to compare them by",
        .examples = {"velmo url simplify 'https://www.example.org/index.html?sid=a1'"},
        .run = [options](Report& report) { run(report, *options); },
    };
    addUrlArguments(command, options->urls);
    command.add(
        {choice("--only", "REDUCTION", options->only,
                "run one reduction alone: session-ids, analytics, index-pages, "
                "empty-params, anchors or standardize",
                {std::pair<std::string_view, Reducer>("session-ids", stringURLByRemovingSessionIDs),
                 {"analytics", stringURLByRemovingAnalytics},
                 {"index-pages", stringURLByRemovingIndexPages},
                 {"empty-params", stringURLByRemovingEmptyParams},
                 {"anchors", stringURLWithoutAnchor},
                 {"standardize", standardizedStringURL}}),
         webFlag(options->web, "reduce what browsers read"),
         jsonFlag(session, "one JSON object a URL")});
    return command;
}

}  // namespace velmo::tool
