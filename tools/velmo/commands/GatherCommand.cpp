// The main job: pages of folders, each decoded, turned into text and links and asked a query.
#include <fmt/core.h>

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <set>

#include <velmocore/feeds/FeedItems.h>
#include <velmocore/feeds/FeedRendering.h>
#include <velmocore/gather/FolderSource.h>
#include <velmocore/markup/LinkNormalising.h>
#include <velmocore/markup/LinkThumbnails.h>
#include <velmocore/markup/Links.h>
#include <velmocore/markup/Page.h>
#include <velmocore/markup/PageResources.h>
#include <velmocore/markup/PlainText.h>
#include <velmocore/platform/Resources.h>
#include <velmocore/query/Occurrences.h>
#include <velmocore/url/LinkFollowing.h>
#include <velmocore/url/URLConstruction.h>
#include <velmocore/words/Words.h>

#include "Commands.h"
#include "GatherRun.h"
#include "LanguageLists.h"
#include "PageLinks.h"
#include "ParsedDate.h"
#include "QueryOptions.h"
#include "SearchOptions.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

constexpr std::size_t MostLinkedHosts = 10;
constexpr std::uint64_t ExcerptUnits = 300;

struct Options {
    InputOptions input;
    std::string base, query;
    GatherRun stored;  ///< what is to be done with --store and --lines
    bool lines = false;
    QueryParseOptions parse;
    WildcardComparison comparison = WildcardComparison::CaseInsensitive;
    PageLinkOptions links;
};

struct GatheredPage {
    String title;
    String author, date, canonical;  ///< absent if it does not tell
    std::size_t thumbnails = 0;      ///< links that have one
    bool isErrorPage = false, isFeed = false;
    std::string encoding;
    String language;  ///< absent if it is not clear
    std::uint64_t words = 0;
    PageLinks links;
    bool matches = false;
    String excerpt;  ///< absent if there is none
};

/// All pages together; any thread may add one.
class Summary {
public:
    void add(const GatheredPage& page) {
        const std::scoped_lock lock(mutex_);
        ++pages;
        words += page.words;
        links += page.links.number;
        matching += page.matches;
        for (const auto& [key, url] : page.links.distinct) {
            if (const String host = url.host(); !host.isEmpty()) ++hosts[host];
            urls.insert(key);
        }
    }

    std::size_t pages = 0, links = 0, matching = 0;
    std::uint64_t words = 0;
    std::set<String> urls;                ///< the keys of the pages that are linked
    std::map<String, std::size_t> hosts;  ///< how many links go there

private:
    std::mutex mutex_;
};

/// Where a page stands on the web, or else on the disk.
URL urlOf(const FileName& file, const URL& base) {
    return urlOfFile(file.path,
                     file.wasNamed() ? file.path.substr(0, file.path.rfind('/') + 1) : file.folder,
                     base);
}

/// Gathers one page after the other, on any threads.
class Gatherer {
public:
    Gatherer(const Options& options, const URL& base, const Query& query,
             const LanguageFilter& languages)
        : options_(options),
          web_(options.input.content.web),
          base_(base),
          query_(query),
          languages_(languages) {}

    GatheredPage gather(const FileName& file, Content&& content) const {
        GatheredPage page;
        page.encoding = content.encoding;
        const String text = content.kind == Kind::Page
                                ? readInto(page, pageOf(std::move(content), urlOf(file, base_)))
                                : content.units;
        page.words = numberOfWordsUsingDefaultSeparation(text);
        page.language = languages_.languageOfText(text);
        page.matches = query_.holdsFor(text);
        if (page.matches) page.excerpt = excerptOf(text);
        return page;
    }

private:
    Page pageOf(Content&& content, const URL& url) const {
        return content.utf8.empty() ? Page::pageWithString(content.units, url, web_)
                                    : Page::pageWithUTF8(std::move(content.utf8), url, web_);
    }

    // Each gives the text of what it has read, and forgets the page.

