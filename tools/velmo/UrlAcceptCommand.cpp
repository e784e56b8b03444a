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

void run(Session& session, const Options& options, Filter filter) {
    const URL base = URLWithNormalizedStringURL(String::fromUTF8(options.base));
    if (base.isAbsent() && !options.base.empty()) return session.fail(options.base, "not a URL");
    forEachUrl(options.links, [&](const String& link) {
        const URL url = filter(link, base);
        session.noteHit(!url.isAbsent());
        if (session.json)
            session.printObject({{"link", text(link)}, {"url", text(url.absoluteString())}});
        else if (!url.isAbsent())
            session.printLine(url.absoluteString().utf8());
    });
}

CLI::Option* addFilterCommand(CLI::App& url, Session& session, const char* name,
                              const char* description, Filter filter) {
    auto options = std::make_shared<Options>();
    CLI::App* command = url.add_subcommand(name, description);
    addUrlArguments(*command, options->links, "LINK");
    command->add_flag("--json", session.json, "one JSON object a link, null for those refused");
    command->callback([&session, options, filter] { run(session, *options, filter); });
    return command->add_option("--base", options->base, "the URL of the page with the links");
}

}  // namespace

void addUrlAcceptCommand(CLI::App& url, Session& session) {
    addFilterCommand(url, session, "accept",
                     "Example: velmo url accept --base https://duckduckgo.com/html/ LINK\n"
                     "Print the targets of the links of a result page that are real results",
                     acceptStringURL);
}

void addUrlUnwrapCommand(CLI::App& url, Session& session) {
    addFilterCommand(url, session, "unwrap",
                     "Example: velmo url unwrap --base https://duckduckgo.com/html/ LINK\n"
                     "Take the redirectors of search engines off links, and resolve them",
                     resolveStringURL)
        ->required();
}

}  // namespace velmo::tool
