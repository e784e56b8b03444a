#include <velmocore/feeds/FeedItems.h>
#include <velmocore/feeds/FeedRendering.h>
#include <velmocore/url/URLConstruction.h>

#include <fmt/core.h>

#include <memory>

#include "Commands.h"
#include "ParsedDate.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

enum class Form { Items, Display, Searchable };

struct Options {
    InputOptions input;
    std::string base, styleSheet;
    bool html = false, searchable = false, isInline = false, isDescribed = false;

    Form form() const { return html ? Form::Display : searchable ? Form::Searchable : Form::Items; }
};

/// Null for a text that is no feed.
Json nameOf(FeedDialect dialect) {
    switch (dialect) {
        case FeedDialect::RSS:
            return "rss";
        case FeedDialect::RDF:
            return "rdf";
        case FeedDialect::Atom:
            return "atom";
        default:
            return {};
    }
}

JsonObject valueOf(const FeedItem& item, const WebRules& web) {
    JsonObject value = {{"title", item.title},
                        {"description", item.description},
                        {"content", item.content},
                        {"author", item.author},
                        {"guid", item.guid},
                        {"date", item.date},
                        {"parsedDate", parsedDate(item.date)},
                        {"link", item.link}};
    if (!item.tags.empty()) value.push_back({"tags", jsonArray(item.tags)});
    if (!item.enclosures.empty()) {
        JsonArray enclosures;
        for (const FeedEnclosure& each : item.enclosures)
            enclosures.push_back(JsonObject{{"url", each.url}, {"length", each.length}});
        value.push_back({"enclosures", std::move(enclosures)});
    }
    value.push_back({"empty", isEmptyFeedItem(item, web)});
    return value;
}

/// Prints what one feed holds, or the page that it makes.
class Printer {
public:
    Printer(const Options& options, const URL& base)
        : options_(options),
          reading_{.baseURL = base,
                   .boundCData = !options.isDescribed,
                   .web = options.input.content.web} {}

    void print(const std::string& file, const String& text, Report& report) const {
        if (options_.form() != Form::Items) return printPage(file, text, report);
        const Feed feed = readFeed(text, reading_);
        if (report.json()) return printObject(file, feed, report);
        report.printHeading(file);
        printItems(feed, report);
    }

private:
    String pageOf(const String& text) const {
        if (options_.form() == Form::Searchable)
            return stringByConvertingItemsToSearchableHTML(readFeed(text, reading_).items,
                                                           reading_.web);
        FeedDisplayOptions display = {
            .linkedStyleSheet = !options_.isInline, .dates = {.offsets = true}, .feed = reading_};
        if (!options_.styleSheet.empty()) display.styleSheet = Path(options_.styleSheet);
        return stringByConvertingFeed(text, display);
    }

    void printPage(const std::string& file, const String& text, Report& report) const {
        const String page = pageOf(text);
        if (report.json()) return report.printObject(fileObject(file, {{"html", page}}));
        report.printHeading(file);
        report.printText(page);
    }

    void printObject(const std::string& file, const Feed& feed, Report& report) const {
        Json items;
        if (feed.isFeed) {
            JsonArray values;
            for (const FeedItem& item : feed.items) values.push_back(valueOf(item, reading_.web));
            items = std::move(values);
        }
        report.printObject(fileObject(file, {{"feed", feed.isFeed},
                                             {"dialect", nameOf(feed.dialect)},
                                             {"complete", feed.isComplete},
                                             {"title", feed.title},
                                             {"items", std::move(items)}}));
    }

    static void printItems(const Feed& feed, Report& report) {
        if (!feed.isFeed) return report.printLine("not a feed");
        report.printLine(fmt::format("{} ({}, {}{})", singleLine(feed.title).utf8(),
                                     nameOf(feed.dialect).plain(), feed.items.size(),
                                     feed.isComplete ? "" : ", incomplete"));
        for (const FeedItem& item : feed.items)
            report.printLine(fmt::format("{}\t{}\t{}", singleLine(item.date).utf8(),
                                         singleLine(item.link).utf8(),
                                         singleLine(item.title).utf8()));
    }

    const Options& options_;
    const FeedOptions reading_;
};

void run(Report& report, const Options& options) {
    const URL base = URLWithNormalizedStringURL(String::fromUTF8(options.base));
    if (base.isAbsent() && !options.base.empty()) return report.fail(options.base, "not a URL");
    if (!options.styleSheet.empty()) {
        try {
            readFile(options.styleSheet);
        } catch (const InputError& error) {
            return report.fail(options.styleSheet, error.what());
        }
    }
    const Printer printer(options, base);
    forEachContent(report, options.input,
                   [&](const FileName& file, Content&& content, Report& own) {
                       printer.print(file.path, content.units, own);
                   });
}

}  // namespace

Command makeFeedCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Print the items of RSS, RDF and Atom feeds, or feeds as pages",
        .examples = {"velmo feed --base https://example.org/feed.xml --json feed.xml",
                     "velmo feed --html --inline feed.xml"},
        .run = [options](Report& report) { run(report, *options); },
    };
    Option html = flag("--html", options->html, "a page to read");
    html.excludes = "--searchable";
    command.add({
        text("--base", "URL", options->base,
             "where the feed stands; resolves links that begin with /"),
        html,
        flag("--searchable", options->searchable, "a page of what is worth finding, for an index"),
        text("--stylesheet", "FILE", options->styleSheet, "the style sheet of --html"),
        flag("--inline", options->isInline, "the style sheet becomes a part of the page"),
        flag("--described", options->isDescribed,
             "the plain form: a CDATA section counts for the next part of its item, wherever it "
             "stands"),
    });
    addContentOptions(command, session, options->input, Kind::Page);
    command.add({jsonFlag(session, "one JSON object a feed")});
    return command;
}

}  // namespace velmo::tool
