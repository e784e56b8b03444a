// What stands around the words that make a query hold, to read. The library finds and cuts; here
// is decided of which texts and which hits, and where the hits stand in what is printed.
#include <algorithm>
#include <atomic>
#include <memory>

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
    std::string query, separator;
    InputOptions input;
    QueryParseOptions parse;
    WildcardComparison comparison = WildcardComparison::CaseInsensitive;
    bool anyWord = false, beginning = false, described = false, onlyOccurrences = false;
    bool paragraphs = false, singleWords = false, list = false;
    HitOptions hits;
    std::uint64_t length = DefaultLength, enclosingWords = 0;
};

/// A text that is printed, and the hits in it.
struct Excerpt {
    String text;
    std::vector<Range> hits = {};
};

/// A record's text begins with dots if it crossed a boundary.
Excerpt excerptOf(const Occurrence& record, std::u16string_view text, std::span<const Range> hits) {
    const std::size_t start =
        record.string.view().find(text.substr(record.range.location, record.range.length));
    if (start == std::u16string_view::npos) return {.text = record.string};
    return {record.string, hitsInSummary({record.string, {{record.range, start}}}, hits)};
}

/// Makes and prints the excerpts of one file after the other, on any threads.
class Excerpts {
public:
    Excerpts(const Options& options, const Query& query)
        : options_(options),
          query_(query),
          wildcards_(plusWildcards(query.text).value_or(std::vector<String>())) {}

    /// Whether there is anything to show; the first hit is enough for that.
    bool isHit(const String& text) const {
        if (!byWords()) return query_.holdsFor(text);
        return forEachWildcard(
                   text, wildcards_, [](Range) { return false; }, searchOptions()) > 0;
    }

    void print(const std::string& file, const String& text, Report& report) const {
        const bool matches = query_.holdsFor(text);
        const std::vector<Range> hits = byWords() ? hitsOfWords(text) : query_.hitsIn(text);
        report.noteHit(byWords() ? !hits.empty() : matches);
        JsonObject object = fileObject(file, {{"matches", matches}});
        if (options_.list)
            printList(file, text, hits, std::move(object), report);
        else
            printSummary(file, text, hits, std::move(object), report);
    }

private:
    /// Whether all positive words count, and not only what makes the query hold.
    bool byWords() const { return options_.anyWord || options_.described; }

    std::vector<Range> hitsOfWords(std::u16string_view text) const {
        std::vector<Range> hits;
        forEachWildcard(
            text, wildcards_,
            [&](Range hit) {
                hits.push_back(hit);
                return true;
            },
            searchOptions());
        return hits;
    }

    bool withinRuns() const { return !options_.parse.wholeWords; }
    WildcardSearchOptions searchOptions() const {
        return {.comparison = query_.comparison, .withinRuns = withinRuns()};
    }

    std::vector<Occurrence> recordsOf(std::u16string_view text, std::span<const Range> hits,
                                      std::size_t enclosingWords) const {
        return getOccurrencesOfHits(text, hits,
                                    {.paragraphs = options_.paragraphs,
                                     .minEnclosingWords = enclosingWords,
                                     .strictSentenceEnds = !options_.described,
                                     .withinRuns = withinRuns()});
    }

    Excerpt summaryOf(const String& text, std::span<const Range> hits, bool isForPeople) const {
        AssemblyOptions options = {
            .comparison = query_.comparison,
            .paragraphs = options_.paragraphs,
            .singleWords = options_.singleWords,
            .onlyOccurrences = options_.described ? options_.onlyOccurrences : !options_.beginning,
            .ellipsizeAfterNCharacters = options_.length,
            .withinRuns = withinRuns()};
        if (!options_.separator.empty()) options.separator = String::fromUTF8(options_.separator);
        if (!options_.described) {
            options.gapSeparator = isForPeople ? u" \u2026 " : u" ... ";
            options.strictSentenceEnds = options.keepsPairs = true;
        }
        const Summary summary = options_.described ? summaryOfWildcards(text, wildcards_, options)
                                                   : summaryOfHits(text, hits, options);
        return {summary.string, hitsInSummary(summary, hits)};
    }

    static JsonArray valuesOf(std::span<const Range> hits) {
        JsonArray values;
        for (const Range& hit : hits) values.push_back(JsonArray{hit.location, hit.length});
        return values;
    }