    String readInto(GatheredPage& page, const Page& whole) const {
        return whole.isFeed() ? readFeedInto(page, whole) : readPageInto(page, whole);
    }

    String readPageInto(GatheredPage& page, const Page& whole) const {
        const HtmlMetadata& metadata = whole.metadata();
        page.title = titleOf(whole);
        page.author = singleLine(normalizedHtmlString(metadata.author, web_));
        page.date = singleLine(normalizedHtmlString(metadata.date, web_));
        page.canonical = whole.canonicalURL().absoluteString();
        page.isErrorPage = whole.isErrorPage();
        const HtmlLinks found = whole.unresolvedLinks();
        page.links = linksOfPage(found.links, found.baseURL, whole.url(), options_.links);
        page.thumbnails = thumbnailsOf(whole, found.baseURL);
        return whole.plainText();
    }

    /// Of several titles the described rules take the last.
    String titleOf(const Page& page) const {
        return web_.rawText ? singleLine(page.title())
                            : singleLine(normalizedHtmlString(htmlFramesSet(page.markup()).title));
    }

    /// How many links have one.
    std::size_t thumbnailsOf(const Page& page, const URL& named) const {
        return page
            .linkThumbnails({.baseURL = named.isAbsent() ? page.url() : named,
                             .resolve = true,
                             .titles = false,
                             .texts = false})
            .thumbnails.size();
    }

    String readFeedInto(GatheredPage& page, const Page& whole) const {
        const Feed feed =
            readFeed(whole.markup(), {.baseURL = whole.url(), .boundCData = true, .web = web_});
        page.isFeed = true;
        page.title = singleLine(feed.title);
        std::vector<String> links;
        for (const FeedItem& item : feed.items)
            if (!item.link.isEmpty()) links.push_back(item.link);
        page.links = linksOfPage(links, {}, whole.url(), options_.links);
        return stringByConvertingHtml2PlainText(
            stringByConvertingItemsToSearchableHTML(feed.items, web_), {.web = web_});
    }

    /// The sentences with a hit, on one line.
    String excerptOf(const String& text) const {
        return singleLine(assembleOccurrencesOfHits(text, query_.hitsIn(text),
                                                    {.singleWords = true,
                                                     .onlyOccurrences = true,
                                                     .ellipsizeAfterNCharacters = ExcerptUnits,
                                                     .gapSeparator = u" ... ",
                                                     .strictSentenceEnds = true,
                                                     .keepsPairs = true,
                                                     .withinRuns = !options_.parse.wholeWords}));
    }

    const Options& options_;
    const WebRules& web_;
    const URL& base_;
    const Query& query_;
    const LanguageFilter& languages_;
};

void printObject(const std::string& file, const GatheredPage& page, const Options& options,
                 Report& report) {
    JsonObject object =
        fileObject(file, {{"title", page.title},
                          {"charset", page.encoding},
                          {"language", page.language},
                          {"words", page.words},
                          {"links", page.links.number},
                          {"distinct", page.links.distinct.size()},
                          {"matches", options.query.empty() ? Json() : Json(page.matches)},
                          {"excerpt", page.excerpt},
                          {"author", page.author},
                          {"date", page.date},
                          {"parsedDate", parsedDate(page.date)},
                          {"canonical", page.canonical},
                          {"thumbnails", page.thumbnails},
                          {"errorPage", page.isErrorPage},
                          {"feed", page.isFeed}});
    if (options.links.follow) {
        JsonArray urls;
        for (const URL& url : page.links.followed) urls.push_back(url.absoluteString());
        object.push_back({"follow", std::move(urls)});
    }
    report.printObject(object);
}

/// What a page tells of itself beside its title, on one line.
std::string detailsOf(const GatheredPage& page) {
    std::string details;
    const auto add = [&](const std::string& detail) {
        if (detail.empty()) return;
        if (!details.empty()) details += ", ";
        details += detail;
    };
    if (page.isErrorPage) add("an error page");
    if (page.isFeed) add("a feed");
    if (!page.author.isEmpty()) add("by " + page.author.utf8());
    const String date = parsedDate(page.date);
    add((date.isAbsent() ? page.date : date).utf8());
    if (page.thumbnails > 0) add(fmt::format("{} thumbnails", page.thumbnails));
    add(page.canonical.utf8());
    return details;
}

