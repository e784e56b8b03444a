// The pages of the site that tell of a search.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <velmocore/gather/PageSearch.h>

#include "gather/MarkupWriter.h"
#include "gather/SiteTarget.h"

namespace velmo::detail {

/// What was asked and what came of it.
struct SiteSearch {
    const SiteTarget& target;
    const SearchResult& result;
    const std::vector<String>& problems;  ///< what in the query cannot mean what was written
    double seconds = 0;
    bool images = false;
};

/// The results, with what counts them, and the way to more.
void writeResults(MarkupWriter& out, const SiteSearch& search);
/// Counts by language, host and year, each a link that narrows the search down.
void writeFacets(MarkupWriter& out, const SiteSearch& search);

/// "/page?..." of a result.
std::string addressOfPage(const SiteTarget& target, const SearchHit& hit);
/// A text with marks around its hits.
void writeMarked(MarkupWriter& out, std::u16string_view text, std::span<const Range> hits);
/// A link that leads away, if the address is one of the web; else mere text.
void writeOutside(MarkupWriter& out, const URL& url);
/// As "3 February 2009".
void writeDate(MarkupWriter& out, Date date);
/// " lang=..." of a page, for who reads it aloud.
void writeLanguage(MarkupWriter& out, std::u16string_view language);

/// The results as an Atom feed; the site is reached at the origin, as "http://127.0.0.1:8080".
std::string feedOfResults(const SiteSearch& search, std::string_view origin);
/// And as one JSON object.
std::string jsonOfResults(const SiteSearch& search);

}  // namespace velmo::detail
