#include <velmocore/url/RelativeURLs.h>
#include <velmocore/url/URLConstruction.h>

#include <memory>

#include "UrlCommands.h"

namespace velmo::tool {
namespace {

struct Options {
    std::string base;
    std::vector<std::string> links;
    bool keepAnchor = false, noStandardize = false;
};

void run(Session& session, const Options& options) {
    const URL base = URLWithNormalizedStringURL(String::fromUTF8(options.base));
    if (base.isAbsent()) return session.fail(options.base, "not a URL");
    forEachUrl(options.links, [&](const String& link) {
        const URL url = URLRelativeTo(
            base, link, {.trimAnchor = !options.keepAnchor, .standardize = !options.noStandardize});
        session.noteHit(!url.isAbsent());
        if (session.json)
            session.printObject({{"link", text(link)}, {"url", text(url.absoluteString())}});
        else if (!url.isAbsent())
            session.printLine(url.absoluteString().utf8());
    });
}

}  // namespace

void addUrlResolveCommand(CLI::App& url, Session& session) {
    auto options = std::make_shared<Options>();
    CLI::App* command = url.add_subcommand(
        "resolve",
        "Example: velmo url resolve https://example.org/docs/page.html ../img/x.gif\n"
        "Resolve links against the URL of their page, and put damaged ones right");
    command->add_option("BASE", options->base, "the URL of the page with the links")->required();
    addUrlArguments(*command, options->links, "LINK");
    command->add_flag("--keep-anchor", options->keepAnchor, "keep what stands behind a #");
    command->add_flag("--no-standardize", options->noStandardize,
                      "keep double slashes, and dot segments of absolute links");
    command->add_flag("--json", session.json, "one JSON object a link, null for one to nowhere");
    command->callback([&session, options] { run(session, *options); });
}

}  // namespace velmo::tool
