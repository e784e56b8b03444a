// Two actions over links of result pages, as alike as their operations in the library: both take a
// link and a base and give a URL or none. One function runs both.
#include <velmocore/url/LinkAcceptance.h>
#include <velmocore/url/URLConstruction.h>

#include <memory>

#include "UrlCommands.h"

namespace velmo::tool {
namespace {

using Filter = URL (*)(const String& link, const URL& base);

struct Options {
    std::string base;
    std::vector<std::string> links;
};

void run(Report& report, const Options& options, Filter filter) {
    const URL base = URLWithNormalizedStringURL(String::fromUTF8(options.base));
    // No base and one that is no URL differ: the second was meant to be one.
    if (base.isAbsent() && !options.base.empty()) return report.fail(options.base, "not a URL");
    forEachUrl(report, options.links, [&](const String& link) {
        const URL url = filter(link, base);
        // A link that is refused is a miss and no failure: to refuse is what the action is for.
        report.noteHit(!url.isAbsent());
        if (report.json())
            report.printObject({{"link", link}, {"url", url.absoluteString()}});
        else if (!url.isAbsent())
            report.printLine(url.absoluteString().utf8());
    });
}

Command makeFilterCommand(Session& session, std::string summary, std::string example, Filter filter,
                          bool needsBase) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = std::move(summary),
        .examples = {std::move(example)},
        .run =
            [options, filter, needsBase](Report& report) {
                // Accepting judges a link as it is where there is no base; unwrapping would refuse
                // every one, which would look like a result.
                if (needsBase && options->base.empty()) throw UsageError("--base is missing");
                run(report, *options, filter);
            },
    };
    command.add({text("--base", "URL", options->base, "the URL of the page with the links"),
                 jsonFlag(session, "one JSON object a link, null for those refused")});
    addUrlArguments(command, options->links, "LINK");
    return command;
}

}  // namespace

Command makeUrlAcceptCommand(Session& session) {
    return makeFilterCommand(
        session, "Print the targets of the links of a result page that are real results",
        "velmo url accept --base https://duckduckgo.com/html/ https://example.org/",
        acceptStringURL, false);
}

Command makeUrlUnwrapCommand(Session& session) {
    return makeFilterCommand(
        session, "Take the redirectors of search engines off links, and resolve them",
        "velmo url unwrap --base https://duckduckgo.com/html/ /about", resolveStringURL, true);
}

}  // namespace velmo::tool
