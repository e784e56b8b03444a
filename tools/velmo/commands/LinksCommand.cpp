// The links of a page as the library finds them, in one of its sets, or each with its details.
// Nothing is resolved without a base from the command line: a page alone does not tell where it
// stands.
#include <fmt/core.h>

#include <algorithm>
#include <memory>

#include <velmocore/markup/Links.h>
#include <velmocore/markup/PageResources.h>
#include <velmocore/url/URLConstruction.h>

#include "Commands.h"
#include "LinkDetails.h"
#include "PageLinks.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

enum class LinkSet { Links, Frames, Images, Scripts, Media };

struct Options {
    InputOptions input;
    std::string base, containing;
    bool noFollow = false, details = false;
    LinkSet kind = LinkSet::Links;
    bool hasKind = false;
};

struct Found {
    std::vector<String> links;
    URL base;  ///< of the page's base tag
};

std::vector<String> listOf(const std::set<String>& set) { return {set.begin(), set.end()}; }

Found find(const String& page, const URL& url, const Options& options) {
    const WebRules web = options.input.content.web;
    const String containing = String::fromUTF8(options.containing);
    // Whatever was asked for: the page's own base comes with its links.
    HtmlLinks found = htmlLinks(
        page,
        {.containing = containing, .useRelNoFollow = options.noFollow, .web = web, .url = url});
    switch (options.kind) {
        case LinkSet::Links:
            break;
        case LinkSet::Frames:
            found.links = listOf(htmlLinksAndFramesSet(page, {.web = web}).references);
            break;
        case LinkSet::Images:
            found.links = listOf(htmlImages(page, web));
            break;
        case LinkSet::Scripts:
            found.links = listOf(htmlStylesheetsAndScripts(page, web));
            break;
        case LinkSet::Media:
            found.links = listOf(htmlEmbeddedObjects(page, web));
            break;
    }
    return {std::move(found.links), std::move(found.baseURL)};
}

/// Whether the details of a link of this kind are wanted.
bool isWanted(LinkKind kind, const Options& options) {
    switch (kind) {
        case LinkKind::A:
        case LinkKind::Area:
            return !options.hasKind || options.kind == LinkSet::Frames;
        case LinkKind::Frame:
            return !options.hasKind || options.kind == LinkSet::Frames;
        case LinkKind::Image:
            return !options.hasKind || options.kind == LinkSet::Images;
        case LinkKind::Script:
            return !options.hasKind || options.kind == LinkSet::Scripts;
        default:
            return !options.hasKind || options.kind == LinkSet::Media;
    }
}

/// Prints what one page points at.
class Printer {
public:
    Printer(const Options& options, const URL& base) : options_(options), base_(base) {}

    void print(const std::string& file, const String& page, Report& report) const {
        const Found found = find(page, base_, options_);
        // As in a browser: what the page says of its base goes before where it was found.
        const URL& base = found.base.isAbsent() ? base_ : found.base;
        if (report.json()) return printObject(file, page, found, base, report);
        if (options_.details) return printDetails(page, base, report);
        for (const String& link : found.links) {
            const URL url = resolved(link, base);
            report.printLine(url.isAbsent() ? link.utf8() : url.absoluteString().utf8());
        }
    }

private:
    bool resolves() const { return !base_.isAbsent(); }

    URL resolved(const String& link, const URL& base) const {
        // With its anchor, which tells people and programs where on the page a link leads.
        return resolves() ? urlOfLink(link, base, true, options_.input.content.web) : URL();
    }

    std::vector<LinkDetails> detailsOf(const String& page) const {
        std::vector<LinkDetails> details = linkDetails(page, options_.input.content.web);
        std::erase_if(details, [&](const LinkDetails& each) {
            return !isWanted(each.kind, options_) ||
                   // The library leaves such links out of its set itself; details come from a scan
                   // of our own.
                   (options_.noFollow &&
                    each.rel.view().find(u"nofollow") != std::u16string_view::npos);
        });
        return details;
    }

    void printDetails(const String& page, const URL& base, Report& report) const {
        for (const LinkDetails& each : detailsOf(page)) {
            const URL url = resolved(each.link, base);
            // Tabs, so that cut(1) and spreadsheets take the columns apart; the text goes last, as
            // it is the only column that may be empty.
            report.printLine(fmt::format(
                "{}\t{}\t{}", nameOf(each.kind),
                url.isAbsent() ? each.link.utf8() : url.absoluteString().utf8(), each.text.utf8()));
        }
    }

    void printObject(const std::string& file, const String& page, const Found& found,
                     const URL& base, Report& report) const {
        JsonObject object = fileObject(
            file, {{"base", found.base.absoluteString()}, {"links", jsonArray(found.links)}});
        if (resolves()) {
            JsonArray urls;
            for (const String& link : found.links)
                urls.push_back(resolved(link, base).absoluteString());
            object.push_back({"resolved", std::move(urls)});
        }
        if (options_.details) object.push_back({"details", detailValues(page, base)});
        report.printObject(object);
    }

    JsonArray detailValues(const String& page, const URL& base) const {
        JsonArray values;
        for (const LinkDetails& each : detailsOf(page))
            values.push_back(JsonObject{{"link", each.link},
                                        {"raw", each.raw},
                                        {"url", resolved(each.link, base).absoluteString()},
                                        {"text", each.text},
                                        {"title", each.title},
                                        {"rel", each.rel},
                                        {"kind", nameOf(each.kind)}});
        return values;
    }

    const Options& options_;
    const URL base_;
};

void run(Report& report, const Options& options) {
    const URL base = URLWithNormalizedStringURL(String::fromUTF8(options.base));
    if (base.isAbsent() && !options.base.empty()) return report.fail(options.base, "not a URL");
    const Printer printer(options, base);
    forEachContent(report, options.input,
                   [&](const FileName& file, Content&& content, Report& own) {
                       // A text that looks like markup in places is still a text: it points at
                       // nothing.
                       const String page = content.kind == Kind::Page ? content.units : String();
                       printer.print(file.path, page, own);
                   });
}

Option kindFlag(Options& options, std::string_view name, LinkSet kind, std::string help) {
    return {
        .names = name, .value = {}, .help = std::move(help), .take = [&options, kind](const auto&) {
            // Not an exclusion of two options, as each of the four excludes the three others.
            if (options.hasKind && options.kind != kind)
                throw UsageError("only one of --frames, --images, --scripts and --media");
            options.kind = kind;
            options.hasKind = true;
        }};
}

}  // namespace

Command makeLinksCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Print what pages point at, normalised",
        .examples = {"velmo links --base https://example.org/page.html --json page.html",
                     "velmo links --details --json page.html"},
        .run = [options](Report& report) { run(report, *options); },
    };
    command.add({
        text("--base", "URL", options->base, "the URL of the pages; resolves the links"),
        text("--containing", "TEXT", options->containing, "only links whose text contains this"),
        flag("--nofollow", options->noFollow, "leave out links with rel=nofollow"),
        kindFlag(*options, "--frames", LinkSet::Frames, "links and frames instead, sorted"),
        kindFlag(*options, "--images", LinkSet::Images, "images and icons instead, sorted"),
        kindFlag(*options, "--scripts", LinkSet::Scripts,
                 "scripts and style sheets instead, sorted"),
        kindFlag(*options, "--media", LinkSet::Media, "objects, audio and video instead, sorted"),
        flag("--details", options->details,
             "everything that is pointed at, in page order, with its kind and text"),
    });
    addContentOptions(command, session, options->input, Kind::Page);
    command.add({jsonFlag(session, "one JSON object a page")});
    return command;
}

}  // namespace velmo::tool
