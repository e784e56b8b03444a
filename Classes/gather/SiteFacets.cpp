// Counts beside the results. A bar is a picture of a count that stands beside it as a number, so
// that it is hidden from who reads aloud.
#include <algorithm>
#include <utility>

#include "gather/SiteResults.h"

namespace velmo::detail {
namespace {

/// So many languages and hosts are told, the most frequent ones.
constexpr std::size_t MostRows = 8;
constexpr std::size_t MostYears = 40;
constexpr std::size_t BarWidth = 100, ChartHeight = 48, YearWidth = 8;

using Count = std::pair<String, std::size_t>;

std::vector<Count> mostFrequent(const std::map<String, std::size_t>& counts) {
    std::vector<Count> rows;
    for (const auto& [name, count] : counts)
        if (!name.isEmpty()) rows.emplace_back(name, count);
    std::ranges::stable_sort(rows, std::greater(), &Count::second);
    if (rows.size() > MostRows) rows.resize(MostRows);
    return rows;
}

void writeBar(MarkupWriter& out, std::size_t count, std::size_t most) {
    out << "<svg class=\"bar\" aria-hidden=\"true\" viewBox=\"0 0 100 6\" "
           "preserveAspectRatio=\"none\">"
           "<rect height=\"6\" rx=\"1\" width=\"";
    out.text(std::to_string(std::max<std::size_t>(BarWidth * count / most, 1)));
    out << "\"/></svg>";
}

/// A list of names, each of which narrows the search down by what the choice sets.
template <class Choose>
void writeList(MarkupWriter& out, Literal heading, const std::map<String, std::size_t>& counts,
               const SiteTarget& target, Choose choose) {
    const std::vector<Count> rows = mostFrequent(counts);
    if (rows.empty()) return;
    out << "<section><h2>" << heading << "</h2><ul>";
    for (const auto& [name, count] : rows) {
        out << "<li><a href=\"";
        out.text(target.addressWith([&, chosen = name.utf8()](SiteTarget& other) {
            other.first = 0;
            choose(other, chosen);
        }));
        out << "\"><span class=\"name\">";
        out.text(name);
        out << "</span> <span class=\"number\">";
        out.number(count);
        out << "</span>";
        writeBar(out, count, rows.front().second);
        out << "</a></li>";
    }
    out << "</ul></section>";
}

void writeYear(MarkupWriter& out, const SiteTarget& target, std::pair<int, std::size_t> year,
               std::size_t place, std::size_t most) {
    const std::size_t height = std::max<std::size_t>(ChartHeight * year.second / most, 1);
    const auto attribute = [&](Literal name, std::size_t value) {
        out << " " << name << "=\"";
        out.text(std::to_string(value));
        out << "\"";
    };
    out << "<a href=\"";
    out.text(target.addressWith([&](SiteTarget& other) {
        other.first = 0;
        other.year = year.first;
    }));
    out << "\"><title>";
    out.text(std::to_string(year.first) + ": " + std::to_string(year.second));
    out << "</title><rect";
    attribute("x", place * YearWidth);
    attribute("y", ChartHeight - height);
    attribute("width", YearWidth - 2);
    attribute("height", height);
    out << "/></a>";
}

void writeYears(MarkupWriter& out, const SiteSearch& search) {
    // The latest ones. A year that has none has no bar, but the ends are written out.
    std::vector<std::pair<int, std::size_t>> years(search.result.years.begin(),
                                                   search.result.years.end());
    if (years.empty()) return;
    if (years.size() > MostYears) years.erase(years.begin(), years.end() - MostYears);
    const std::size_t most =
        std::ranges::max(years, {}, &std::pair<int, std::size_t>::second).second;
    out << "<section><h2>Year</h2><svg class=\"years\" role=\"group\" aria-label=\"Pages by year\" "
           "viewBox=\"0 0 ";
    out.text(std::to_string(years.size() * YearWidth) + " " + std::to_string(ChartHeight));
    out << "\">";
    for (std::size_t i = 0; i < years.size(); ++i) writeYear(out, search.target, years[i], i, most);
    out << "</svg><p class=\"ends\"><span>";
    out.text(std::to_string(years.front().first));
    out << "</span>";
    if (years.size() > 1) {
        out << "<span>";
        out.text(std::to_string(years.back().first));
        out << "</span>";
    }
    out << "</p></section>";
}

}  // namespace

void writeFacets(MarkupWriter& out, const SiteSearch& search) {
    out << "<aside aria-label=\"Narrow down\">";
    writeList(out, "Language", search.result.languages, search.target,
              [](SiteTarget& other, std::string name) { other.language = std::move(name); });
    writeList(out, "Host", search.result.hosts, search.target,
              [](SiteTarget& other, std::string name) { other.host = std::move(name); });
    writeYears(out, search);
    out << "</aside>";
}

}  // namespace velmo::detail
