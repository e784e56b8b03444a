// Wildcards in texts and pages, hit by hit. A hit is printed where it is found, so that many of
// them take no memory; only a search from the end back must keep their places.
//
// A hit is told in three ways of counting: by lines and columns for people and editors, by UTF-16
// units for the library's callers, by bytes for whatever else reads the file.
#include <fmt/core.h>

#include <algorithm>
#include <memory>

#include <velmocore/query/FuzzyAnalogy.h>
#include <velmocore/query/WildcardSearch.h>

#include "Commands.h"
#include "QueryOptions.h"
#include "SearchOptions.h"
#include "TextPosition.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

/// So much of a hit's line is shown on either side of it.
constexpr std::uint64_t ShownUnits = 120;
/// Outside the range of the option, in which 0 is a measure like any other.
constexpr double NoFuzzy = -1;

struct Options {
    std::vector<std::string> patterns, arguments;
    InputOptions input;
    WildcardComparison comparison = WildcardComparison::CaseInsensitive;
    HitOptions hits;
    double fuzzy = NoFuzzy;
    std::uint64_t maxCount = NotFound;
    bool previous = false, strict = false, wholeWords = false;
};

/// A hit and where it stands.
struct Hit {
    Range range;
    std::uint64_t line = 0, lineStart = 0;
    Range bytes = {};  ///< in UTF-8
};

/// The position goes on from the hit before, so that all hits of a text together cost one walk
/// through it.
Hit hitAt(Range range, TextPosition& position) {
    position.goTo(range.location);
    Hit hit = {range, position.line(), position.lineStart(), {position.bytes(), 0}};
    position.goTo(range.end());
    hit.bytes.length = position.bytes() - hit.bytes.location;
    return hit;
}

/// A cut here would leave half a character on either side, each printed as U+FFFD.
bool splitsPair(std::u16string_view text, std::uint64_t at) {
    return at > 0 && at < text.size() && (text[at - 1] & 0xFC00) == 0xD800 &&
           (text[at] & 0xFC00) == 0xDC00;
}

/// As much of the hit's line as is shown.
Range shownRange(std::u16string_view text, const Hit& hit) {
    // Both sides have a limit: a text may be one line of megabytes with a hit in each word, and to
    // print the line with each would take the square of its length.
    std::uint64_t start =
        std::max(hit.lineStart, hit.range.location - std::min(ShownUnits, hit.range.location));
    if (splitsPair(text, start)) ++start;
    std::uint64_t end = hit.range.end();
    const std::uint64_t last = std::min<std::uint64_t>(text.size(), end + ShownUnits);
    while (end < last && !defaultLineSeparators().contains(text[end])) ++end;
    if (splitsPair(text, end)) --end;
    return {start, end - start};
}

/// The hits of one text.
class Printer {
public:
    Printer(const std::string& file, const String& text, Report& report)
        : file_(file), text_(text), report_(report) {}

    void print(const Hit& hit) const {
        if (report_.json())
            printObject(hit);
        else
            printLine(hit);
    }

private:
    void printObject(const Hit& hit) const {
        report_.printObject(
            fileObject(file_, {{"range", JsonArray{hit.range.location, hit.range.length}},
                               {"bytes", JsonArray{hit.bytes.location, hit.bytes.length}},
                               {"line", hit.line},
                               {"column", hit.range.location - hit.lineStart + 1},
                               {"text", text_.substring(hit.range)},
                               {"lineText", text_.substring(shownRange(text_, hit))}}));
    }

    void printLine(const Hit& hit) const {
        const Range shown = shownRange(text_, hit);
        const Range hitInShown = {hit.range.location - shown.location, hit.range.length};
        Line line = report_.line();
        line.add(Line::Color::File, file_).add(":");
        line.add(Line::Color::Number, std::to_string(hit.line)).add(":");
        line.add(Line::Color::Number, std::to_string(hit.range.location - hit.lineStart + 1));
        addHighlighted(line.add(":"), text_.view().substr(shown.location, shown.length),
                       {&hitInShown, 1});
        report_.printLine(line);
    }

    const std::string& file_;
    const String& text_;
    Report& report_;
};

