// The first line is a base, the rest a reference: both are parsed, resolved, escaped and
// taken apart. What comes out must be a URL again, and the same one.
#include <velmocore/url/LinkFilter.h>
#include <velmocore/url/PercentEscapes.h>
#include <velmocore/url/QueryParameters.h>
#include <velmocore/url/URLConstruction.h>
#include <velmocore/url/URLSchemes.h>

#include <cstdlib>

using namespace velmo;

namespace {

void check(bool holds) {
    if (!holds) std::abort();
}

void checkURL(const URL& url) {
    if (url.isAbsent()) return;
    check(URL::URLWithString(url.absoluteString()) == url);
    const URL standard = url.standardizedURL();
    check(!standard.isAbsent() && standard.standardizedURL() == standard);
    check(url.rawPath().length() <= url.absoluteString().length());
    check(!url.path().isAbsent() && !url.lastPathComponent().isAbsent());
    check(numberOfQueryParams(url) >= queryParams(url).value_or(QueryParams()).size());
    isUsableURL(url);
    isDownloadableURL(url);
    check(isHostEqualTo(url, url) || (url.host().isAbsent() && !url.isFileURL()));
}

void checkEscapes(const String& text) {
    check(stringByReplacingStandardPercentEscapesOfURL(text).length() <= text.length());
    check(stringByReplacingASCIIPercentEscapesOfURL(text).length() <= text.length());
    check(stringByReplacingASCIIPercentEscapesOfURL(stringByAddingASCIIPercentEscapesToURL(text)) ==
          text);
    const String escaped = stringByAddingPercentEscapesToURL(text, {.toBeEscaped = u"%"});
    check(stringByReplacingPercentEscapesOfURL(escaped) == text);
    stringByFormattingQueryTerm(text, 4);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::size_t line = std::min(bytes.find('\n'), bytes.size());
    const String base = String::fromUTF8(bytes.substr(0, line));
    const String reference = String::fromUTF8(bytes.substr(std::min(line + 1, bytes.size())));

    const URL url = URL::URLWithString(reference, URL::URLWithString(base));
    check(url.isAbsent() == URL::URLWithString(reference).isAbsent());
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
