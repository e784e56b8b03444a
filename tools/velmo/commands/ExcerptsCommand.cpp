// Where the words of a query stand in texts and pages, to read.
#include <memory>
#include <optional>

#include <velmocore/query/Occurrences.h>
#include <velmocore/query/QueryRewriting.h>
#include <velmocore/query/WildcardSearch.h>

#include "Commands.h"
#include "QueryOptions.h"
#include "SearchOptions.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

constexpr std::uint64_t DefaultLength = 300;

struct Options {
    std::string query;
    InputOptions input;
    QueryParseOptions parse;
    AssemblyOptions assembly = {.comparison = WildcardComparison::CaseInsensitive,
                                .ellipsizeAfterNCharacters = DefaultLength};
    std::string separator;
    bool list = false;
    std::uint64_t enclosingWords = 0;
};

/// Makes and prints the excerpts of one file after the other, on any threads.
class Excerpts {
public:
    explicit Excerpts(const Options& options)
        : options_(options),
          assembly_(options.assembly),
          wildcards_(
              plusWildcards(String::fromUTF8(options.query)).value_or(std::vector<String>())) {
        if (!options.separator.empty()) assembly_.separator = String::fromUTF8(options.separator);
    }

    void printSummary(const std::string& file, const String& text, Report& report) const {
        const String summary = assembleOccurrencesOfWildcards(text, wildcards_, assembly_);
        report.noteHit(containsAnyWildcard(text, wildcards_, {.comparison = assembly_.comparison}));
        if (report.json()) return report.printObject(fileObject(file, {{"summary", summary}}));
        if (summary.isAbsent()) return;
        Line line = report.line();
        addExcerpt(line.add(Line::Color::File, file).add(": "), summary);
        report.printLine(line);
    }

    void printList(const std::string& file, const String& text, Report& report) const {
        const auto records =
            getOccurrencesOfWildcards(text, wildcards_,
                                      {.comparison = assembly_.comparison,
                                       .paragraphs = assembly_.paragraphs,
                                       .minEnclosingWords = options_.enclosingWords});
        report.noteHit(!records.empty());
        if (report.json())
            return report.printObject(fileObject(file, {{"records", valuesOf(records)}}));
        for (const Occurrence& record : records) {
            Line line = report.line();
            line.add(Line::Color::File, file).add(":");
            line.add(Line::Color::Number, std::to_string(record.line + 1)).add(": ");
            addExcerpt(line, record.string);
            report.printLine(line);
        }
    }

private:
    static JsonArray valuesOf(const std::vector<Occurrence>& records) {
        JsonArray values;
        for (const Occurrence& record : records)
            values.push_back(
                JsonObject{{"range", JsonArray{record.range.location, record.range.length}},
                           {"line", record.line},
                           {"text", record.string}});
        return values;
    }

    void addExcerpt(Line& line, const String& excerpt) const {
        std::vector<Range> hits;
        forEachWildcard(excerpt, wildcards_,
                        [&](Range hit) {
                            hits.push_back(hit);
                            return true;
                        },
                        {.comparison = assembly_.comparison});
        addHighlighted(line, excerpt, hits);
    }

    const Options& options_;
    AssemblyOptions assembly_;
    const std::vector<String> wildcards_;
};

void run(Report& report, const Options& options) {
    readQuery(report, options.query, options.parse, WildcardComparison::CaseInsensitive);
    report.flush();
    const Excerpts excerpts(options);
    forEachText(report, options.input, [&](const std::string& file, String&& text, Report& own) {
        if (options.list)
            excerpts.printList(file, text, own);
        else
            excerpts.printSummary(file, text, own);
    });
}

}  // namespace

Command makeExcerptsCommand(Session& session) {
    auto options = std::make_shared<Options>();
    AssemblyOptions& assembly = options->assembly;
    Command command = {
        .summary = "Show the sentences that hold the words of a query",
        .examples = {"velmo excerpts --length=200 'tea OR cof*' notes.txt page.html",
                     "velmo excerpts -r --list --enclosing-words=5 '\"new york\"' letters/"},
        .arguments = {required("QUERY", options->query,
                               "words, and patterns with * ? and [sets]; see velmo help query")},
        .run = [options](Report& report) { run(report, *options); },
    };
    command.add({
        number("--length", "N", assembly.ellipsizeAfterNCharacters,
               "of a summary, in UTF-16 units; 0 is no limit"),
        flag("--paragraphs", assembly.paragraphs, "whole lines instead of sentences"),
        text("--separator", "TEXT", options->separator, "between sentences; a space"),
        flag("--single-words", assembly.singleWords, "sentences of nothing but the hit, too"),
        flag("--only-occurrences", assembly.onlyOccurrences, "no summary of a text without a hit"),
        flag("--list", options->list, "every excerpt by itself, with its place"),
        number("--enclosing-words", "N", options->enclosingWords,
               "at least so many on each side of a hit, for --list"),
    });
    command.add(queryParseOptions(options->parse));
    command.add(comparisonOptions(assembly.comparison));
    addContentOptions(command, session, options->input);
    command.add({colorOption(session), jsonFlag(session, "one JSON object a file")});
    return command;
}

}  // namespace velmo::tool
