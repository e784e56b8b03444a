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
    if (base.isAbsent() && !options.base.empty()) return report.fail(options.base, "not a URL");
    forEachUrl(report, options.links, [&](const String& link) {
        const URL url = filter(link, base);
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
