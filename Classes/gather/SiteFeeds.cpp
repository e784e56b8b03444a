// Results for programs: an Atom feed, and JSON.
#include <nlohmann/json.hpp>

#include <velmocore/platform/DateFormat.h>

#include "gather/SiteResults.h"

namespace velmo::detail {
namespace {

using Json = nlohmann::ordered_json;

Json textOrNull(const String& text) { return text.isAbsent() ? Json() : Json(text.utf8()); }

Json jsonOfHit(const SearchHit& hit) {
    Json hits = Json::array();
    for (const Range& range : hit.hits) hits.push_back({range.location, range.length});
    return {{"url", textOrNull(hit.url.absoluteString())},
            {"title", textOrNull(hit.title)},
            {"date", hit.date ? textOrNull(stringInISO8601(*hit.date)) : Json()},
            {"language", textOrNull(hit.language)},
            {"score", hit.score},
            {"excerpt", textOrNull(hit.excerpt)},
            {"hits", std::move(hits)}};
}

/// A feed wants a date of everything.
String dateOfEntry(const SearchHit& hit) {
    const String date = hit.date ? stringInISO8601(*hit.date) : String();
    return date.isAbsent() ? stringInISO8601(Date{}) : date;
}

void writeEntry(MarkupWriter& out, const SearchHit& hit) {
    const String& address = hit.url.isAbsent() ? hit.key : hit.url.absoluteString();
    out << "<entry><title>";
    out.text(hit.title.isEmpty() ? address : hit.title);
    out << "</title><id>";
    out.text(address);
    out << "</id><link href=\"";
    out.text(address);
    out << "\"/><updated>";
    out.text(dateOfEntry(hit));
    out << "</updated><summary>";
    out.text(hit.excerpt);
    out << "</summary></entry>\n";
}

}  // namespace

std::string feedOfResults(const SiteSearch& search, std::string_view origin) {
    const std::string self = std::string(origin) + search.target.address();
    Date latest{};
    for (const SearchHit& hit : search.result.hits)
        if (hit.date) latest = std::max(latest, *hit.date);
    MarkupWriter out;
    out << "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
           "<feed xmlns=\"http://www.w3.org/2005/Atom\"><title>";
    out.text(search.target.query);
    out << "</title><id>";
    out.text(self);
    out << "</id><link rel=\"self\" href=\"";
    out.text(self);
    out << "\"/><author><name>velmo</name></author><updated>";
    out.text(stringInISO8601(latest));
    out << "</updated>\n";
    for (const SearchHit& hit : search.result.hits) writeEntry(out, hit);
    out << "</feed>\n";
    return out.take();
}

std::string jsonOfResults(const SiteSearch& search) {
    Json hits = Json::array();
    for (const SearchHit& hit : search.result.hits) hits.push_back(jsonOfHit(hit));
    const Json object = {{"query", String::fromUTF8(search.target.query).utf8()},
                         {"pages", search.result.pages},
                         {"matching", search.result.matching},
                         {"complete", search.result.isComplete},
                         {"results", std::move(hits)}};
    return object.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace velmo::detail
