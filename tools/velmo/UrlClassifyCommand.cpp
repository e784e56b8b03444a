#include <velmocore/url/SearchEngines.h>
#include <velmocore/url/URLClassification.h>
#include <velmocore/url/URLConstruction.h>
#include <velmocore/url/URLSchemes.h>

#include <memory>

#include "UrlCommands.h"

namespace velmo::tool {
namespace {

struct Options {
    std::vector<std::string> urls;
    bool noCommonHosts = false;
};

Json classesOf(const String& url, bool includingCommonHosts) {
    const URLClasses classes = classesOfStringURL(url, includingCommonHosts);
    return {{"advertisement", classes.advertisement},
            {"imageAd", classes.imageAd},
            {"adSense", classes.adSense},
            {"bookmarklet", classes.bookmarklet},
            {"recaptcha", classes.recaptcha},
            {"translation", classes.translation},
            {"topic", classes.topicOrThread},
            {"forum", classes.forum},
            {"cached", classes.cached},
            {"searchEngine", isSearchEngine(URLWithNormalizedStringURL(url))}};
}

std::string namesOf(const Json& classes) {
    std::string names;
    for (const auto& [name, holds] : classes.items())
        if (holds) names += (names.empty() ? "" : ", ") + name;
    return names.empty() ? "nothing known" : names;
}

void run(Session& session, const Options& options) {
    forEachUrl(options.urls, [&](const String& url) {
        const Json classes = classesOf(url, !options.noCommonHosts);
        if (!session.json)
            return session.printLine(fmt::format("{}: {}", url.utf8(), namesOf(classes)));
        Json object{{"url", text(url)}};
        object.update(classes);
        object["scheme"] = text(stringURLScheme(url));
        object["extension"] = text(stringURLPathExtension(url));
        session.printObject(object);
    });
}

}  // namespace

void addUrlClassifyCommand(CLI::App& url, Session& session) {
    auto options = std::make_shared<Options>();
    CLI::App* command =
        url.add_subcommand("classify",
                           "Example: velmo url classify https://example.org/viewtopic.php?t=1\n"
                           "Tell by their looks what URLs lead to");
    addUrlArguments(*command, options->urls);
    command->add_flag("--no-common-hosts", options->noCommonHosts,
                      "well-known advertisers and surveys are no advertisements");
    command->add_flag("--json", session.json, "one JSON object a URL");
    command->callback([&session, options] { run(session, *options); });
}

}  // namespace velmo::tool