void printLines(const std::string& file, const GatheredPage& page, bool asked, Report& report) {
    report.printLine(report.line().add(Line::Color::File, file));
    report.printLine("  " + (page.title.isEmpty() ? "(no title)" : page.title.utf8()));
    report.printLine(fmt::format("  {}, {}, {} words, {} links, {} distinct{}", page.encoding,
                                 page.language.isAbsent() ? "--" : page.language.utf8(), page.words,
                                 page.links.number, page.links.distinct.size(),
                                 !asked         ? ""
                                 : page.matches ? ", matches"
                                                : ", no match"));
    if (const std::string more = detailsOf(page); !more.empty()) report.printLine("  " + more);
    if (!page.excerpt.isEmpty()) report.printLine("  > " + page.excerpt.utf8());
    for (const URL& url : page.links.followed)
        report.printLine("  -> " + url.absoluteString().utf8());
}

void printObject(const Summary& summary, Report& report) {
    report.printObject({{"summary", JsonObject{{"pages", summary.pages},
                                               {"words", summary.words},
                                               {"links", summary.links},
                                               {"distinct", summary.urls.size()},
                                               {"matching", summary.matching}}}});
}

void printLines(const Summary& summary, bool asked, Report& report) {
    report.printLine(fmt::format("\n{} pages, {} words, {} links, {} distinct{}", summary.pages,
                                 summary.words, summary.links, summary.urls.size(),
                                 asked ? fmt::format(", {} matching", summary.matching) : ""));
    std::vector<std::pair<String, std::size_t>> hosts(summary.hosts.begin(), summary.hosts.end());
    std::ranges::stable_sort(hosts, std::greater(), [](const auto& host) { return host.second; });
    if (hosts.size() > MostLinkedHosts) hosts.resize(MostLinkedHosts);
    if (!hosts.empty()) report.printLine("most linked hosts:");
    for (const auto& [host, count] : hosts)
        report.printLine(fmt::format("{:6} {}", count, host.utf8()));
}

/// The ways that keep pages or hand them on.
void runStored(Report& report, const Options& options, const URL& base, const Query* query) {
    GatherRun run = options.stored;
    run.input = options.input;
    run.base = base;
    run.query = query;
    // A page of the web is held to less than a file of one's own, if nothing is said.
    if (const std::uint64_t limit = options.input.content.limit; limit != UsualLimit)
        run.sites.options.pageBytes = static_cast<std::size_t>(std::min(limit, UsualLimit));
    run.sites.options.follow = options.links.follow.value_or(FollowSameHost);
    options.lines ? gatherLines(report, run) : gatherIntoStore(report, run);
}

void run(Report& report, Options& options) {
    const bool asked = !options.query.empty();
    const URL base = URLWithNormalizedStringURL(String::fromUTF8(options.base));
    if (base.isAbsent() && !options.base.empty()) return report.fail(options.base, "not a URL");
    const bool readsAsToday = options.input.content.web.charsets;
    const Query query =
        asked ? readQuery(report, options.query, options.parse, options.comparison) : Query();
    if (options.lines || !options.stored.store.empty())
        return runStored(report, options, base, asked ? &query : nullptr);
    if (options.stored.sites.isAsked)
        throw UsageError("sites are gathered into a store: --store is missing");
    const LanguageFilter languages =
        readsAsToday ? readLanguageFilterOfToday(report, velmoResourcesDirectory())
                     : readLanguageFilter(report, velmoResourcesDirectory());
    report.flush();
    options.links.web = options.input.content.web;
    options.input.content.keepsUTF8 = true;
    const Gatherer gatherer(options, base, query, languages);
    Summary summary;
    forEachContent(
        report, options.input, [&](const FileName& file, Content&& content, Report& own) {
            if (content.kind == Kind::Text && options.input.content.forced == Kind::Unclear) return;
            const GatheredPage page = gatherer.gather(file, std::move(content));
            summary.add(page);
            if (own.json())
                printObject(file.path, page, options, own);
            else
                printLines(file.path, page, asked, own);
        });
    if (summary.pages == 0) report.warn("gather", "no page found");
    if (asked || summary.pages == 0) report.noteHit(summary.matching > 0);
    if (report.json())
        printObject(summary, report);
    else
        printLines(summary, asked, report);
}

