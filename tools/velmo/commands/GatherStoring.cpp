// Pages into a store, each told as it comes. A run that is ended, by whatever, leaves a store from
// which the next one goes on: what stands there already is told as unchanged.
#include <fmt/core.h>

#include <csignal>

#include <velmocore/platform/Log.h>
#include <velmocore/platform/Resources.h>

#include "GatherRun.h"
#include "LanguageLists.h"

namespace velmo::tool {
namespace {

volatile std::sig_atomic_t isInterrupted = 0;

/// The first one ends the run where a page ends, the second one at once.
void endOnInterrupt() {
    struct sigaction action = {};
    action.sa_handler = [](int) { isInterrupted = 1; };
    action.sa_flags = SA_RESETHAND;
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
}

std::string_view resultOf(const GatheredPage& page) {
    if (page.error) return "failed";
    if (!page.stored) return "left out";
    switch (*page.stored) {
        case PutResult::Added:
            return "added";
        case PutResult::Replaced:
            return "replaced";
        case PutResult::Unchanged:
            return "unchanged";
        case PutResult::Duplicate:
            return "duplicate";
        case PutResult::Failed:
            break;
    }
    return "failed";
}

/// How far it is: "1200 pages, 34 of 120 MB, 310 a second, 0:42 left".
class Progress {
public:
    void show(Console& console, const PageSource& source) {
        ++pages_;
        console.showProgress([&] { return words(source.progress()); });
    }

private:
    std::string words(const SourceProgress& progress) const {
        const auto now = std::chrono::steady_clock::now();
        const double seconds = std::chrono::duration<double>(now - start_).count();
        std::string words = fmt::format("{} pages, {:.0f} a second", pages_,
                                        seconds > 0 ? static_cast<double>(pages_) / seconds : 0);
        if (progress.total == 0 || progress.done == 0 || progress.done > progress.total)
            return words;
        const double part =
            static_cast<double>(progress.done) / static_cast<double>(progress.total);
        const auto left = static_cast<std::uint64_t>(seconds / part - seconds);
        return words + fmt::format(", {:.0f} %, {}:{:02} left", part * 100, left / 60, left % 60);
    }

    std::size_t pages_ = 0;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

void printObject(const GatheredPage& page, Report& report) {
    const PageRecord& record = page.record;
    JsonObject object = {{"url", record.url.absoluteString()},
                         {"key", record.key},
                         {"result", resultOf(page)},
                         {"duplicateOf", page.duplicateOf},
                         {"title", record.title},
                         {"language", record.language},
                         {"words", record.words},
                         {"links", record.links.size()}};
    if (page.error)
        object = {{"name", page.name}, {"result", "failed"}, {"error", page.error->text}};
    report.printObject(std::move(object));
}

void printLine(const GatheredPage& page, Report& report) {
    Line line = report.line();
    line.add(Line::Color::Number, fmt::format("{:10}", resultOf(page)));
    line.add(page.record.url.absoluteString().utf8());
    if (!page.duplicateOf.isAbsent()) line.add(" of " + page.duplicateOf.utf8());
    report.printLine(line);
}

void tell(const GatheredPage& page, Report& report) {
    if (page.error) report.fail(page.name.utf8(), page.error->text.utf8());
    if (report.json())
        printObject(page, report);
    else if (!page.error)
        printLine(page, report);
    report.flush();
}

JsonObject membersOf(const GatherSummary& summary, std::size_t pages) {
    return {{"pages", summary.pages},           {"added", summary.added},
            {"replaced", summary.replaced},     {"unchanged", summary.unchanged},
            {"duplicates", summary.duplicates}, {"leftOut", summary.leftOut},
            {"failed", summary.failed},         {"stored", pages}};
}

void printSummary(const GatherSummary& summary, std::size_t pages, const GatherSites& sites,
                  Report& report) {
    const bool hasSites = !sites.starts.empty();
    if (report.json()) {
        JsonObject object = membersOf(summary, pages);
        if (hasSites) object.push_back({"sites", objectOf(sites.counts)});
        return report.printObject({{"summary", std::move(object)}});
    }
    report.printLine(fmt::format(
        "\n{} pages: {} added, {} replaced, {} unchanged, {} duplicates, {} left out, {} failed; "
        "{} in the store",
        summary.pages, summary.added, summary.replaced, summary.unchanged, summary.duplicates,
        summary.leftOut, summary.failed, pages));
    if (hasSites) report.printLine(wordsOf(sites.counts));
}

}  // namespace

void gatherIntoStore(Report& report, GatherRun& run) {
    Error error;
    PageStore store = PageStore::openForUpdating(run.store, &error);
    if (!store.isValid()) return report.fail(run.store, error.reason.utf8());
    const LanguageFilter languages = readLanguageFilterOfToday(report, velmoResourcesDirectory());
    // That a page has a date which is none is its own matter, and not of who gathers thousands.
    setLogHandler([](std::string_view) {});
    endOnInterrupt();
    std::unique_ptr<PageSource> source = sourceOf(report.session(), run, &store);
    GatherOptions options = run.options(languages);
    options.store = &store;
    options.shouldStop = [] { return isInterrupted != 0; };
    Progress progress;
    const GatherSummary summary = gatherPages(*source, options, [&](GatheredPage& page) {
        tell(page, report);
        progress.show(report.session().console, *source);
        return true;
    });
    source.reset();  // what a crawl counted is known then
    printSummary(summary, store.numberOfPages(), run.sites, report);
    if (!summary.isStored) report.fail(run.store, "cannot be written");
    if (isInterrupted != 0) report.fail("gather", "interrupted; what was gathered is stored");
    if (run.query != nullptr) report.noteHit(summary.pages > summary.leftOut);
}

}  // namespace velmo::tool
