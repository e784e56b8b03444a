// The main job: pages of folders, each decoded, turned into text and links and asked a query.
#include <velmocore/markup/FileTypes.h>
#include <velmocore/markup/LinkNormalising.h>
#include <velmocore/markup/PageResources.h>
#include <velmocore/markup/PlainText.h>
#include <velmocore/platform/Resources.h>
#include <velmocore/query/Occurrences.h>
#include <velmocore/query/QueryRewriting.h>
#include <velmocore/url/LinkFollowing.h>
#include <velmocore/words/LanguageFilter.h>
#include <velmocore/words/Words.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <set>

#include "Commands.h"
#include "Input.h"
#include "PageLinks.h"
#include "Progress.h"
#include "QueryOptions.h"
#include "Resolving.h"

namespace velmo::tool {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t MostLinkedHosts = 10;
constexpr std::uint64_t ExcerptUnits = 300;

struct Options {
    std::vector<std::string> paths;
    PageOptions page;
    std::string base, query;
    QueryParseOptions parse;
    PageLinkOptions links;
};

/// A file to read, and where it stands under the folder that was named.
struct PageFile {
    fs::path file;
    fs::path relative;
};

struct GatheredPage {
    String title;
    std::string encoding;
    String language;  ///< absent if it is not clear
    std::uint64_t words = 0;
    PageLinks links;
    bool matches = false;
    String excerpt;  ///< absent if there is none
};

struct Summary {
    std::size_t pages = 0, links = 0, distinct = 0, matching = 0;
    std::uint64_t words = 0;
    std::set<String> urls;                ///< the keys of the pages
    std::map<String, std::size_t> hosts;  ///< how many links go there
};

void addFolder(Session& session, const fs::path& folder, std::vector<PageFile>& files) {
    std::error_code error;
    std::vector<PageFile> found;
    fs::recursive_directory_iterator walk(folder, error), end;
    while (!error && walk != end) {
        if (walk->is_regular_file(error) && isHTMLFile(String::fromUTF8(walk->path().string())))
            found.push_back({walk->path(), walk->path().lexically_relative(folder)});
        walk.increment(error);
    }
    if (error) session.fail(folder.string(), error.message());
    std::sort(found.begin(), found.end(),
              [](const PageFile& a, const PageFile& b) { return a.file < b.file; });
    files.insert(files.end(), found.begin(), found.end());
}

/// The pages of folders, sorted, and files as they are named.
std::vector<PageFile> listPages(Session& session, const std::vector<std::string>& paths) {
    std::vector<PageFile> files;
    std::error_code error;
    for (const std::string& path : paths) {
        if (fs::is_directory(path, error))
            addFolder(session, path, files);
        else
            files.push_back({path, fs::path(path).filename()});
    }
    return files;
}

/// Where a page stands on the web, or else on the disk.
URL urlOf(const PageFile& page, const URL& base) {
    if (base.isAbsent()) return URL::fileURLWithPath(String::fromUTF8(page.file.string()));
    return resolve(String::fromUTF8(page.relative.generic_string()), base);
}

/// What pages are asked.
struct PageQuery {
    QueryTerms terms;
    std::vector<String> wildcards;  ///< for the excerpts
    bool isWildcard;

    PageQuery(const String& query, const QueryOptions& options)
        : terms(query, options),
          wildcards(plusWildcards(query).value_or(std::vector<String>())),
          isWildcard(options.wildcard) {}

