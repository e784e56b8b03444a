// The key of a page for the web of today; "velmo url simplify" has the older one.
#include <velmocore/url/PageKey.h>

#include <memory>
#include <optional>

#include <fmt/core.h>

#include "UrlCommands.h"
#include "frame/FileBytes.h"

namespace velmo::tool {
namespace {

struct Options {
    std::vector<std::string> urls;
    std::string tracking;
    PageKeyOptions key;
    WebRules web;
};

/// The rows of a file beside the common ones; absent if it cannot be read.
std::optional<TrackingParameters> ownParameters(Report& report, const std::string& file) {
    try {
        const Data bytes = readFile(file);
        const TrackingParameters parameters(String::fromUTF8(charsOf(bytes)));
        if (const std::size_t count = parameters.numberOfRejectedLines())
            report.fail(file, fmt::format("{} lines are no rows", count));
        return parameters;
    } catch (const InputError& error) {
        report.fail(file, error.what());
        return std::nullopt;
    }
}

/// What is no URL by the grammar is read as browsers do, and what is none to them with what people
/// leave out.
URL urlOf(const String& text, WebRules web) {
    if (web.resolution || URL::URLWithString(text).isAbsent()) {
        URL url = readURL(text, WebRules::today());
        if (!url.isAbsent()) return url;
    }
    return readURL(text, {});
}

void run(Report& report, const Options& options) {
    PageKeyOptions key = options.key;
    std::optional<TrackingParameters> own;
    if (!options.tracking.empty()) {
        own = ownParameters(report, options.tracking);
        if (!own) return;
        key.parameters = &*own;
    }
    forEachUrl(report, options.urls, [&](const String& url) {
        const String found = pageKey(urlOf(url, options.web), key);
        if (report.json()) return report.printObject({{"url", url}, {"key", found}});
        if (found.isAbsent()) return report.fail(url.utf8(), "not a URL");
        report.printLine(found.utf8());
    });
}

/// What --keep names is told apart.
Option keepOption(PageKeyOptions& key) {
    static constexpr std::pair<std::string_view, bool PageKeyOptions::*> Rows[] = {
        {"scheme", &PageKeyOptions::foldScheme},
        {"www", &PageKeyOptions::foldWWW},
        {"sessions", &PageKeyOptions::sessionIDs},
        {"tracking", &PageKeyOptions::tracking},
        {"empty-params", &PageKeyOptions::emptyParams},
        {"index-pages", &PageKeyOptions::indexPages},
        {"order", &PageKeyOptions::sortQuery},
    };
    std::vector<std::string_view> names;
    for (const auto& row : Rows) names.push_back(row.first);
    return {.names = "--keep",
            .value = "DIFFERENCE",
            .help =
                "a difference that counts: scheme, www, sessions, tracking, empty-params, "
                "index-pages or order; may be given again",
            .take =
                [&key, names](const std::string& name) {
                    key.*Rows[indexOfName(name, names)].second = false;
                },
            .choices = names};
}

}  // namespace

Command makeUrlKeyCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Give the key by which a page of today's web is known again",
        .examples = {"velmo url key 'https://www.example.org:443/a/index.php?b=2&fbclid=x&a=1'"},
        .run = [options](Report& report) { run(report, *options); },
    };
    addUrlArguments(command, options->urls);
    command.add({keepOption(options->key),
                 text("--tracking", "FILE", options->tracking,
                      "also leave out the parameters that a file names, one a line, with the hosts "
                      "on which they count"),
                 webFlag(options->web, "read the URLs first as browsers do"),
                 jsonFlag(session, "one JSON object a URL")});
    return command;
}

}  // namespace velmo::tool
