// The charset that a page names is the first one named in front of its body, by a meta tag or the
// XML declaration.
#include <velmocore/markup/MarkupCharset.h>

#include <velmocore/markup/Charsets.h>
#include <velmocore/markup/Entities.h>
#include <velmocore/markup/TagAttributes.h>
#include <velmocore/markup/TagScanner.h>

#include "markup/HeadCharset.h"
#include "markup/MarkupReading.h"
#include "markup/TagName.h"
#include "markup/TagScan.h"
#include "markup/TagWalk.h"
#include "text/Keyword.h"

namespace velmo {
namespace {

struct NamedCharset {
    String name = String::empty();
    Range tag = Range::none();
};

/// What a meta tag names; absent if nothing. An empty name is a name.
String charsetOfMetaTag(const Tag& tag) {
    String name = headerCharset(contentAttributeOfTagCharacters(tag.whole(), tag.web));
    if (name.isAbsent()) name = attributeOfTagCharacters(tag.whole(), "CHARSET", tag.web);
    return stringByConvertingEntitiesToCharacters(name);
}

/// The charset that the page names, and where. Tells through reachesFarther, if given, when
/// the answer may depend on what stands behind the text, which is then only a page's head.
template <class Walk>
NamedCharset findCharset(const Walk& walk, bool* reachesFarther = nullptr) {
    NamedCharset found;
    const auto find = [&](const Tag& tag) {
        const std::u16string_view name = tag.name();
        // The scan looks ahead for the end of a script or a style.
        if (reachesFarther &&
            (tag.kind == TagKind::End || detail::keyword::equals(name, "SCRIPT") ||
             detail::keyword::equals(name, "STYLE")))
            return *reachesFarther = true;
        String charset;
        if (name.size() == 4) {
            // Behind it no meta tag counts, and the rest of the page is not scanned.
            if (detail::keyword::equals(name, "BODY")) return true;
            if (!detail::keyword::equals(name, "META") || tag.isClosing()) return false;
            charset = charsetOfMetaTag(tag);
        } else if (detail::keyword::equals(name, "XML") && tag.whole()[1] == u'?') {
            charset = attributeOfTagCharacters(tag.whole(), "ENCODING", tag.web);
        }
        // A tag that names none does not end the search: pages have many meta tags.
        if (charset.isAbsent()) return false;
        found = {charset, {tag.tagLocation, tag.tagLength}};
        return true;
    };
    walk(find);
    return found;
}

/// The walk over those tags of UTF-8 that findCharset() looks at; most tags of a head are others.
auto tellingTagsOf(std::string_view utf8, const WebRules& web) {
    return [utf8, &web](TagHandler handler) {
        detail::WideTags wide({.text = detail::TagParts::Text::None});
        const auto handOn = [&](const detail::ByteTag& tag) {
            using detail::packed;
            switch (detail::packedName(tag)) {
                case packed("script"):
                case packed("style"):
                case packed("body"):
                case packed("meta"):
                case packed("xml"):
                    return handler(wide.of(tag));
                default:
                    return tag.kind == TagKind::End && handler(wide.of(tag));
            }
        };
        detail::scanTags(utf8, handOn, web);
    };
}

StringEncoding urlEncodingOf(const String& charset) {
    return charset2NSStringEncoding(charset) == ISOLatin1StringEncoding ? ISOLatin1StringEncoding
                                                                        : UTF8StringEncoding;
}

}  // namespace

String markupCharset(std::u16string_view page, const WebRules& web) {
    return findCharset(detail::scanOf(page, web)).name;
}

String detail::markupCharsetOfBytes(std::string_view utf8, const WebRules& web) {
    return findCharset(tellingTagsOf(utf8, web)).name;
}

String detail::markupCharsetOfHead(std::string_view head) {
    bool reachesFarther = false;
    const NamedCharset found = findCharset(tellingTagsOf(head, {}), &reachesFarther);
    return reachesFarther ? String() : found.name;
}

Range markupCharsetRange(std::u16string_view page, const WebRules& web) {
    return findCharset(detail::scanOf(page, web)).tag;
}

StringEncoding markupEncoding(std::u16string_view page, const WebRules& web) {
    return charset2NSStringEncoding(markupCharset(page, web));
}

StringEncoding headerEncoding(std::u16string_view contentType) {
    return charset2NSStringEncoding(headerCharset(contentType));
}

StringEncoding defaultURLEncoding(std::u16string_view page, const WebRules& web) {
    return urlEncodingOf(markupCharset(page, web));
}

StringEncoding detail::defaultURLEncodingOfBytes(std::string_view utf8, const WebRules& web) {
    return urlEncodingOf(markupCharsetOfBytes(utf8, web));
}

MarkupData markupData(const String& page) {
    if (page.isEmpty()) return {Data(), ASCIIStringEncoding};
    const StringEncoding named = markupEncoding(page);
    // Else in ASCII with references, which says the same in whatever encoding it is read.
    if (named != UnknownStringEncoding) return {dataUsingEncoding(page, named), named};
    return {dataUsingEncoding(stringByConvertingCharactersToEntities(page), ASCIIStringEncoding),
            ASCIIStringEncoding};
}

}  // namespace velmo
