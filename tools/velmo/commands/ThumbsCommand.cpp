#include <fmt/core.h>

#include <memory>
#include <set>

#include <velmocore/markup/LinkThumbnails.h>
#include <velmocore/markup/Links.h>
#include <velmocore/url/URLConstruction.h>

#include "Commands.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

using Strings = LinkThumbnails::Strings;

struct Options {
    InputOptions input;
    std::string base;
    LinkThumbnailOptions thumbnails;
};

/// What the references of a page are relative to, if that was not given.
URL baseOf(const std::string& file, const String& page, const WebRules& web) {
    const URL url = URL::fileURLWithPath(String::fromUTF8(file));
    const URL base = htmlLinks(page, {.web = web, .url = url}).baseURL;
    return base.isAbsent() ? url : base;
}

JsonObject objectOf(const Strings& strings) {
    JsonObject object;
    for (const auto& [link, value] : strings) object.push_back({link, value});
    return object;
}

std::string lineOf(const Strings& strings, const String& link) {
    const auto found = strings.find(link);
    return found == strings.end() ? std::string() : singleLine(found->second).utf8();
}

void printLines(const LinkThumbnails& found, Report& report) {
    std::set<String> links;
    for (const Strings* strings : {&found.thumbnails, &found.titles, &found.texts})
        for (const auto& [link, value] : *strings) links.insert(link);
    for (const String& link : links)
        report.printLine(fmt::format("{}\t{}\t{}\t{}", link.utf8(), lineOf(found.thumbnails, link),
                                     lineOf(found.titles, link), lineOf(found.texts, link)));
}

void run(Report& report, const Options& options) {
    const URL base = URLWithNormalizedStringURL(String::fromUTF8(options.base));
    if (base.isAbsent() && !options.base.empty()) return report.fail(options.base, "not a URL");
    forEachContent(
        report, options.input, [&](const FileName& file, Content&& content, Report& own) {
            const String page = content.kind == Kind::Page ? content.units : String();
            LinkThumbnailOptions wanted = options.thumbnails;
            wanted.web = content.web;
            wanted.baseURL = base.isAbsent() ? baseOf(file.path, page, content.web) : base;
            const LinkThumbnails found = getLinkThumbnails(page, wanted);
            if (!own.json()) return printLines(found, own);
            own.printObject(fileObject(file.path, {{"thumbnails", objectOf(found.thumbnails)},
                                                   {"titles", objectOf(found.titles)},
                                                   {"texts", objectOf(found.texts)}}));
        });
}

}  // namespace

Command makeThumbsCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Print thumbnails, titles and texts of the links of pages",
        .examples =
            {"velmo thumbs --base https://example.org/page.html --absolute --json page.html"},
        .run = [options](Report& report) { run(report, *options); },
    };
    command.add({
        text("--base", "URL", options->base,
             "what references are relative to (default: the page's own base, else its file)"),
        flag("--absolute", options->thumbnails.resolve,
             "whole URLs, taken out of search engines' redirectors"),
        flag("--google-tags", options->thumbnails.googleTags,
             "honour googleoff: and googleon: comments"),
    });
    addContentOptions(command, session, options->input, Kind::Page);
    command.add({jsonFlag(session, "one JSON object a page")});
    return command;
}

}  // namespace velmo::tool
