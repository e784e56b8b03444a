// Which inputs a query holds for. Every input is asked, hit or not, as the exit code and --count
// speak of all of them; only --quiet ends with the first hit.
#include <atomic>
#include <memory>

#include "Commands.h"
#include "QueryOptions.h"
#include "SearchOptions.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

struct Options {
    std::string query;
    InputOptions input;
    QueryParseOptions parse;
    WildcardComparison comparison = WildcardComparison::CaseInsensitive;
    HitOptions hits;
    bool contains = false;
};

void run(Report& report, const Options& options) {
    const Query query = readQuery(report, options.query, options.parse, options.comparison);
    // What is wrong with the query is told before anything of the inputs.
    report.flush();
    // The work runs on several threads, and no lock is worth taking for one number.
    std::atomic<std::size_t> count = 0;
    forEachText(report, options.input, [&](const std::string& file, String&& text, Report& own) {
        const bool matches = options.contains ? query.occursIn(text) : query.holdsFor(text);
        own.noteHit(matches);
        count += matches;
        // For people a hit is the name of its file, so --files-with-matches has nothing to change.
        if (own.json())
            own.printObject(fileObject(file, {{"matches", matches}}));
        else if (matches && !options.hits.countOnly)
            own.printName(file);
    });
    if (options.hits.countOnly) report.printLine(std::to_string(count));
}

}  // namespace

Command makeMatchCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Name the texts and pages for which a query holds",
        .examples = {"velmo match '(cat OR dog) NEAR/5 house' notes.txt page.html",
                     "velmo match -r --comparison=both 'cit[ey]* -bird' letters/",
                     "velmo match -- '-bird' notes.txt"},
        .arguments = {required("QUERY", options->query,
                               "words, patterns, \"phrases\", AND OR XOR NEAR/n NEXT BEFORE AFTER "
                               "OPT, -not, (); see velmo help queries")},
        .run = [options](Report& report) { run(report, *options); },
    };
    command.add(queryParseOptions(options->parse));
    command.add(comparisonOptions(options->comparison));
    command.add({flag("--contains", options->contains, "only ask whether a positive word occurs")});
    command.add(hitOptions(session, options->hits, "only the number of files with a hit"));
    addContentOptions(command, session, options->input);
    command.add({jsonFlag(session, "one JSON object a file, hit or not")});
    return command;
}

}  // namespace velmo::tool
