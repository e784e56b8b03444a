// A page out of a store: its text, or what else is kept of it.
#include <fmt/core.h>

#include <memory>

#include <velmocore/gather/PageStore.h>
#include <velmocore/platform/DateFormat.h>
#include <velmocore/storage/Base64.h>
#include <velmocore/storage/Digests.h>
#include <velmocore/url/PageKey.h>
#include <velmocore/url/URLConstruction.h>

#include "Commands.h"
#include "PageStores.h"

namespace velmo::tool {
namespace {

enum class Part { Text, Fields, Links, Bytes };

struct Options {
    std::string store, field;
    std::vector<std::string> pages;
    Part part = Part::Text;
};

String dateText(const std::optional<Date>& date) {
    return date ? stringInISO8601(*date) : String();
}

std::string_view nameOf(PageKind kind) {
    constexpr std::string_view Names[] = {"page", "feed", "text"};
    return Names[static_cast<std::size_t>(kind)];
}

Json linksOf(const PageRecord& page) {
    JsonArray links;
    for (const PageLink& link : page.links)
        links.push_back(JsonObject{{"url", link.url.absoluteString()},
                                   {"text", link.text},
                                   {"thumbnail", link.thumbnail.absoluteString()}});
    return links;
}

Json bytesOf(const PageRecord& page) {
    return page.bytes ? Json(encodedBase64Data(*page.bytes)) : Json();
}

struct Field {
    std::string_view name;
    Json (*value)(const PageRecord& page);
    bool isShort = true;  ///< fits into a line for people
};

constexpr Field Fields[] = {
    {"url", [](const PageRecord& page) { return Json(page.url.absoluteString()); }},
    {"key", [](const PageRecord& page) { return Json(page.key); }},
    {"kind", [](const PageRecord& page) { return Json(nameOf(page.kind)); }},
    {"title", [](const PageRecord& page) { return Json(page.title); }},
    {"author", [](const PageRecord& page) { return Json(page.author); }},
    {"description", [](const PageRecord& page) { return Json(page.description); }},
    {"date", [](const PageRecord& page) { return Json(dateText(page.date)); }},
    {"language", [](const PageRecord& page) { return Json(page.language); }},
    {"charset", [](const PageRecord& page) { return Json(page.charset); }},
    {"words", [](const PageRecord& page) { return Json(page.words); }},
    {"fetched", [](const PageRecord& page) { return Json(dateText(page.fetched)); }},
    {"status", [](const PageRecord& page) { return Json(page.status); }},
    {"errorPage", [](const PageRecord& page) { return Json(page.isErrorPage); }},
    {"digest", [](const PageRecord& page) { return Json(hexStringValue(page.digest)); }},
    {"text", [](const PageRecord& page) { return Json(page.text); }, false},
    {"links", linksOf, false},
    {"bytes", bytesOf, false},
};

void printObject(const PageRecord& page, const Options& options, Report& report) {
    JsonObject members;
    for (const Field& field : Fields)
        members.push_back({std::string(field.name), field.value(page)});
    report.printObject(fileObject(options.store, std::move(members)));
}

void printFields(const PageRecord& page, Report& report) {
    for (const Field& field : Fields) {
        const Json value = field.isShort ? field.value(page) : Json();
        if (!value.isNull())
            report.printLine(
                fmt::format("{}: {}", field.name, oneLine(String::fromUTF8(value.plain()))));
    }
}

void printField(const PageRecord& page, const Options& options, Report& report) {
    for (const Field& field : Fields) {
        if (field.name != options.field) continue;
        const Json value = field.value(page);
        report.noteHit(!value.isNull());
        if (!value.isNull()) report.printText(String::fromUTF8(value.plain()));
    }
}

void printLinks(const PageRecord& page, Report& report) {
    for (const PageLink& link : page.links)
        report.printLine(fmt::format("{}{}{}", link.url.absoluteString().utf8(),
                                     link.text.isEmpty() ? "" : "\t", link.text.utf8()));
}

void printPage(const PageRecord& page, const Options& options, Report& report) {
    if (report.json()) return printObject(page, options, report);
    if (!options.field.empty()) return printField(page, options, report);
    switch (options.part) {
        case Part::Fields:
            return printFields(page, report);
        case Part::Links:
            return printLinks(page, report);
        case Part::Bytes:
            if (!page.bytes) throw InputError(page.key.utf8() + ": its bytes were not kept");
            return report.printBytes(charsOf(*page.bytes));
        default:
            return report.printText(page.text);
    }
}

/// By its key, or by an address that leads to the same key.
std::optional<PageRecord> pageOf(const PageStore& store, const std::string& name) {
    const String text = String::fromUTF8(name);
    std::optional<PageRecord> page = store.page(text);
    return page ? std::move(page) : store.page(pageKey(URLWithNormalizedStringURL(text)));
}

void run(Report& report, const Options& options) try {
    const PageStore store = openedPageStore(options.store);
    for (const std::string& name : options.pages) try {
            const std::optional<PageRecord> page = pageOf(store, name);
            if (!page) throw InputError("no page " + name);
            if (options.pages.size() > 1) report.printHeading(name);
            printPage(*page, options, report);
        } catch (const InputError& error) {
            report.fail(options.store, error.what());
        }
} catch (const InputError& error) {
    report.fail(options.store, error.what());
}

Option fieldOption(Options& options) {
    Option option =
        text("--field", "NAME", options.field, "one thing that is kept, as --json names it");
    option.take = [&options](const std::string& name) {
        std::vector<std::string_view> names;
        for (const Field& field : Fields) names.push_back(field.name);
        options.field = names[indexOfName(name, names)];
    };
    return option;
}

Option partFlag(std::string_view name, Part part, Options& options, std::string help) {
    return {.names = name,
            .value = {},
            .help = std::move(help),
            .take = [&options, part](const std::string&) { options.part = part; }};
}

}  // namespace

Command makeShowCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Print the text of a page in a store, or what else is kept of it",
        .examples = {"velmo show pages.store https://example.org/",
                     "velmo show --field title pages.store https://example.org/"},
        .run = [options](Report& report) { run(report, *options); },
    };
    command.arguments = {required("STORE", options->store, "a store of pages"),
                         list("PAGE", options->pages, "the key or an address of a page")};
    command.arguments.back().isRequired = true;
    command.add({
        partFlag("--fields", Part::Fields, *options, "all that is short, a line each"),
        fieldOption(*options),
        partFlag("--links", Part::Links, *options, "its links, with their texts behind a tab"),
        partFlag("--bytes", Part::Bytes, *options, "the page as it came, if that was kept"),
        jsonFlag(session, "one JSON object a page, with all that is kept"),
    });
    return command;
}

}  // namespace velmo::tool
