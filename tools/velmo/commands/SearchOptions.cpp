// Options of match, find and their like. They follow the letters of grep (-i, -c, -l, -q), which
// hands know, but not its default: here case is ignored unless something else is asked for.
#include "SearchOptions.h"

namespace velmo::tool {
namespace {

using enum WildcardComparison;

/// A name of its own for one value of --comparison; of several the last one counts.
Option comparisonFlag(std::string_view names, WildcardComparison& comparison,
                      WildcardComparison value, std::string help) {
    return {.names = names,
            .value = {},
            .help = std::move(help),
            .take = [&comparison, value](const auto&) { comparison = value; }};
}

}  // namespace

std::vector<Option> comparisonOptions(WildcardComparison& comparison) {
    Option named = choice("--comparison", "NAME", comparison,
                          "what may differ: nothing (exact), case, diacritics or both; fuzzy, or "
                          "case+fuzzy and so on, for words that only resemble the sought ones",
                          {{"exact", Exact},
                           {"case", CaseInsensitive},
                           {"diacritics", DiacriticsInsensitive},
                           {"both", Insensitive},
                           {"fuzzy", CaseInsensitive | Fuzzy},
                           {"exact+fuzzy", Exact | Fuzzy},
                           {"case+fuzzy", CaseInsensitive | Fuzzy},
                           {"diacritics+fuzzy", DiacriticsInsensitive | Fuzzy},
                           {"both+fuzzy", Insensitive | Fuzzy}});
    Option exact =
        comparisonFlag("--case-sensitive", comparison, Exact, "the same as --comparison exact");
    // Both given contradict each other, and the one that comes first would be passed over
    // silently.
    exact.excludes = "--comparison";
    return {std::move(named),
            comparisonFlag("-i,--ignore-case", comparison, CaseInsensitive,
                           "the same as --comparison case"),
            std::move(exact)};
}

std::vector<Option> hitOptions(Session& session, HitOptions& options, std::string countHelp) {
    Option count = flag("-c,--count", options.countOnly, std::move(countHelp));
    // A count or a name alone is no object; programs have it in every object, or count these.
    count.excludes = "--json";
    Option names = flag("-l,--files-with-matches", options.namesOnly,
                        "only the names of the files with a hit");
    names.excludes = "--json";
    return {std::move(count), std::move(names),
            flag("-q,--quiet", session.isQuiet, "print nothing, and end at the first hit")};
}

Option colorOption(Session& session) {
    enum class When { Auto, Always, Never };
    // The default, which stands if the option is not used.
    session.hasColors = isColorTerminal();
    return {.names = "--color",
            .value = "WHEN",
            .help = "whether hits are in colour: auto, always or never",
            .take =
                [&session](const std::string& when) {
                    constexpr std::string_view Whens[] = {"auto", "always", "never"};
                    const auto chosen = static_cast<When>(indexOfName(when, Whens));
                    session.hasColors =
                        chosen == When::Always || (chosen == When::Auto && isColorTerminal());
                },
            .choices = {"auto", "always", "never"},
            .usual = "auto"};
}

void addHighlighted(Line& line, std::u16string_view text, std::span<const Range> hits) {
    std::uint64_t written = 0;
    // The hits are in order and do not overlap, so one pass is enough. Each part is made one line
    // by itself: cut from a whole line that was changed first, the places would no longer fit.
    for (const Range& hit : hits) {
        line.add(oneLine(text.substr(written, hit.location - written)));
        line.add(Line::Color::Hit, oneLine(text.substr(hit.location, hit.length)));
        written = hit.end();
    }
    line.add(oneLine(text.substr(written)));
}

}  // namespace velmo::tool