/// Calls the handler for the hits in the order of the search until it has enough.
std::uint64_t forEachHit(const String& text, std::span<const String> patterns,
                         const Options& options, FunctionRef<void(const Hit&)> handler) {
    // A name is told by the first hit; the rest of the text need not be searched.
    const std::uint64_t most = options.hits.namesOnly ? 1 : options.maxCount;
    if (most == 0) return 0;
    const WildcardSearchOptions search{.comparison = options.comparison,
                                       .withinRuns = !options.wholeWords};
    TextPosition position(text);
    std::uint64_t count = 0;
    if (!options.previous)
        return forEachWildcard(
            text, patterns,
            [&](Range range) {
                handler(hitAt(range, position));
                return ++count < most;
            },
            search);
    // Places are counted from the start on, whatever the order.
    std::vector<Hit> hits;
    forEachWildcardBackwards(
        text, patterns,
        [&](Range range) {
            hits.push_back({.range = range});
            return hits.size() < most;
        },
        search);
    // They came from the end back, and a TextPosition only goes ahead.
    std::for_each(hits.rbegin(), hits.rend(), [&](Hit& hit) { hit = hitAt(hit.range, position); });
    for (const Hit& hit : hits) handler(hit);
    return hits.size();
}

void findIn(const std::string& file, const String& text, std::span<const String> patterns,
            const Options& options, Report& report) {
    const bool printsHits = !options.hits.countOnly && !options.hits.namesOnly;
    const Printer printer(file, text, report);
    const std::uint64_t count = forEachHit(text, patterns, options, [&](const Hit& hit) {
        report.noteHit(true);
        if (printsHits) printer.print(hit);
    });
    // Hits were noted as they came, so that a quiet run begins no further file after the first.
    if (count == 0) report.noteHit(false);
    if (options.hits.countOnly)
        report.printLine(report.line().add(Line::Color::File, file).add(fmt::format(":{}", count)));
    else if (options.hits.namesOnly && count > 0)
        report.printName(file);
}

/// Without -e the first argument is the pattern, with it a file.
void sortArguments(Options& options) {
    std::vector<std::string>& arguments = options.arguments;
    if (options.patterns.empty()) {
        if (arguments.empty()) throw UsageError("PATTERN is missing");
        options.patterns.push_back(arguments.front());
        arguments.erase(arguments.begin());
    }
    options.input.names.paths = arguments;
}

void run(Report& report, Options& options) {
    sortArguments(options);
    if (options.fuzzy != NoFuzzy) {
        // A setting of the whole process, so it is made before there are threads.
        setMinWildcardFuzzyAnalogy(options.fuzzy);
        options.comparison = options.comparison | WildcardComparison::Fuzzy;
    }
    std::vector<String> patterns;
    for (const std::string& pattern : options.patterns)
        patterns.push_back(String::fromUTF8(pattern));
    for (const String& pattern : patterns)
        explainPattern(report, pattern, options.strict, options.wholeWords);
    // The complaints of the patterns come first, before those of any input.
    report.flush();
    forEachText(report, options.input, [&](const std::string& file, String&& text, Report& own) {
        findIn(file, text, patterns, options, own);
    });
}

}  // namespace

Command makeFindCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Find words by wildcards in texts and pages, every hit with its place",
        .examples = {"velmo find 'data* [a-d]?se' notes.txt page.html",
                     "velmo find -r -e 'e-mail' -e 'tele*' letters/",
                     "velmo find --fuzzy=0.75 analogy notes.txt"},
        .run = [options](Report& report) { run(report, *options); },
    };
    command.add({
        texts("-e,--pattern", "PATTERN", options->patterns, "a pattern; may be given again"),
        real("--fuzzy", "NUMBER", options->fuzzy,
             "find words without wildcards by their resemblance: at least so much, from 0 to 1, "
             "as 0.75",
             0, 1),
        number("-n,--limit", "N", options->maxCount, "stop in a file after so many hits"),
        flag("--previous", options->previous, "from the end of each file back"),
        flag("--strict", options->strict, "fail if a pattern cannot mean what was written"),
        wholeWordsOption(options->wholeWords),
    });
    command.add(comparisonOptions(options->comparison));
    command.add(hitOptions(session, options->hits, "only the number of hits in each file"));
    addContentOptions(command, session, options->input);
    command.add({colorOption(session), jsonFlag(session, "one JSON object a hit")});
    command.arguments = {
        list("PATTERN", options->arguments,
             "* any units, ? one, [a-z] [^a-z] one of a set; several words are a phrase. With -e, "
             "a file"),
        list("FILE", options->arguments,
             "pages and texts, told apart by their content; none, or -, is standard input")};
    // Both take from one list, as only the options tell whether the first is a pattern; the help
    // still shows them as what they are.
    command.arguments.front().isList = false;
    return command;
}

}  // namespace velmo::tool