    void printSummary(const std::string& file, const String& text, std::span<const Range> hits,
                      JsonObject object, Report& report) const {
        const Excerpt excerpt = summaryOf(text, hits, !report.json());
        if (report.json()) {
            object.push_back({"summary", excerpt.text});
            object.push_back({"hits", valuesOf(excerpt.hits)});
            return report.printObject(std::move(object));
        }
        if (excerpt.text.isAbsent()) return;
        Line line = report.line();
        line.add(Line::Color::File, file).add(": ");
        addHighlighted(line, excerpt.text, excerpt.hits);
        report.printLine(line);
    }

    void printList(const std::string& file, const String& text, std::span<const Range> hits,
                   JsonObject object, Report& report) const {
        JsonArray values;
        for (const Occurrence& record : recordsOf(text, hits, options_.enclosingWords)) {
            const Excerpt excerpt = excerptOf(record, text, hits);
            if (!report.json()) {
                Line line = report.line();
                line.add(Line::Color::File, file).add(":");
                line.add(Line::Color::Number, std::to_string(record.line + 1)).add(": ");
                addHighlighted(line, excerpt.text, excerpt.hits);
                report.printLine(line);
                continue;
            }
            values.push_back(
                JsonObject{{"range", JsonArray{record.range.location, record.range.length}},
                           {"line", record.line},
                           {"text", excerpt.text},
                           {"hits", valuesOf(excerpt.hits)}});
        }
        if (!report.json()) return;
        object.push_back({"records", std::move(values)});
        report.printObject(std::move(object));
    }

    const Options& options_;
    const Query& query_;
    const std::vector<String> wildcards_;
};

void run(Report& report, Options& options) {
    // The plain form knows nothing of scripts without spaces.
    options.parse.wholeWords |= options.described;
    const Query query = readQuery(report, options.query, options.parse, options.comparison);
    report.flush();
    const Excerpts excerpts(options, query);
    std::atomic<std::size_t> count = 0;
    const bool showsExcerpts =
        !options.hits.countOnly && !options.hits.namesOnly && !report.session().isQuiet;
    forEachText(report, options.input, [&](const std::string& file, String&& text, Report& own) {
        if (showsExcerpts) return excerpts.print(file, text, own);
        const bool isHit = excerpts.isHit(text);
        own.noteHit(isHit);
        count += isHit;
        if (isHit && options.hits.namesOnly) own.printName(file);
    });
    if (options.hits.countOnly) report.printLine(std::to_string(count));
}

}  // namespace

Command makeExcerptsCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Show the sentences with the words that make a query hold",
        .examples = {"velmo excerpts --length=200 'tea OR cof*' notes.txt page.html",
                     "velmo excerpts -r --list --enclosing-words=5 '\"new york\"' letters/"},
        .arguments = {required(
            "QUERY", options->query,
            "words, patterns, \"phrases\" and operators; see velmo help queries")},
        .run = [options](Report& report) { run(report, *options); },
    };
    command.add({
        flag("--any-word", options->anyWord,
             "every sentence with a positive word, whether the query holds or not"),
        flag("--beginning", options->beginning, "the beginning of texts without a hit"),
        flag("--described", options->described,
             "the plain form: every positive word, the beginning of texts without one, sentences "
             "that end at each full stop, and no sign of what is left out"),
        number("--length", "N", options->length, "of a summary, in UTF-16 units, 0 for no limit"),
        flag("--paragraphs", options->paragraphs, "whole lines instead of sentences"),
        text("--separator", "TEXT", options->separator, "between sentences; a space if not given"),
        flag("--single-words", options->singleWords, "sentences of nothing but the hit, too"),
        flag("--only-occurrences", options->onlyOccurrences,
             "with --described, no summary of a text without a hit"),
        flag("--list", options->list, "every excerpt by itself, with its place"),
        number("--enclosing-words", "N", options->enclosingWords,
               "at least so many on each side of a hit, for --list"),
    });
    command.add(queryParseOptions(options->parse));
    command.add(comparisonOptions(options->comparison));
    command.add(hitOptions(session, options->hits, "only the number of files with a hit"));
    addContentOptions(command, session, options->input);
    command.add({colorOption(session), jsonFlag(session, "one JSON object a file")});
    return command;
}

}  // namespace velmo::tool
