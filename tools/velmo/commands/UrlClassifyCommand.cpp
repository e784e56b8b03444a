// All classes of a URL at once: the library walks a link once however many are asked for, so a
// choice of classes would save nothing.
#include <fmt/core.h>

#include <velmocore/url/AdvertisementFilter.h>
#include <velmocore/url/SearchEngines.h>
#include <velmocore/url/URLClassification.h>
#include <velmocore/url/URLConstruction.h>
#include <velmocore/url/URLSchemes.h>

#include <memory>
#include <optional>

#include "UrlCommands.h"
#include "frame/FileBytes.h"

namespace velmo::tool {
namespace {

struct Options {
    std::vector<std::string> urls;
    bool noCommonHosts = false;
    std::string filter;
};

using Filter = std::optional<AdvertisementFilter>;

JsonObject classesOf(const String& url, bool includingCommonHosts, const Filter& filter) {
    const URLClasses classes = classesOfStringURL(url, includingCommonHosts);
    const URL parsed = URLWithNormalizedStringURL(url);
    return {{"advertisement", classes.advertisement || (filter && filter->matches(parsed))},
            {"imageAd", classes.imageAd},
            {"adSense", classes.adSense},
            {"bookmarklet", classes.bookmarklet},
            {"recaptcha", classes.recaptcha},
            {"translation", classes.translation},
            {"topic", classes.topicOrThread},
            {"forum", classes.forum},
            {"cached", classes.cached},
            // The only one that is asked of a URL with its host and not of the text.
            {"searchEngine", isSearchEngine(parsed)}};
}

std::string namesOf(const JsonObject& classes) {
    std::string names;
    for (const auto& [name, holds] : classes)
        if (holds.plain() == "true") names += (names.empty() ? "" : ", ") + name.plain();
    return names.empty() ? "nothing known" : names;
}

void run(Report& report, const Options& options) {
    Filter filter;
    try {
        if (!options.filter.empty())
            filter.emplace(String::fromUTF8(charsOf(readFile(options.filter))));
    } catch (const InputError& error) {
        return report.fail(options.filter, error.what());
    }
    forEachUrl(report, options.urls, [&](const String& url) {
        const JsonObject classes = classesOf(url, !options.noCommonHosts, filter);
        if (!report.json())
            return report.printLine(fmt::format("{}: {}", url.utf8(), namesOf(classes)));
        JsonObject object{{"url", url}};
        object.insert(object.end(), classes.begin(), classes.end());
        object.push_back({"scheme", stringURLScheme(url)});
        object.push_back({"extension", stringURLPathExtension(url)});
        report.printObject(object);
    });
}

}  // namespace

Command makeUrlClassifyCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Tell by their looks what URLs lead to",
        .examples = {"velmo url classify https://example.org/viewtopic.php?t=1"},
        .run = [options](Report& report) { run(report, *options); },
    };
    addUrlArguments(command, options->urls);
    command.add({flag("--no-common-hosts", options->noCommonHosts,
                      "well-known advertisers and surveys are no advertisements"),
                 text("--filter", "FILE", options->filter,
                      "what a list of blockers' rules names is an advertisement too"),
                 jsonFlag(session, "one JSON object a URL")});
    return command;
}

}  // namespace velmo::tool
