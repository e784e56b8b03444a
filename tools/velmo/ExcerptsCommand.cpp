// Where the words of a query stand in texts and pages, to read.
#include <velmocore/query/Occurrences.h>
#include <velmocore/query/QueryRewriting.h>
#include <velmocore/query/WildcardSearch.h>

#include <memory>
#include <optional>

#include "Commands.h"
#include "Highlight.h"
#include "Input.h"
#include "SearchOptions.h"
#include "Walk.h"

namespace velmo::tool {
namespace {

constexpr std::uint64_t DefaultLength = 300;

struct Options {
    std::string query;
    WalkOptions walk;
    AssemblyOptions assembly = {.comparison = WildcardComparison::CaseInsensitive,
                                .ellipsizeAfterNCharacters = DefaultLength};
    std::optional<std::string> separator;
    bool list = false;
    std::uint64_t enclosingWords = 0;
    bool colors = false;
};

/// Makes and prints the excerpts of one file after the other, on any threads.
class Excerpts {
public:
    explicit Excerpts(const Options& options)
        : options_(options),
          assembly_(options.assembly),
          wildcards_(
              plusWildcards(String::fromUTF8(options.query)).value_or(std::vector<String>())) {
        if (options.separator) assembly_.separator = String::fromUTF8(*options.separator);
    }

    void printSummary(const std::string& file, const String& content, Report& report) const {
        const String summary = assembleOccurrencesOfWildcards(content, wildcards_, assembly_);
        report.noteHit(
            containsAnyWildcard(content, wildcards_, {.comparison = assembly_.comparison}));
        if (report.json)
            report.printObject({{"file", text(file)}, {"summary", text(summary)}});
        else if (!summary.isAbsent())
            report.printLine(colors_.file(file) + ": " + lineOf(summary));
    }

    void printList(const std::string& file, const String& content, Report& report) const {
        const auto records =
            getOccurrencesOfWildcards(content, wildcards_,
                                      {.comparison = assembly_.comparison,
                                       .paragraphs = assembly_.paragraphs,
                                       .minEnclosingWords = options_.enclosingWords});
        report.noteHit(!records.empty());
        if (!report.json) {
            for (const Occurrence& record : records)
                report.printLine(fmt::format("{}:{}: {}", colors_.file(file),
                                             colors_.number(std::to_string(record.line + 1)),
                                             lineOf(record.string)));
            return;
        }
        Json list = Json::array();
        for (const Occurrence& record : records)
            list.push_back({{"range", {record.range.location, record.range.length}},
                            {"line", record.line},
                            {"text", text(record.string)}});
        report.printObject({{"file", text(file)}, {"records", std::move(list)}});
    }

private:
    std::string lineOf(const String& excerpt) const {
        return highlighted(excerpt, wildcards_, assembly_.comparison, colors_);
    }

    const Options& options_;
    AssemblyOptions assembly_;
    const std::vector<String> wildcards_;
    const Colors colors_{options_.colors};
};

void run(Session& session, const Options& options) {
    const Excerpts excerpts(options);
    walkFiles(session, options.walk,
              [&](const std::string& file, const std::string& bytes, Report& report) {
                  const String content = readableText(file, bytes);
                  if (options.list)
                      excerpts.printList(file, content, report);
                  else
                      excerpts.printSummary(file, content, report);
              });
}

}  // namespace

void addExcerptsCommand(CLI::App& app, Session& session) {
    auto options = std::make_shared<Options>();
    AssemblyOptions& assembly = options->assembly;
    CLI::App* command = app.add_subcommand(
        "excerpts",
        "Example: velmo excerpts --length=200 'tea OR cof*' notes.txt page.html\n"
        "         velmo excerpts -r --list --enclosing-words=5 '\"new york\"' letters/\n"
        "Show the sentences that hold the words of a query");
    command->add_option("QUERY", options->query, "words, and patterns with * ? and [sets]")
        ->required();
    addWalkOptions(*command, options->walk);
    command->add_option("--length", assembly.ellipsizeAfterNCharacters,
                        "of a summary, in UTF-16 units; 0 is no limit");
    command->add_flag("--paragraphs", assembly.paragraphs, "whole lines instead of sentences");
    command->add_option("--separator", options->separator, "between sentences; a blank");
    command->add_flag("--single-words", assembly.singleWords,
                      "sentences of nothing but the hit, too");
    command->add_flag("--only-occurrences", assembly.onlyOccurrences,
                      "no summary of a text without a hit");
    addComparisonOption(*command, assembly.comparison);
    command->add_flag("--list", options->list, "every excerpt by itself, with its place");
    command->add_option("--enclosing-words", options->enclosingWords,
                        "at least so many on each side of a hit, for --list");
    addColorOption(*command, options->colors);
    command->add_flag("--json", session.json, "one JSON object a file");
    command->callback([&session, options] { run(session, *options); });
}

}  // namespace velmo::tool
