// The first line is a base, the rest a reference: both are parsed, resolved, escaped and
// taken apart. What comes out must be a URL again, and the same one.
#include <velmocore/url/LinkFilter.h>
#include <velmocore/url/PercentEscapes.h>
#include <velmocore/url/QueryParameters.h>
#include <velmocore/url/URLConstruction.h>
#include <velmocore/url/URLSchemes.h>

#include <algorithm>

#include "Input.h"

using namespace velmo;

namespace {

using fuzz::require;

void checkURL(const URL& url) {
    if (url.isAbsent()) return;
    require(URL::URLWithString(url.absoluteString()) == url);
    const URL standard = url.standardizedURL();
    require(!standard.isAbsent() && standard.standardizedURL() == standard);
    require(url.rawPath().length() <= url.absoluteString().length());
    require(!url.path().isAbsent() && !url.lastPathComponent().isAbsent());
    require(numberOfQueryParams(url) >= queryParams(url).value_or(QueryParams()).size());
    isUsableURL(url);
    isDownloadableURL(url);
    require(isHostEqualTo(url, url) || (url.host().isAbsent() && !url.isFileURL()));
}

void checkEscapes(const String& text) {
    require(stringByReplacingStandardPercentEscapesOfURL(text).length() <= text.length());
    require(stringByReplacingASCIIPercentEscapesOfURL(text).length() <= text.length());
    require(stringByReplacingASCIIPercentEscapesOfURL(
                stringByAddingASCIIPercentEscapesToURL(text)) == text);
    const String escaped = stringByAddingPercentEscapesToURL(text, {.toBeEscaped = u"%"});
    require(escaped.isAbsent() || stringByReplacingPercentEscapesOfURL(escaped) == text);
    stringByFormattingQueryTerm(text, 4);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String text = fuzz::unitsOf(data, size);
    const std::size_t line = std::min(text.view().find(u'\n'), text.length());
    const String base = text.view().substr(0, line);
    const String reference = text.view().substr(std::min(line + 1, text.length()));

    const URL url = URL::URLWithString(reference, URL::URLWithString(base));
    require(url.isAbsent() == URL::URLWithString(reference).isAbsent());
    checkURL(url);
    checkURL(URLWithNormalizedStringURL(reference));
    checkEscapes(reference);

    filterLink(reference);
    isMailStringURL(reference);
    stringURLPathExtension(reference);
    queryParamNamed(reference, u"a");
    stringByReplacingQueryParamNamed(reference, u"a", base);
    return 0;
}
