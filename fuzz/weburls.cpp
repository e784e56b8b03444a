// The first line is a base, the rest a link: it is resolved as browsers do. What comes out is read as
// itself again, by the grammar too where it is a URL there, and its host and its key stay as they are.
#include <velmocore/url/DomainNames.h>
#include <velmocore/url/PageKey.h>
#include <velmocore/url/RelativeURLs.h>
#include <velmocore/url/URLVariants.h>

#include <algorithm>

#include "Input.h"

using namespace velmo;

namespace {

using fuzz::require;

constexpr WebRules Web = {.resolution = true};

URL readAlone(const String& text) {
    return URLWithStringRelativeTo(text, URL(), {.trimAnchor = false, .web = Web});
}

void checkSame(const URL& a, const URL& b) {
    require(a == b);
    for (std::size_t part = 0; part < NumberOfURLParts; ++part)
        require(String(a.part(static_cast<URLPart>(part))) ==
                String(b.part(static_cast<URLPart>(part))));
}

void checkURL(const URL& url) {
    if (url.isAbsent()) return;
    checkSame(url, readAlone(url.absoluteString()));
    const URL strict = URL::URLWithString(url.absoluteString());
    if (!strict.isAbsent()) checkSame(url, strict);
    const String key = pageKey(url);
    require(!key.isAbsent() && pageKey(URL::URLWithString(key)) == key);
    require(!URLWithoutAnchor(url).isAbsent() && !URLWithoutCredentials(url).isAbsent());
}

void checkHost(const String& host) {
    const String ascii = domainToASCII(host);
    require(domainToUnicode(host).isAbsent() == ascii.isAbsent());
    require(displayDomain(host).isAbsent() == ascii.isAbsent());
    if (ascii.isAbsent()) return;
    require(domainToASCII(ascii) == ascii);
    require(domainToUnicode(ascii) == domainToUnicode(host));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String text = fuzz::unitsOf(data, size);
    const std::size_t line = std::min(text.view().find(u'\n'), text.length());
    const String base = text.view().substr(0, line);
    const String link = text.view().substr(std::min(line + 1, text.length()));
    checkURL(readAlone(link));
    for (const URL& page : {readAlone(base), URL::URLWithString(base),
                            URL::URLWithString(u"http://me:pw@h.org/a/b.html"),
                            URL::URLWithString(u"file:///C:/a/b.html")})
        for (const StringEncoding encoding : {UTF8StringEncoding, ShiftJISStringEncoding})
            checkURL(
                URLRelativeTo(page, link, {.trimAnchor = false, .encoding = encoding, .web = Web}));
    checkHost(base);
    return 0;
}
