#include <velmocore/url/URLSimplification.h>

#include <map>
#include <memory>

#include "UrlCommands.h"

namespace velmo::tool {
namespace {

using Reducer = String (*)(const String&);

const std::map<std::string, Reducer>& reducers() {
    static const std::map<std::string, Reducer> made = {
        {"session-ids", stringURLByRemovingSessionIDs},
        {"analytics", stringURLByRemovingAnalytics},
        {"index-pages", stringURLByRemovingIndexPages},
        {"empty-params", stringURLByRemovingEmptyParams},
        {"anchors", stringURLWithoutAnchor},
        {"standardize", standardizedStringURL},
    };
    return made;
}

struct Options {
    std::vector<std::string> urls;
    std::string only;
};

void run(Session& session, const Options& options) {
    const Reducer only = options.only.empty() ? nullptr : reducers().at(options.only);
    forEachUrl(options.urls, [&](const String& url) {
        const String simplified = only ? only(url) : simplifiedStringURL(url);
        if (session.json)
            session.printObject({{"url", text(url)}, {"simplified", text(simplified)}});
        else
            session.printLine(simplified.utf8());
    });
}

}  // namespace

void addUrlSimplifyCommand(CLI::App& url, Session& session) {
    auto options = std::make_shared<Options>();
    CLI::App* command = url.add_subcommand(
        "simplify",
        "Example: velmo url simplify 'https://www.example.org/index.html?sid=a1'\n"
        "Reduce URLs to the key of their page, to compare them by");
    addUrlArguments(*command, options->urls);
    command->add_option("--only", options->only, "run one reduction alone")
        ->check(CLI::IsMember(reducers()));
    command->add_flag("--json", session.json, "one JSON object a URL");
    command->callback([&session, options] { run(session, *options); });
}

}  // namespace velmo::tool
