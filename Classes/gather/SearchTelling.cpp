// The excerpt of a page: the sentences with the hits that made the query hold, or the beginning of
// the text where nothing shows why, as when all is negated. It goes on one line, for lists.
#include "gather/SearchTelling.h"

#include <algorithm>

#include <velmocore/query/Occurrences.h>
#include <velmocore/text/CharacterSets.h>

#include "gather/SearchFilter.h"
#include "gather/StoredURL.h"

namespace velmo::detail {
namespace {

struct Excerpt {
    String text;
    std::vector<Range> hits;
};

/// Runs of white space become a space, those at the ends nothing.
Excerpt onOneLine(std::u16string_view text, std::span<const Range> hits) {
    const CharacterSetRep& white = whiteCharacterSetRep();
    std::u16string line;
    std::vector<std::size_t> places(text.size() + 1);  // of each unit in the line
    bool isGap = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isWhite = white.contains(text[i]);
        if (!isWhite && isGap && !line.empty()) line += u' ';
        places[i] = line.size();
        if (!isWhite) line += text[i];
        isGap = isWhite;
    }
    places[text.size()] = line.size();
    Excerpt excerpt;
    for (const Range& hit : hits) {
        const std::size_t start = places[hit.location];
        // Its last unit is in the line, unless it is white.
        const std::size_t end =
            hit.length ? std::min(places[hit.end() - 1] + 1, line.size()) : start;
        if (!excerpt.hits.empty() && start < excerpt.hits.back().end()) {
            // A word of a phrase that is a hit too; what is shown is marked once.
            Range& last = excerpt.hits.back();
            last.length = std::max(last.end(), std::uint64_t{end}) - last.location;
        } else if (end > start) {
            excerpt.hits.push_back({start, end - start});
        }
    }
    excerpt.text = String(line);
    return excerpt;
}

Excerpt excerptOf(const String& text, std::span<const Range> hits, std::size_t length) {
    const Summary summary = summaryOfHits(text, hits,
                                          {.ellipsizeAfterNCharacters = length,
                                           .gapSeparator = u" \u2026 ",
                                           .strictSentenceEnds = true,
                                           .keepsPairs = true,
                                           .withinRuns = true});
    if (summary.string.isEmpty()) return {};
    return onOneLine(summary.string, hitsInSummary(summary, hits));
}

}  // namespace

SearchHit hitOfPage(const StoredPage& page, const SearchQuery& query, std::size_t excerptLength) {
    SearchHit told;
    told.url = urlOfStored(String::fromUTF8(page.address()));
    told.key = String::fromUTF8(page.key());
    if (page.title().data()) told.title = String::fromUTF8(page.title());
    if (page.language().data()) told.language = String::fromUTF8(page.language());
    told.date = dateOfPage(page);
    const String text = page.text();
    const std::vector<Range> hits = query.hitsIn(text);
    told.hitCount = hits.size();
    if (excerptLength == 0) return told;
    Excerpt excerpt = excerptOf(text, hits, excerptLength);
    told.excerpt = std::move(excerpt.text);
    told.hits = std::move(excerpt.hits);
    return told;
}

}  // namespace velmo::detail
