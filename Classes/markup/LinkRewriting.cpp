#include <velmocore/markup/LinkRewriting.h>

#include <velmocore/markup/Entities.h>
#include <velmocore/markup/LinkNormalising.h>
#include <velmocore/markup/PageResources.h>
#include <velmocore/platform/FunctionRef.h>
#include <velmocore/url/RelativeURLs.h>
#include <velmocore/url/URLSchemes.h>

#include "markup/PageRebuilding.h"
#include "markup/TagSupport.h"
#include "text/PatternScan.h"

namespace velmo {
namespace {

using namespace detail;

using Units = std::u16string_view;

/// What is written for the URL of a reference.
using WriteURL = FunctionRef<String(const URL& url)>;

/// Keeps the units, with the replacement wherever the sought ones stand.
void keepReplacing(Units units, Units sought, Units replacement, PageRebuilder& out) {
    for (std::size_t hit; (hit = firstOccurrence(units, sought, NoFold())) != NotFound;) {
        out.keep(units.substr(0, hit));
        out.write(replacement);
        units.remove_prefix(hit + sought.size());
    }
    out.keep(units);
}

/// The references of a page, rewritten.
String rewriteLinks(const String& page, const URL& base, const WebRules& web, WriteURL write) {
    if (base.isAbsent()) return page;
    return rebuiltPage(page, web, [&](const Tag& tag, PageRebuilder& out) {
        out.keepText(tag);
        const std::string_view attribute = getLinkAttribute(tag.name());
        if (attribute.empty()) return out.keepTag(tag), false;
        // What a script does with references is its own affair.
        const Units opening = openingTagOf(tag);
        const Units reference = attributeOf(opening, attribute, web);
        const URL url = URLRelativeTo(base, normalizedStringURL(reference, web), {.web = web});
        if (isDownloadableURL(url) || url.isFileURL())
            keepReplacing(opening, reference,
                          stringByConvertingCharactersToStandardEntities(write(url)), out);
        else
            out.keep(opening);
        out.keep(tag.whole().substr(opening.size()));
        return false;
    });
}

}  // namespace

String resolveLinksUsingBaseURL(const String& page, const URL& base, const WebRules& web) {
    return rewriteLinks(page, base, web, [](const URL& url) { return url.absoluteString(); });
}

String flattenLinksUsingBaseURL(const String& page, const URL& base, Units prefix,
                                const WebRules& web) {
    return rewriteLinks(page, base, web, [prefix](const URL& url) {
        const String name = url.lastPathComponent();
        return prefix.empty() ? name : prefix + name;
    });
}

}  // namespace velmo
