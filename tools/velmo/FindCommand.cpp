// Wildcards in texts and pages, hit by hit.
#include <velmocore/query/FuzzyAnalogy.h>
#include <velmocore/query/WildcardSearch.h>
#include <velmocore/words/Separators.h>

#include <algorithm>
#include <memory>

#include "Commands.h"
#include "Input.h"
#include "SearchOptions.h"
#include "Walk.h"

namespace velmo::tool {
namespace {

/// So much of a hit's line is shown on either side of it.
constexpr std::size_t ShownUnits = 120;

struct Options {
    std::vector<std::string> patterns;
    std::string firstArgument;
    WalkOptions walk;
    WildcardComparison comparison = WildcardComparison::CaseInsensitive;
    double fuzzy = 0;
    std::uint64_t maxCount = UINT64_MAX;
    bool previous = false;
    bool colors = false;
};

/// A hit and where it stands.
struct Hit {
    Range range;
    std::uint64_t line = 0, lineStart = 0;  // from 0; in units
    Range bytes;                            // in UTF-8
};

/// Goes through a text and keeps count of lines and of bytes in UTF-8.
class Position {
public:
    explicit Position(std::u16string_view text) : text_(text) {}

    void goTo(std::uint64_t position) {
        for (; at_ < position; ++at_) {
            const char16_t unit = text_[at_];
            bytes_ += bytesOfUnit(unit);
            if (!lineEnds_.contains(unit)) continue;
            if (unit == u'\r' && at_ + 1 < text_.size() && text_[at_ + 1] == u'\n') continue;
            ++line_;
            lineStart_ = at_ + 1;
        }
    }
    std::uint64_t bytes() const { return bytes_; }
    std::uint64_t line() const { return line_; }
    std::uint64_t lineStart() const { return lineStart_; }

private:
    /// The low half of a pair adds the fourth byte to the three of the high one.
    std::uint64_t bytesOfUnit(char16_t unit) const {
        if (unit < 0x80) return 1;
        if (unit < 0x800) return 2;
        const bool endsPair =
            (unit & 0xFC00) == 0xDC00 && at_ > 0 && (text_[at_ - 1] & 0xFC00) == 0xD800;
        return endsPair ? 1 : 3;
    }

    std::u16string_view text_;
    const CharacterSetRep& lineEnds_ = defaultLineSeparators();
    std::uint64_t at_ = 0, bytes_ = 0, line_ = 0, lineStart_ = 0;
};

/// The hits in the order of the search.
std::vector<Hit> findHits(const String& text, std::span<const String> patterns,
                          const Options& options) {
    std::vector<Hit> hits;
    const auto add = [&](Range range) {
        hits.push_back({range, 0, 0, {}});
        return hits.size() < options.maxCount;
    };
    const WildcardSearchOptions search{.comparison = options.comparison};
    if (options.maxCount > 0) {
        if (options.previous)
            forEachWildcardBackwards(text, patterns, add, search);
        else
            forEachWildcard(text, patterns, add, search);
    }

    // Places are counted from the start on, whatever the order.
    if (options.previous) std::ranges::reverse(hits);
    Position position(text);
    for (Hit& hit : hits) {
        position.goTo(hit.range.location);
        hit.line = position.line();
        hit.lineStart = position.lineStart();
        hit.bytes.location = position.bytes();
        position.goTo(hit.range.end());
        hit.bytes.length = position.bytes() - hit.bytes.location;
    }
    if (options.previous) std::ranges::reverse(hits);
    return hits;
}

void printObject(Report& report, const std::string& file, const String& content, const Hit& hit) {
    report.printObject({{"file", text(file)},
                        {"range", {hit.range.location, hit.range.length}},
                        {"bytes", {hit.bytes.location, hit.bytes.length}},
                        {"line", hit.line},
                        {"text", text(content.substring(hit.range))}});
}

void printLine(Report& report, const std::string& file, std::u16string_view content, const Hit& hit,
               Colors colors) {
    const std::uint64_t before =
        std::min<std::uint64_t>(hit.range.location - hit.lineStart, ShownUnits);
    std::uint64_t end = hit.range.end();
    const std::uint64_t last = std::min<std::uint64_t>(content.size(), end + ShownUnits);
    while (end < last && !defaultLineSeparators().contains(content[end])) ++end;
    const auto units = [&](std::uint64_t from, std::uint64_t to) {
        return printable(content.substr(from, to - from));
    };
    report.printLine(fmt::format(
        "{}:{}:{}:{}{}{}", colors.file(file), colors.number(std::to_string(hit.line + 1)),
        colors.number(std::to_string(hit.range.location - hit.lineStart + 1)),
        units(hit.range.location - before, hit.range.location),
        colors.hit(units(hit.range.location, hit.range.end())), units(hit.range.end(), end)));
}

void run(Session& session, const Options& options) {
    std::vector<String> patterns;
    for (const std::string& pattern : options.patterns)
        patterns.push_back(String::fromUTF8(pattern));
    walkFiles(session, options.walk,
              [&](const std::string& file, const std::string& bytes, Report& report) {
                  const String content = readableText(file, bytes);
                  const std::vector<Hit> hits = findHits(content, patterns, options);
                  report.noteHit(!hits.empty());
                  for (const Hit& hit : hits) {
                      if (report.json)
                          printObject(report, file, content, hit);
                      else
                          printLine(report, file, content, hit, Colors(options.colors));
                  }
              });
}

/// Without -e the first argument is the pattern, with it a file.
void sortArguments(Options& options) {
    if (options.patterns.empty()) {
        if (options.firstArgument.empty()) throw CLI::RequiredError("PATTERN");
        options.patterns.push_back(options.firstArgument);
    } else if (!options.firstArgument.empty()) {
        options.walk.paths.insert(options.walk.paths.begin(), options.firstArgument);
    }
}

}  // namespace

void addFindCommand(CLI::App& app, Session& session) {
    auto options = std::make_shared<Options>();
    CLI::App* command =
        app.add_subcommand("find",
                           "Example: velmo find 'data* [a-d]?se' notes.txt page.html\n"
                           "         velmo find -r -e 'e-mail' -e 'tele*' letters/\n"
                           "         velmo find --fuzzy=0.75 analogy notes.txt\n"
                           "Find words by wildcards in texts and pages, every hit with its place");
    command->add_option("PATTERN", options->firstArgument,
                        "* any units, ? one, [a-z] [^a-z] one of a set; several words are a "
                        "phrase. With -e, a file");
    addWalkOptions(*command, options->walk);
    command->add_option("-e,--pattern", options->patterns, "a pattern; may be given again")
        ->expected(1)
        ->take_all();
    addComparisonOption(*command, options->comparison);
    command
        ->add_option("--fuzzy", options->fuzzy,
                     "find words without wildcards by their resemblance: at least so much, "
                     "from 0 to 1, as 0.75")
        ->check(CLI::Range(0.0, 1.0));
    command->add_option("--max-count", options->maxCount, "stop in a file after so many hits");
    command->add_flag("--previous", options->previous, "from the end of each file back");
    addColorOption(*command, options->colors);
    command->add_flag("--json", session.json, "one JSON object a hit");
    command->callback([&session, options, command] {
        sortArguments(*options);
        if (command->count("--fuzzy") > 0) {
            setMinWildcardFuzzyAnalogy(options->fuzzy);
            options->comparison = options->comparison | WildcardComparison::Fuzzy;
        }
        run(session, *options);
    });
}

}  // namespace velmo::tool
