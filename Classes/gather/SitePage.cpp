// Without scripts, a hit leads to the next one: each is a link to the place of the one behind it, so
// that Tab goes from hit to hit as well.
#include "gather/SitePage.h"

#include <algorithm>
#include <span>

#include <velmocore/query/QueryHits.h>
#include <velmocore/url/URLSchemes.h>

#include "gather/MarkupWriter.h"
#include "gather/SiteFrame.h"
#include "gather/SiteResults.h"

namespace velmo::detail {
namespace {

/// What a browser shows well; the rest is told, and the tool shows it.
constexpr std::size_t LongestText = 2'000'000, MostHits = 5'000, MostLinks = 500;

void writeHitName(MarkupWriter& out, std::size_t number) {
    out << "hit-";
    out.text(std::to_string(number));
}

/// Hits in their order; each is an anchor, and leads to the next, the last to the first.
void writeText(MarkupWriter& out, std::u16string_view text, std::span<const Range> hits) {
    std::size_t at = 0;
    for (std::size_t i = 0; i < hits.size(); ++i) {
        out.text(text.substr(at, hits[i].location - at));
        out << "<a class=\"hit\" id=\"";
        writeHitName(out, i + 1);
        out << "\" href=\"#";
        writeHitName(out, i + 1 < hits.size() ? i + 2 : 1);
        out << "\" title=\"To the next hit\"><mark>";
        out.text(text.substr(hits[i].location, hits[i].length));
        out << "</mark></a>";
        at = hits[i].end();
    }
    out.text(text.substr(at));
}

/// Those within the text that do not overlap.
std::vector<Range> shownHits(const ShownPage& shown, std::u16string_view text) {
    std::vector<Range> hits;
    if (!shown.query.isValid()) return hits;
    for (const Range& hit : hitsOfQueryTerms(text, shown.query)) {
        const bool isBehind = hits.empty() || hit.location >= hits.back().end();
        if (hit.length > 0 && isBehind) hits.push_back(hit);
        if (hits.size() == MostHits) break;
    }
    return hits;
}

void writeRow(MarkupWriter& out, Literal name, const String& value) {
    if (value.isEmpty()) return;
    out << "<dt>" << name << "</dt><dd dir=\"auto\">";
    out.text(value);
    out << "</dd>";
}

void writeDateRow(MarkupWriter& out, Literal name, const std::optional<Date>& date) {
    if (!date) return;
    out << "<dt>" << name << "</dt><dd>";
    writeDate(out, *date);
    out << "</dd>";
}

void writeKnown(MarkupWriter& out, const PageRecord& page) {
    out << "<dl><dt>Address</dt><dd>";
    writeOutside(out, page.url);
    out << "</dd>";
    writeRow(out, "Author", page.author);
    writeDateRow(out, "Date", page.date);
    writeDateRow(out, "Loaded", page.fetched);
    writeRow(out, "Language", page.language);
    writeRow(out, "Charset", page.charset);
    writeRow(out, "Description", page.description);
    out << "<dt>Words</dt><dd>";
    out.number(page.words);
    out << "</dd></dl>";
}

void writeLinks(MarkupWriter& out, const ShownPage& shown) {
    const std::vector<PageLink>& links = shown.page.links;
    if (links.empty()) return;
    out << "<details class=\"links\"><summary>Links (";
    out.number(links.size());
    out << ")</summary><ul>";
    for (const PageLink& link : std::span(links).first(std::min(links.size(), MostLinks))) {
        out << "<li>";
        if (shown.images && isHTTPURL(link.thumbnail)) {
            out << "<img alt=\"\" loading=\"lazy\" referrerpolicy=\"no-referrer\" src=\"";
            out.text(link.thumbnail.absoluteString());
            out << "\">";
        }
        out << "<bdi>";
        out.text(link.text);
        out << "</bdi> ";
        writeOutside(out, link.url);
        out << "</li>";
    }
    out << "</ul></details>";
}

void writeWay(MarkupWriter& out, const ShownPage& shown, std::size_t hits) {
    out << "<nav class=\"way\" aria-label=\"Hits\">";
    if (!shown.target.query.empty()) {
        out << "<a accesskey=\"b\" href=\"";
        out.text(shown.target.addressWith([](SiteTarget& results) {
            results.path = "/";
            results.key.clear();
            results.store = 0;
        }));
        out << "\">\xE2\x86\x90 Results</a>";
    }
    if (hits > 0) {
        out << "<a accesskey=\"n\" href=\"#hit-1\">";
        out.number(hits);
        if (hits == 1)
            out << " hit</a>";
        else
            out << " hits, the first one</a>";
    }
    out << "</nav>";
}

}  // namespace

std::string sitePageOf(const ShownPage& shown) {
    const PageRecord& page = shown.page;
    const std::u16string_view text = page.text.view().substr(0, LongestText);
    const std::vector<Range> hits = shownHits(shown, text);
    const String& title = page.title.isEmpty() ? page.key : page.title;
    MarkupWriter out;
    beginSitePage(out, title, shown.target);
    writeWay(out, shown, hits.size());
    out << "<article";
    writeLanguage(out, page.language);
    out << "><h1 dir=\"auto\">";
    out.text(title);
    out << "</h1>";
    writeKnown(out, page);
    writeLinks(out, shown);
    out << "<div class=\"text\" dir=\"auto\">";
    writeText(out, text, hits);
    out << "</div>";
    if (text.size() < page.text.length()) out << "<p class=\"note\">The text goes on.</p>";
    out << "</article>";
    endSitePage(out);
    return out.take();
}

}  // namespace velmo::detail
