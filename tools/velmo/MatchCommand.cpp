#include <velmocore/query/QueryEvaluation.h>
#include <velmocore/query/QueryTerms.h>

#include <memory>

#include "Commands.h"
#include "Input.h"
#include "QueryOptions.h"
#include "SearchOptions.h"
#include "Walk.h"

namespace velmo::tool {
namespace {

struct Options {
    std::string query;
    WalkOptions walk;
    QueryParseOptions parse;
    WildcardComparison comparison = WildcardComparison::CaseInsensitive;
    bool caseSensitive = false;
    bool contains = false;
    bool filesWithMatches = false;
};

/// Plain words know no other comparison than by case.
bool isForWildcards(WildcardComparison comparison) {
    return (comparison & WildcardComparison::DiacriticsInsensitive) != WildcardComparison::Exact ||
           isFuzzy(comparison);
}

template <class Comparison>
bool holds(const QueryTerms& terms, std::u16string_view text, bool contains,
           Comparison comparison) {
    return contains ? terms.containsString(text, comparison)
                    : terms.matchesString(text, comparison);
}

void run(Session& session, const Options& options) {
    const QueryTerms terms(String::fromUTF8(options.query), options.parse.read());
    const WildcardComparison comparison =
        options.caseSensitive ? WildcardComparison::Exact : options.comparison;
    if (isForWildcards(comparison) && !options.parse.wildcard)
        throw CLI::ValidationError("--comparison", "diacritics, both and fuzzy need --wildcard");
    walkFiles(session, options.walk,
              [&](const std::string& file, const std::string& bytes, Report& report) {
                  const String content = readableText(file, bytes);
                  const bool matches =
                      options.parse.wildcard
                          ? holds(terms, content, options.contains, comparison)
                          : holds(terms, content, options.contains, letterCaseOf(comparison));
                  report.noteHit(matches);
                  if (report.json)
                      report.printObject({{"file", text(file)}, {"matches", matches}});
                  else if (matches)
                      report.printLine(file);
              });
}

}  // namespace

void addMatchCommand(CLI::App& app, Session& session) {
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand(
        "match",
        "Example: velmo match '(cat OR dog) NEAR/5 house' notes.txt page.html\n"
        "         velmo match -r --wildcard --comparison=both 'cit[ey]* -bird' letters/\n"
        "         velmo match -- '-bird' notes.txt    (-- before a query that begins with -)\n"
        "Name the texts and pages for which a query holds");
    command
        ->add_option("QUERY", options->query,
                     "words, \"phrases\", AND OR XOR NEAR/n NEXT BEFORE AFTER OPT, -not, ()")
        ->required();
    addWalkOptions(*command, options->walk);
    addQueryParseOptions(*command, options->parse);
    CLI::Option* comparison = addComparisonOption(*command, options->comparison);
    command->add_flag("--case-sensitive", options->caseSensitive, "the same as --comparison=exact")
        ->excludes(comparison);
    command->add_flag("--contains", options->contains, "only ask whether a positive word occurs");
    CLI::Option* names = command->add_flag("-l,--files-with-matches", options->filesWithMatches,
                                           "the names of the files with a hit: what is printed "
                                           "without --json");
    command->add_flag("--json", session.json, "one JSON object a file, hit or not")
        ->excludes(names);
    command->callback([&session, options] { run(session, *options); });
}

}  // namespace velmo::tool