    bool holdsFor(std::u16string_view text) const {
        return isWildcard ? terms.matchesString(text, WildcardComparison::CaseInsensitive)
                          : terms.matchesString(text, Case::Insensitive);
    }
};

/// The sentences with a hit, on one line.
String excerptOf(const String& text, const PageQuery& query) {
    return singleLine(
        assembleOccurrencesOfWildcards(text, query.wildcards,
                                       {.comparison = WildcardComparison::CaseInsensitive,
                                        .singleWords = true,
                                        .onlyOccurrences = true,
                                        .ellipsizeAfterNCharacters = ExcerptUnits}));
}

const LanguageFilter& languageFilter() {
    static const LanguageFilter filter(velmoResourcesDirectory());
    return filter;
}

GatheredPage gather(const Page& page, const URL& url, const PageQuery& query,
                    const PageLinkOptions& linkOptions) {
    GatheredPage gathered;
    gathered.encoding = page.encoding;
    gathered.title = singleLine(normalizedHtmlString(htmlFramesSet(page.units).title));
    gathered.links = linksOfPage(page.units, url, linkOptions);

    const String text = stringByConvertingHtml2PlainText(page.units);
    gathered.words = numberOfWordsUsingDefaultSeparation(text);
    gathered.language = languageFilter().languageOfText(text);
    gathered.matches = query.holdsFor(text);
    if (gathered.matches) gathered.excerpt = excerptOf(text, query);
    return gathered;
}

void add(Summary& summary, const GatheredPage& page) {
    ++summary.pages;
    summary.words += page.words;
    summary.links += page.links.number;
    summary.matching += page.matches;
    for (const auto& [key, url] : page.links.distinct) {
        if (const String host = url.host(); !host.isEmpty()) ++summary.hosts[host];
        summary.urls.insert(key);
    }
}

Json followedOf(const GatheredPage& page) {
    Json urls = Json::array();
    for (const URL& url : page.links.followed) urls.push_back(text(url.absoluteString()));
    return urls;
}

void printJson(Session& session, const std::string& file, const GatheredPage& page,
               const Options& options) {
    const bool asked = !options.query.empty();
    Json object{{"file", text(file)},
                {"title", text(page.title)},
                {"encoding", page.encoding},
                {"language", text(page.language)},
                {"words", page.words},
                {"links", page.links.number},
                {"distinct", page.links.distinct.size()},
                {"matches", asked ? Json(page.matches) : Json(nullptr)},
                {"excerpt", text(page.excerpt)}};
    if (options.links.follow) object["follow"] = followedOf(page);
    session.printObject(object);
}

void printLines(Session& session, const std::string& file, const GatheredPage& page, bool asked) {
    session.printLine(file);
    session.printLine(fmt::format("  {}", page.title.isEmpty() ? "(no title)" : page.title.utf8()));
    session.printLine(fmt::format("  {}, {}, {} words, {} links, {} distinct{}", page.encoding,
                                  page.language.isAbsent() ? "--" : page.language.utf8(),
                                  page.words, page.links.number, page.links.distinct.size(),
                                  !asked         ? ""
                                  : page.matches ? ", matches"
                                                 : ", no match"));
    if (!page.excerpt.isEmpty()) session.printLine(fmt::format("  > {}", page.excerpt.utf8()));
    for (const URL& url : page.links.followed)
        session.printLine(fmt::format("  -> {}", url.absoluteString().utf8()));
}

void printLines(Session& session, const Summary& summary, bool asked) {
    session.printLine(fmt::format("\n{} pages, {} words, {} links, {} distinct{}", summary.pages,
                                  summary.words, summary.links, summary.urls.size(),
                                  asked ? fmt::format(", {} matching", summary.matching) : ""));
    std::vector<std::pair<String, std::size_t>> hosts(summary.hosts.begin(), summary.hosts.end());
    std::stable_sort(hosts.begin(), hosts.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
    if (hosts.size() > MostLinkedHosts) hosts.resize(MostLinkedHosts);
    if (!hosts.empty()) session.printLine(("most linked hosts:"));
    for (const auto& [host, count] : hosts)
        session.printLine(fmt::format("{:6} {}", count, host.utf8()));
}

void run(Session& session, const Options& options) {
    const bool asked = !options.query.empty();
    const PageQuery query(String::fromUTF8(options.query), options.parse.read());
    const URL base =
        URL::URLWithString(options.base.empty() ? String() : String::fromUTF8(options.base));
    const std::vector<PageFile> files = listPages(session, options.paths);

    Summary summary;
    {
        Progress progress(files.size());
        for (const PageFile& file : files) {
            progress.show(summary.pages);
            const auto bytes = readFile(session, file.file.string());
            if (!bytes) continue;
            const GatheredPage page =
                gather(decodePage(*bytes, options.page), urlOf(file, base), query, options.links);
            add(summary, page);
            progress.hide();
            if (session.json)
                printJson(session, file.file.string(), page, options);
            else
                printLines(session, file.file.string(), page, asked);
        }
    }
    if (asked) session.noteHit(summary.matching > 0);
    if (session.json)
        session.printObject({{"summary",
                              {{"pages", summary.pages},
                               {"words", summary.words},
                               {"links", summary.links},
                               {"distinct", summary.urls.size()},
                               {"matching", summary.matching}}}});
    else
        printLines(session, summary, asked);
}

}  // namespace

void addGatherCommand(CLI::App& app, Session& session) {
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand(
        "gather",
        "Example: velmo gather site/ --base https://example.org/ --query 'cat NEAR dog'\n"
        "Walk folders for pages: titles, charsets, words, links and hits");
    command->add_option("PATH", options->paths, "folders, or pages")->required();
    command->add_option("--base", options->base, "where the folders stand on the web");
    command->add_option("--query", options->query, "what to look for; see velmo match --help");
    addQueryParseOptions(*command, options->parse);
    command->add_flag("--all", options->links.all,
                      "count links that lead to no page, and advertisements, too");
    const std::map<std::string, std::int64_t> modes = {{"none", FollowNothing},
                                                       {"host", FollowSameHost},
                                                       {"folder", FollowSameFolder},
                                                       {"folders", FollowSameFolders},
                                                       {"all", FollowEverything}};
    command
        ->add_option(
            "--follow", options->links.follow,
            "print the links to follow: none, host, folder, folders or all, or a mode's number")
        ->option_text("MODE")
        ->transform(CLI::Transformer(modes, CLI::ignore_case));
    command->add_option("--http-charset", options->page.httpCharset,
                        "the charset that the HTTP headers named");
    command->add_flag("--json", session.json, "one JSON object a page, and one that sums up");
    command->callback([&session, options] { run(session, *options); });
}

}  // namespace velmo::tool
