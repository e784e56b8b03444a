#include <fmt/core.h>

#include <memory>

#include <velmocore/markup/LinkNormalising.h>
#include <velmocore/markup/Page.h>
#include <velmocore/markup/PageMetadata.h>
#include <velmocore/url/URLConstruction.h>

#include "Commands.h"
#include "ParsedDate.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

struct Options {
    InputOptions input;
    std::string url;
};

JsonObject objectOf(const MetaAttributes& attributes) {
    JsonObject object;
    for (const auto& [name, value] : attributes) object.push_back({name, value});
    return object;
}

JsonObject objectOf(const HtmlMetaSummary& summary) {
    return {{"keywords", summary.keywords},
            {"description", summary.description},
            {"title", summary.title},
            {"indexTitle", summary.indexTitle},
            {"date", summary.date}};
}

/// All that a page says of itself, by the names of the members.
JsonObject membersOf(const String& page, const URL& url, const WebRules& web) {
    const HtmlMetadata found = htmlMetadata(page, {.summary = true, .url = url, .web = web});
    return {{"title", found.title},
            {"normalizedTitle", found.normalizedTitle},
            {"metaTitle", found.metaTitle},
            {"indexTitle", found.indexTitle},
            {"keywords", found.keywords},
            {"description", found.description},
            {"date", found.date},
            {"parsedDate", parsedDate(normalizedHtmlString(found.date, web))},
            {"author", found.author},
            {"copyright", found.copyright},
            {"refresh", found.refresh},
            {"canonical", found.canonical},
            {"base", found.base.absoluteString()},
            {"editableNote", found.isFormattedNote},
            {"attributes", objectOf(found.attributes)},
            {"converted", objectOf(found.convertedAttributes)},
            {"summary", objectOf(found.summary)},
            {"errorPage", Page::pageWithString(page, url, web).isErrorPage()}};
}

/// A line for each value that is there, those of objects with both names. Of the attributes people
/// want the cleaned ones.
void printLines(const JsonObject& members, const std::string& prefix, Report& report) {
    for (const auto& [name, value] : members) {
        const std::string full = prefix + name.plain();
        if (full == "attributes") continue;
        if (const JsonObject* inner = value.members())
            printLines(*inner, full + " ", report);
        else if (!value.isNull() && !value.plain().empty())
            report.printLine(
                fmt::format("{}: {}", full, singleLine(String::fromUTF8(value.plain())).utf8()));
    }
}

void run(Report& report, const Options& options) {
    const URL url = URLWithNormalizedStringURL(String::fromUTF8(options.url));
    if (url.isAbsent() && !options.url.empty()) return report.fail(options.url, "not a URL");
    forEachContent(report, options.input,
                   [&](const FileName& file, Content&& content, Report& own) {
                       const String page = content.kind == Kind::Page ? content.units : String();
                       JsonObject members = membersOf(page, url, content.web);
                       if (own.json())
                           return own.printObject(fileObject(file.path, std::move(members)));
                       own.printHeading(file.path);
                       printLines(members, "", own);
                   });
}

}  // namespace

Command makeMetaCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Print what pages say of themselves: title, author, date and the like",
        .examples = {"velmo meta --json page.html"},
        .run = [options](Report& report) { run(report, *options); },
    };
    command.add({text("--base", "URL", options->url,
                      "where the pages come from, which may tell an error page")});
    addContentOptions(command, session, options->input, Kind::Page);
    command.add({jsonFlag(session, "one JSON object a page")});
    return command;
}

}  // namespace velmo::tool
