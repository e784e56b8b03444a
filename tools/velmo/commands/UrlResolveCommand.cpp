// Links resolved with the library's repairs. The base is no option but the first argument: without
// one there is nothing that this action could do.
#include <velmocore/url/RelativeURLs.h>

#include <memory>

#include "UrlCommands.h"

namespace velmo::tool {
namespace {

struct Options {
    std::string base;
    std::vector<std::string> links;
    bool keepAnchor = false, noStandardize = false;
    WebRules web;
};

void run(Report& report, const Options& options) {
    // As the standard has it, a link that needs no base has a result without one.
    const bool needsNoBase = options.web.resolution && options.base.empty();
    const URL base = readURL(String::fromUTF8(options.base), options.web);
    if (base.isAbsent() && !needsNoBase) return report.fail(options.base, "not a URL");
    forEachUrl(report, options.links, [&](const String& link) {
        const RelativeURLOptions rules = {
            .trimAnchor = !options.keepAnchor && !options.web.resolution,
            .standardize = !options.noStandardize,
            .web = options.web};
        const URL url = URLWithStringRelativeTo(link, base, rules);
        // A link to nowhere prints nothing and only counts as a miss, so that lines out stay
        // usable.
        report.noteHit(!url.isAbsent());
        if (report.json())
            report.printObject({{"link", link}, {"url", url.absoluteString()}});
        else if (!url.isAbsent())
            report.printLine(url.absoluteString().utf8());
    });
}

}  // namespace

Command makeUrlResolveCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Resolve links against the URL of their page, and put damaged ones right",
        .examples = {"velmo url resolve https://example.org/docs/page.html ../img/x.gif"},
        .run = [options](Report& report) { run(report, *options); },
    };
    command.arguments = {required("BASE", options->base, "the URL of the page with the links")};
    addUrlArguments(command, options->links, "LINK");
    command.add({
        flag("--keep-anchor", options->keepAnchor, "keep what stands after a #"),
        flag("--no-standardize", options->noStandardize,
             "keep double slashes, and dot segments of absolute links"),
        webFlag(options->web,
                "as browsers resolve links, anchors too; an empty BASE is none, and nothing is "
                "put right"),
        jsonFlag(session, "one JSON object a link, null for one to nowhere"),
    });
    return command;
}

}  // namespace velmo::tool
