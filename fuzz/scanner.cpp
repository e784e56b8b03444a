// The tag scanner with every attribute reader: spans lie inside the text and in order.
#include <velmocore/markup/TagAttributes.h>
#include <velmocore/markup/TagPredicates.h>
#include <velmocore/markup/TagScanner.h>

#include "Input.h"

using namespace velmo;

namespace {

void readAttributes(std::u16string_view tag, const WebRules& web) {
    for (const char* name : {"HREF", "A", "CONTENT", "WIDTH"}) {
        const Range range = rangeOfAttributeOfTagCharacters(tag, name, web);
        fuzz::require(!range.isFound() || (range.length > 0 && range.end() <= tag.size()));
        fuzz::require(attributeOfTagCharacters(tag, name, web).isAbsent() == !range.isFound());
    }
    const Range content = rangeOfContentAttributeOfTagCharacters(tag, web);
    fuzz::require(!content.isFound() || content.end() <= tag.size());
    attributeOfTagWithName(tag, u"style");
    attributeOfStyleWithName(tag, u"width");
    headerFieldNamed(tag, u"NAME");
    HTTPHeaderFieldNamed(tag, u"A");
    headerCharset(tag);
    headerRefresh(tag);
    getTagWidth(tag, web);
    backgroundStyleURLOfTagCharacters(tag, web);
    fuzz::require(!isMetaTag(tag) || !isRemarkTag(tag));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String page = fuzz::unitsOf(data, size);
    std::uint64_t expectedText = 0;
    bool ended = false;
    const WebRules web = fuzz::rulesOf(data, size);
    const auto handler = [&](const Tag& tag) {
        fuzz::require(!ended && tag.textLocation == expectedText);
        fuzz::require(tag.tagLocation <= page.length() || tag.tagLength == 0);
        // Only a script that is never closed may reach one unit too far.
        fuzz::require(tag.tagLocation + tag.tagLength <= page.length() + 1);
        if (tag.nameLength)
            fuzz::require(tag.nameLocation > tag.tagLocation &&
                          tag.nameLocation + tag.nameLength < tag.tagLocation + tag.tagLength);
        readAttributes(tag.whole(), web);
        expectedText = tag.tagLocation + tag.tagLength;
        ended = tag.kind == TagKind::End;
        return false;
    };
    const bool scanned = GetTagsOfString(page, handler, web);
    fuzz::require(scanned == !page.isEmpty() && ended == scanned);
    readAttributes(page, web);
    isHTML(page);
    fixedXml(page);
    return 0;
}