Option followOption(PageLinkOptions& links) {
    return {
        .names = "--follow",
        .value = "MODE",
        .help =
            "print the links to follow, or of a site follow them: none, host, folder, folders "
            "or all, or a mode's number",
        .take =
            [&links](const std::string& given) {
                constexpr std::string_view Names[] = {"none", "host", "folder", "folders", "all"};
                constexpr std::int64_t Modes[] = {FollowNothing, FollowSameHost, FollowSameFolder,
                                                  FollowSameFolders, FollowEverything};
                std::string name = given;
                std::ranges::transform(name, name.begin(), [](unsigned char c) {
                    return static_cast<char>(std::tolower(c));
                });
                if (const auto isDigit = [](unsigned char c) { return std::isdigit(c) != 0; };
                    std::ranges::all_of(name, isDigit)) {
                    std::uint64_t mode = 0;
                    number("--follow", "MODE", mode, "").take(name);
                    links.follow = static_cast<std::int64_t>(mode);
                } else {
                    links.follow = Modes[indexOfName(name, Names)];
                }
            },
        .choices = {"none", "host", "folder", "folders", "all"}};
}

}  // namespace

Command makeGatherCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Walk folders for pages and feeds: titles, dates, words, links and hits",
        .examples = {"velmo gather site/ --base https://example.org/ --query 'cat NEAR dog'",
                     "velmo gather site/ --base https://example.org/ --store pages.store",
                     "velmo gather https://www.example.org/ --depth 2 --store pages.store"},
        .run = [options](Report& report) { run(report, *options); },
    };
    options->input.names.recursive = true;
    options->input.content.web = WebRules::today();
    command.add({
        text("--base", "URL", options->base, "where the folders stand on the web"),
        text("--query", "QUERY", options->query, "what to look for; see velmo help queries"),
        flag("--all", options->links.all,
             "count links that lead to no page, and advertisements, too"),
        followOption(options->links),
        {.names = "--described",
         .value = {},
         .help = "read pages by the library's own rules, not as browsers of today do",
         .take = [options =
                      options.get()](const auto&) { options->input.content.web = WebRules(); }},
        text("--store", "STORE", options->stored.store,
             "put the pages into a store, also those of archives, feeds and JSON lines"),
        flag("--lines", options->lines,
             "read JSON lines of pages, and print a JSON object of each"),
        number("-n,--limit", "N", options->stored.limit,
               "keep no more pages than that in this run; for --store and --lines"),
        text("--language", "KEY", options->stored.language, "keep only pages in a language"),
        flag("--keep-pages", options->stored.keepPages, "keep in the store what pages came as too"),
        flag("--compress", options->stored.compress,
             "compress texts in the store too: half the room, read in three times the time"),
    });
    command.add(siteOptions(options->stored.sites));
    command.add(queryParseOptions(options->parse));
    command.add(comparisonOptions(options->comparison));
    addContentOptions(command, session, options->input, Kind::Page);
    // A page of a site is held to less, if nothing is said; see runStored().
    for (Option& option : command.options)
        if (option.names == "--max-size")
            option.help += fmt::format(", or that a page of a site has (default there: {})",
                                       SiteOptions().pageBytes);
    command.add(
        {colorOption(session), jsonFlag(session, "one JSON object a page, and one that sums up")});
    return command;
}

}  // namespace velmo::tool
