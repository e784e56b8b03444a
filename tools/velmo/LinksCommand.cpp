#include <velmocore/markup/Links.h>
#include <velmocore/markup/PageResources.h>

#include <memory>

#include "Commands.h"
#include "Input.h"
#include "Resolving.h"

namespace velmo::tool {
namespace {

enum class Kind { Links, Frames, Images, Scripts, Media };

struct Options {
    std::vector<std::string> files;
    PageOptions page;
    std::string base, containing;
    bool noFollow = false;
    Kind kind = Kind::Links;
};

struct Found {
    std::vector<String> links;
    URL base;  ///< of the page's base tag
};

std::vector<String> listOf(const std::set<String>& set) { return {set.begin(), set.end()}; }

Found find(const String& page, const Options& options) {
    const String containing = String::fromUTF8(options.containing);
    HtmlLinks found =
        htmlLinks(page, {.containing = containing, .useRelNoFollow = options.noFollow});
    switch (options.kind) {
        case Kind::Links:
            break;
        case Kind::Frames:
            found.links = listOf(htmlLinksAndFramesSet(page).references);
            break;
        case Kind::Images:
            found.links = listOf(htmlImages(page));
            break;
        case Kind::Scripts:
            found.links = listOf(htmlStylesheetsAndScripts(page));
            break;
        case Kind::Media:
            found.links = listOf(htmlEmbeddedObjects(page));
            break;
    }
    return {std::move(found.links), std::move(found.baseURL)};
}

/// The page's own base goes before the one that was given.
std::vector<URL> resolveAll(const Found& found, const std::string& base) {
    const URL baseURL =
        found.base.isAbsent() ? URL::URLWithString(String::fromUTF8(base)) : found.base;
    std::vector<URL> resolved;
    for (const String& link : found.links) resolved.push_back(resolve(link, baseURL));
    return resolved;
}

void printLines(Session& session, const Found& found, const std::vector<URL>& resolved) {
    for (std::size_t i = 0; i < found.links.size(); ++i)
        session.printLine(i < resolved.size() && !resolved[i].isAbsent()
                              ? resolved[i].absoluteString().utf8()
                              : found.links[i].utf8());
}

void printJson(Session& session, const std::string& file, const Found& found,
               const std::vector<URL>& resolved, bool wantsResolved) {
    Json object{{"file", text(file)}, {"base", text(found.base.absoluteString())}};
    object["links"] = Json::array();
    for (const String& link : found.links) object["links"].push_back(text(link));
    if (wantsResolved) {
        object["resolved"] = Json::array();
        for (const URL& url : resolved) object["resolved"].push_back(text(url.absoluteString()));
    }
    session.printObject(object);
}

void run(Session& session, const Options& options) {
    forEachFile(session, options.files, [&](const std::string& file, const std::string& bytes) {
        const Found found = find(decodePage(bytes, options.page).units, options);
        const bool wantsResolved = !options.base.empty();
        const std::vector<URL> resolved =
            wantsResolved ? resolveAll(found, options.base) : std::vector<URL>();
        if (session.json)
            printJson(session, file, found, resolved, wantsResolved);
        else
            printLines(session, found, resolved);
    });
}

}  // namespace

void addLinksCommand(CLI::App& app, Session& session) {
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand(
        "links",
        "Example: velmo links --base https://example.org/page.html --json page.html\n"
        "Print what pages point at, normalised");
    command->add_option("FILE", options->files, "pages")->required();
    command->add_option("--base", options->base, "the URL of the pages; resolves the links");
    command->add_option("--containing", options->containing, "only links whose text contains this");
    command->add_flag("--nofollow", options->noFollow, "leave out links with rel=nofollow");
    CLI::Option_group* kinds = command->add_option_group("kinds", "Another set instead, sorted");
    const auto addKind = [&](const char* name, Kind kind, const char* description) {
        kinds->add_flag_callback(
            name, [options, kind] { options->kind = kind; }, description);
    };
    addKind("--frames", Kind::Frames, "links and frames");
    addKind("--images", Kind::Images, "images and icons");
    addKind("--scripts", Kind::Scripts, "scripts and style sheets");
    addKind("--media", Kind::Media, "objects, audio and video");
    kinds->require_option(0, 1);
    command->add_option("--http-charset", options->page.httpCharset,
                        "the charset that the HTTP header named");
    command->add_flag("--json", session.json, "one JSON object a page");
    command->callback([&session, options] { run(session, *options); });
}

}  // namespace velmo::tool
