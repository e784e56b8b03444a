// JSON lines in, JSON lines out: one object for each, in their order, and nothing else. Nothing in
// an object depends on other lines, so that the output of any pieces of the input, joined, is that
// of the whole: an engine of many machines can split it as it likes.
#include <fmt/core.h>
#include <unistd.h>

#include <velmocore/gather/JSONLinesSource.h>
#include <velmocore/gather/SourceSequence.h>
#include <velmocore/platform/DateFormat.h>
#include <velmocore/platform/Log.h>
#include <velmocore/platform/Resources.h>

#include "GatherRun.h"
#include "LanguageLists.h"

namespace velmo::tool {
namespace {

Json dateOf(const std::optional<Date>& date) {
    return date ? Json(stringInISO8601(*date)) : Json();
}

Json kindOf(PageKind kind) {
    return kind == PageKind::Page ? "page" : kind == PageKind::Feed ? "feed" : "text";
}

std::string hexOf(Bytes bytes) {
    std::string hex;
    for (const std::uint8_t byte : bytes) hex += fmt::format("{:02x}", byte);
    return hex;
}

JsonArray linksOf(const PageRecord& record) {
    JsonArray links;
    for (const PageLink& link : record.links)
        links.push_back(JsonObject{{"url", link.url.absoluteString()},
                                   {"text", link.text},
                                   {"thumbnail", link.thumbnail.absoluteString()}});
    return links;
}

JsonObject objectOf(const GatheredPage& page) {
    const PageRecord& record = page.record;
    return {{"url", record.url.absoluteString()},
            {"key", record.key},
            {"kind", kindOf(record.kind)},
            {"title", record.title},
            {"author", record.author},
            {"description", record.description},
            {"date", dateOf(record.date)},
            {"language", record.language},
            {"charset", record.charset},
            {"words", record.words},
            {"text", record.text},
            {"links", linksOf(record)},
            {"fetched", dateOf(record.fetched)},
            {"status", record.status},
            {"errorPage", record.isErrorPage},
            {"digest", hexOf(digestOfText(record))},
            {"kept", page.isKept}};
}

std::unique_ptr<PageSource> linesOf(Session& session, const GatherRun& run) {
    auto sources = std::make_unique<SourceList>();
    NameOptions names = run.input.names;
    names.recursive = false;
    for (const FileName& name : listFiles(session, names))
        sources->add([path = name.path] {
            // Without a name: the number of a line depends on those before it.
            return std::make_unique<JSONLinesSource>(
                path == "-" ? InputStream::ofDescriptor(STDIN_FILENO) : InputStream::ofFile(path));
        });
    return sources;
}

/// Whether an error is that of one line, which then stands in its place.
bool isOfLine(const Error& error) {
    return error.domain == u"velmo.gather" &&
           error.code == static_cast<std::int64_t>(GatherProblem::Page);
}

}  // namespace

void gatherLines(Report& report, GatherRun& run) {
    const LanguageFilter languages = readLanguageFilterOfToday(report, velmoResourcesDirectory());
    setLogHandler([](std::string_view) {});
    const std::unique_ptr<PageSource> source = linesOf(report.session(), run);
    gatherPages(*source, run.options(languages), [&](GatheredPage& page) {
        if (!page.error)
            report.printObject(objectOf(page));
        else if (isOfLine(*page.error))
            report.printObject({{"url", page.name}, {"error", page.error->text}});
        else
            report.fail(page.error->path.isAbsent() ? "-" : page.error->path.utf8(),
                        page.error->text.utf8());
        report.flush();
        return true;
    });
}

}  // namespace velmo::tool
