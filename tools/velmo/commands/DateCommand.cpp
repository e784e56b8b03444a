#include <fmt/core.h>

#include <velmocore/platform/DateFormat.h>
#include <velmocore/platform/Log.h>
#include <velmocore/readers/Dates.h>
#include <velmocore/readers/DocumentDates.h>
#include <velmocore/readers/NaturalDates.h>

#include <array>
#include <memory>

#include "Commands.h"
#include "UrlCommands.h"

namespace velmo::tool {
namespace {

/// What the texts are.
enum class Kind { Free, HTTP, OPF, Document, ValidatedDocument };

struct Options {
    Kind kind = Kind::Free;
    DateOptions reading;
    std::string now;
    std::vector<std::string> texts;
};

std::optional<Date> dateOf(const String& text, const Options& options) {
    switch (options.kind) {
        case Kind::Free:
            return date(text, options.reading);
        case Kind::HTTP:
            return dateFromHTTPHeaderValue(text, options.reading);
        case Kind::OPF:
            return dateFromOPF(text, options.reading);
        case Kind::Document:
        case Kind::ValidatedDocument:
            return documentDateByValidatingSeparation(text, options.kind == Kind::ValidatedDocument,
                                                      options.reading);
    }
    return {};
}

void printDate(Report& report, const String& text, const Options& options) {
    const std::optional<Date> found = dateOf(text, options);
    const String written = found ? stringInISO8601(*found) : String();
    report.noteHit(!written.isAbsent());
    if (report.json()) return report.printObject({{"text", text}, {"date", written}});
    report.printLine(
        fmt::format("{}  {}", written.isAbsent() ? "no date" : written.utf8(), text.utf8()));
}

/// The instant is read when the zone is known, in whatever order they were given.
void setNow(Options& options) {
    if (options.now.empty()) return;
    options.reading.now =
        date(String::fromUTF8(options.now), {.zone = options.reading.zone, .offsets = true});
    if (!options.reading.now)
        throw UsageError(fmt::format("--now: '{}' is no instant", options.now));
}

void run(Report& report, Options& options) {
    // That a text is no date is what the command prints.
    setLogHandler([](std::string_view) {});
    setNow(options);
    const auto print = [&](const String& text) { printDate(report, text, options); };
    if (options.texts.empty()) options.texts = {"-"};
    for (const std::string& text : options.texts)
        forEachUrl(report, text == "-" ? std::vector<std::string>() : std::vector{text}, print);
}

Option kindFlag(std::string_view name, Kind& target, Kind kind, std::string help,
                std::string_view excludes) {
    return {.names = name,
            .value = {},
            .help = std::move(help),
            .take = [&target, kind](const auto&) { target = kind; },
            .excludes = excludes};
}

Option documentOption(Kind& target) {
    return {.names = "--document",
            .value = "validate",
            .help =
                "the first date among the words of a text; with validate numbers must be joined by "
                "dashes, dots or slashes",
            .take =
                [&target](const std::string& value) {
                    if (!value.empty())
                        indexOfName(value, std::array{std::string_view("validate")});
                    target = value.empty() ? Kind::Document : Kind::ValidatedDocument;
                },
            .excludes = "--http",
            .isValueOptional = true};
}

Option zoneOption(TimeZone& target) {
    return {.names = "--zone",
            .value = "NAME",
            .help =
                "where dates without a zone are, as Europe/Berlin, CET or +01:00; the user's zone "
                "if not given",
            .take = [&target](const std::string& name) {
                const auto zone = TimeZone::named(String::fromUTF8(name));
                if (!zone) throw UsageError(fmt::format("'{}' is no time zone", name));
                target = *zone;
            }};
}

}  // namespace

Command makeDateCommand(Session& session) {
    auto options = std::make_shared<Options>();
    return {
        .summary = "Tell the dates that texts are",
        .examples = {"velmo date 'Sat, 3 Feb 2001 10:11:12 +0100' '3. Februar 2001'",
                     "velmo date --now 2001-02-03 'last Monday at noon'"},
        .options =
            {
                kindFlag("--http", options->kind, Kind::HTTP, "dates of HTTP headers", "--opf"),
                kindFlag("--opf", options->kind, Kind::OPF, "dates of ebook packages",
                         "--document"),
                documentOption(options->kind),
                zoneOption(options->reading.zone),
                text("--now", "INSTANT", options->now,
                     "what \"yesterday\" and dates without a year are counted from"),
                flag("--offsets", options->reading.offsets,
                     "apply an offset or a Z behind a date whose format has no place for a zone"),
                jsonFlag(session, "one JSON object a text"),
            },
        .arguments = {list("TEXT", options->texts,
                           "- is a line each from standard input, also without any")},
        .run = [options](Report& report) { run(report, *options); },
    };
}

}  // namespace velmo::tool
