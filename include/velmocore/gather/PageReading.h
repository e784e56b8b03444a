#pragma once

#include <velmocore/gather/PageRecord.h>
#include <velmocore/gather/PageSource.h>
#include <velmocore/platform/Export.h>
#include <velmocore/text/WebRules.h>
#include <velmocore/url/PageKey.h>
#include <velmocore/words/LanguageFilter.h>

namespace velmo {

/// How pages are read, and what is kept of them.
struct PageReadingOptions {
    WebRules web = WebRules::today();           ///< how pages are read
    const LanguageFilter* languages = nullptr;  ///< not owned; null leaves the language absent
    PageKeyOptions keys = {};                   ///< which addresses are of one page
    bool links = true;                          ///< with their texts and thumbnails
    bool keepBytes = false;                     ///< in the record, as they came
};

/// The road of a page, from its bytes to what is kept of it: its charset, its text, what it says of
/// itself, its links, its language and its key. A feed is a page of its items. Nothing fails: bytes
/// that say nothing, or none, make an empty text. The digest is left to be computed from the UTF-8
/// that the block of a store needs anyway. Any number of threads may read pages with one set of
/// options.
///
///     SourcePage page;
///     page.url = URL::URLWithString(u"http://www.h.org/a/?utm_source=x");
///     const std::string_view bytes = "<title>Ferrets</title><p>They <a href=dig.html>dig</a>";
///     page.bytes.assign(bytes.begin(), bytes.end());
///     const PageRecord record = readPage(std::move(page));
///     record.key;                  // http://h.org/a
///     record.text;                 // Ferrets\n\nThey dig
///     record.links[0].url;         // http://www.h.org/a/dig.html
[[nodiscard]] VELMO_API PageRecord readPage(SourcePage&& page,
                                            const PageReadingOptions& options = {});

}  // namespace velmo
