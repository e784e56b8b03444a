#include <velmocore/markup/MetadataWriting.h>

#include <velmocore/markup/Entities.h>

#include "markup/MetaTag.h"
#include "markup/PageRebuilding.h"
#include "markup/TagSupport.h"

namespace velmo {
namespace {

using namespace detail;

using Units = std::u16string_view;

/// Where a base tag stands or may stand.
struct BasePlace {
    Range baseRange = Range::none();
    std::size_t headEnd = NotFound;
};

BasePlace basePlaceOf(Units page, const WebRules& web) {
    BasePlace place;
    const auto find = [&](const Tag& tag) {
        if (tag.nameLength != 4) return false;
        if (tag.isNamed("BODY")) return true;
        if (tag.isNamed("HEAD") && isOpening(tag)) place.headEnd = tag.tagLocation + tag.tagLength;
        if (!tag.isNamed("BASE") || attributeOf(tag, "HREF").empty()) return false;
        place.baseRange = {tag.tagLocation, tag.tagLength};
        return true;
    };
    GetTagsOfString(page, find, web);
    return place;
}

/// The page with a base tag in place of some of its units; without one for an empty URL.
String withBaseTag(Units page, Range range, const String& url) {
    StringBuilder out(page.size() + url.length() + 32);
    out.append(page.substr(0, range.location));
    if (!url.isEmpty()) {
        out.append(u"<BASE href=\"");
        out.append(stringByConvertingCharactersToStandardEntities(url));
        out.append(u"\"/>\n");
    }
    out.append(page.substr(range.location + range.length));
    return out.finish();
}

String withBaseAt(const String& page, std::size_t headEnd, const String& url) {
    return headEnd == NotFound || url.isEmpty() ? page : withBaseTag(page, {headEnd, 0}, url);
}

}  // namespace

String stringBySettingBaseURL(const String& page, const String& url, const WebRules& web) {
    if (url.isAbsent()) return page;
    const BasePlace place = basePlaceOf(page, web);
    return place.baseRange.isFound() ? withBaseTag(page, place.baseRange, url)
                                     : withBaseAt(page, place.headEnd, url);
}

String stringByAddingBaseURL(const String& page, const String& url, const WebRules& web) {
    if (url.isEmpty()) return page;
    const BasePlace place = basePlaceOf(page, web);
    return place.baseRange.isFound() ? page : withBaseAt(page, place.headEnd, url);
}

String stringByStrippingMetaAttributeWithName(const String& page, const String& name,
                                              const WebRules& web) {
    if (name.isAbsent()) return {};
    const MetaQuery query{MetaQuery::Attribute::Name, name};
    return rebuiltPage(page, web, [&](const Tag& tag, PageRebuilder& out) {
        out.keepText(tag);
        if (tag.isNamed("META")) {
            MetaTag meta(tag);
            if (query.matches(meta)) return false;
        }
        out.keepTag(tag);
        return false;
    });
}

}  // namespace velmo
