#include "gather/SiteResults.h"

#include <fmt/core.h>

#include <algorithm>
#include <chrono>

#include <velmocore/platform/DateFormat.h>
#include <velmocore/url/URLSchemes.h>

#include "platform/Ascii.h"

namespace velmo::detail {
namespace {

constexpr std::size_t LongestAddress = 90;

/// Without what everybody knows of it, and not longer than a line.
String shownAddress(const URL& url) {
    String address = url.absoluteString();
    if (const std::size_t scheme = address.view().find(u"://"); scheme != std::u16string_view::npos)
        address = String(address.view().substr(scheme + 3));
    if (address.length() <= LongestAddress) return address;
    return String(std::u16string(address.view().substr(0, LongestAddress)) + u"\u2026");
}

void writeDetails(MarkupWriter& out, const SearchHit& hit) {
    out << "<p class=\"from\">";
    writeOutside(out, hit.url);
    if (hit.date) {
        out << " <span class=\"dot\">\xC2\xB7</span> ";
        writeDate(out, *hit.date);
    }
    if (!hit.language.isEmpty()) {
        out << " <span class=\"dot\">\xC2\xB7</span> ";
        out.text(hit.language);
    }
    out << " <span class=\"dot\">\xC2\xB7</span> ";
    out.number(hit.hitCount);
    if (hit.hitCount == 1)
        out << " hit</p>";
    else
        out << " hits</p>";
}

void writeHit(MarkupWriter& out, const SiteTarget& target, const SearchHit& hit) {
    out << "<li><article";
    writeLanguage(out, hit.language);
    out << "><h2 dir=\"auto\"><a href=\"";
    out.text(addressOfPage(target, hit));
    out << "\">";
    out.text(hit.title.isEmpty() ? shownAddress(hit.url) : hit.title);
    out << "</a></h2>";
    writeDetails(out, hit);
    if (!hit.excerpt.isEmpty()) {
        out << "<p class=\"excerpt\" dir=\"auto\">";
        writeMarked(out, hit.excerpt, hit.hits);
        out << "</p>";
    }
    out << "</article></li>";
}

void writeCount(MarkupWriter& out, const SiteSearch& search) {
    out << "<p class=\"count\" role=\"status\">";
    out.number(search.result.matching);
    out << " of ";
    out.number(search.result.pages);
    out << " pages, ";
    out.text(fmt::format("{:.2f}", search.seconds));
    out << " s";
    if (!search.result.isComplete) out << "; the search was cut off, as it took too long";
    out << "</p>";
}

/// What the search is narrowed down to, each with a way out.
void writeFilters(MarkupWriter& out, const SiteTarget& target) {
    const auto write = [&](std::string_view value, auto clear) {
        if (value.empty()) return;
        out << "<a class=\"filter\" href=\"";
        out.text(target.addressWith([&](SiteTarget& other) {
            other.first = 0;
            clear(other);
        }));
        out << "\" title=\"Leave this out\">";
        out.text(value);
        out << " <span aria-hidden=\"true\">\xC3\x97</span></a>";
    };
    write(target.language, [](SiteTarget& other) { other.language.clear(); });
    write(target.host, [](SiteTarget& other) { other.host.clear(); });
    write(target.year ? std::to_string(*target.year) : "",
          [](SiteTarget& other) { other.year.reset(); });
}

void writeStep(MarkupWriter& out, const SiteTarget& target, std::size_t first, Literal key,
               Literal name) {
    out << "<a accesskey=\"" << key << "\" href=\"";
    out.text(target.addressWith([&](SiteTarget& other) { other.first = first; }));
    out << "\">" << name << "</a>";
}

void writeSteps(MarkupWriter& out, const SiteSearch& search) {
    const std::size_t first = search.target.first;
    out << "<nav class=\"steps\" aria-label=\"More results\">";
    if (first > 0)
        writeStep(out, search.target, first - std::min(first, ResultsAPage), "p",
                  "\xE2\x86\x90 Before");
    if (first + search.result.hits.size() < search.result.matching)
        writeStep(out, search.target, first + ResultsAPage, "n", "More \xE2\x86\x92");
    out << "</nav>";
}

}  // namespace

std::string addressOfPage(const SiteTarget& target, const SearchHit& hit) {
    return target.addressWith([&](SiteTarget& page) {
        page.path = "/page";
        page.key = hit.key.utf8();
        page.store = hit.store;
    });
}

void writeMarked(MarkupWriter& out, std::u16string_view text, std::span<const Range> hits) {
    std::size_t at = 0;
    for (const Range& hit : hits) {
        if (hit.location < at || hit.end() > text.size()) continue;
        out.text(text.substr(at, hit.location - at));
        out << "<mark>";
        out.text(text.substr(hit.location, hit.length));
        out << "</mark>";
        at = hit.end();
    }
    out.text(text.substr(at));
}

void writeOutside(MarkupWriter& out, const URL& url) {
    const bool isOfWeb = isHTTPURL(url);
    if (isOfWeb) {
        out << "<a class=\"outside\" rel=\"noreferrer noopener nofollow\" href=\"";
        out.text(url.absoluteString());
        out << "\">";
    }
    out << "<bdi>";
    out.text(shownAddress(url));
    out << "</bdi>";
    if (isOfWeb) out << "</a>";
}

void writeDate(MarkupWriter& out, Date date) {
    const String machine = stringInISO8601(date);
    if (machine.isAbsent()) return;
    constexpr std::string_view Months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                           "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const std::chrono::year_month_day day(std::chrono::floor<std::chrono::days>(date));
    out << "<time datetime=\"";
    out.text(machine);
    out << "\">";
    out.text(fmt::format("{} {} {}", static_cast<unsigned>(day.day()),
                         Months[static_cast<unsigned>(day.month()) - 1],
                         static_cast<int>(day.year())));
    out << "</time>";
}

void writeLanguage(MarkupWriter& out, std::u16string_view language) {
    const bool isTag = !language.empty() && std::ranges::all_of(language, [](char16_t unit) {
        return ascii::isLetter(unit) || unit == u'-';
    });
    if (!isTag) return;
    out << " lang=\"";
    out.text(language);
    out << "\"";
}

void writeResults(MarkupWriter& out, const SiteSearch& search) {
    out << "<h1 class=\"hidden\">Results</h1>";
    writeCount(out, search);
    writeFilters(out, search.target);
    for (const String& problem : search.problems) {
        out << "<p class=\"note\">";
        out.text(problem);
        out << "</p>";
    }
    out << "<div class=\"found\"><ol class=\"results\" start=\"";
    out.text(std::to_string(search.target.first + 1));
    out << "\">";
    for (const SearchHit& hit : search.result.hits) writeHit(out, search.target, hit);
    out << "</ol>";
    writeFacets(out, search);
    out << "</div>";
    writeSteps(out, search);
}

}  // namespace velmo::detail
