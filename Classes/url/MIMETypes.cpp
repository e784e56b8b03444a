// Servers write one type in many ways: with "x-", with parameters, in other groups. So the tests
// look for what tells the kind, at the start, at the end or anywhere, and not for whole types.
// A few words count in exact case only; callers rely on that.
//
// Extensions and types are looked up in url/MIMEDatabase.h; what that does not know is told by the
// kind of the file, so that an image gets a type of an image.
#include <velmocore/url/MIMETypes.h>

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <string>

#include <velmocore/url/FileKinds.h>

#include "platform/Ascii.h"
#include "text/Keyword.h"
#include "url/FileKindTables.h"
#include "url/MIMEDatabase.h"

namespace velmo {
namespace {

using Units = std::u16string_view;

bool endsWith(Units type, std::string_view capitals) {
    return type.size() >= capitals.size() &&
           detail::keyword::equals(type.substr(type.size() - capitals.size()), capitals);
}

/// Whether one of the keywords, which are in capitals, stands at the end of a type.
bool endsWithAny(Units type, std::initializer_list<std::string_view> keywords) {
    return std::any_of(keywords.begin(), keywords.end(),
                       [type](std::string_view keyword) { return endsWith(type, keyword); });
}

/// The same for anywhere in a type.
bool containsAny(Units type, std::initializer_list<std::string_view> keywords) {
    return std::any_of(keywords.begin(), keywords.end(), [type](std::string_view keyword) {
        return detail::keyword::contains(type, keyword);
    });
}

/// In exact case.
bool contains(Units type, Units word) { return type.find(word) != Units::npos; }

// Units. Without a limit a foreign header would be copied and hashed whatever its length.
constexpr std::size_t LongestName = 127;

/// An extension or type as a key of the database: ASCII in lower case. Empty if it is none.
std::string keyOf(Units name) {
    std::string key;
    if (name.size() > LongestName) return key;
    for (char16_t unit : name) {
        // The database has ASCII only.
        if (unit >= 128) return {};
        key += static_cast<char>(detail::ascii::toLower(unit));
    }
    return key;
}

/// The units of ASCII; absent if there are none.
String stringOf(std::string_view ascii) {
    return ascii.empty() ? String() : String::fromUTF8(ascii);
}

String typeOfKind(Units kind, Units extension) {
    StringBuilder out(kind.size() + extension.size());
    out.append(kind);
    out.append(extension);
    return out.finish();
}

/// The type of what the database does not know, by the kind of the file.
String typeByKind(Units extension) {
    const auto isOneOf = [key = keyOf(extension)](detail::Extensions list) {
        return std::ranges::find(list, key) != list.end();
    };
    if (isOneOf(detail::pdfExtensions())) return u"application/pdf";
    if (isOneOf(detail::postScriptExtensions())) return u"application/postscript";
    if (isImageType(extension)) {
        const bool isJPEG = detail::keyword::equals(extension, "JPEG") ||
                            detail::keyword::equals(extension, "JPG") ||
                            detail::keyword::equals(extension, "JPE");
        return isJPEG ? String(u"image/jpeg") : typeOfKind(u"image/", extension);
    }
    if (isMultimediaType(extension, {.audio = true})) return typeOfKind(u"audio/", extension);
    if (isMultimediaType(extension, {.video = true})) return typeOfKind(u"video/", extension);
    if (isMultimediaType(extension, {.video = true, .embedded = true}))
        return typeOfKind(u"application/", extension);
    return {};
}

Units withoutParameters(Units type) {
    type = type.substr(0, type.find(u';'));
    const std::size_t end = type.find_last_not_of(u" \t");
    return end == Units::npos ? Units() : type.substr(0, end + 1);
}

}  // namespace

bool isMarkupMIMEType(Units type) {
    if (isTextMIMEType(type)) return true;
    return detail::keyword::beginsWith(type, "APPLICATION/") &&
           (containsAny(type, {"HTM", "SGML", "XML", "RSD", "ATOM"}) || contains(type, u"rdf") ||
            contains(type, u"rss"));
}

bool isHTMLMIMEType(Units type) {
    return isTextMIMEType(type) || detail::keyword::contains(type, "HTM");
}
bool isJSONMIMEType(Units type) { return endsWith(type, "/JSON"); }
bool isWebArchiveMIMEType(Units type) {
    return detail::keyword::equals(type, "APPLICATION/X-WEBARCHIVE");
}
bool isImageMIMEType(Units type) { return detail::keyword::beginsWith(type, "IMAGE/"); }
bool isTextMIMEType(Units type) { return detail::keyword::beginsWith(type, "TEXT/"); }
bool isPlainTextMIMEType(Units type) { return detail::keyword::beginsWith(type, "TEXT/PLAIN"); }
bool isStylesheetOrScriptMIMEType(Units type) {
    return containsAny(type, {"CSS", "JAVASCRIPT", "POINTPLUS"});
}
bool isRTFMIMEType(Units type) {
    return endsWithAny(type, {"/RTF", "/X-RTF"}) || contains(type, u"richtext");
}
bool isPDFMIMEType(Units type) { return endsWithAny(type, {"/PDF", "/X-PDF"}); }
bool isPostScriptMIMEType(Units type) {
    return endsWithAny(type, {"/POSTSCRIPT", "/X-POSTSCRIPT"});
}
bool isMSWordMIMEType(Units type) {
    return detail::keyword::contains(type, "MSWORD") ||
           endsWithAny(type, {"/DOC", "/DOCX", "/X-DOC", "/X-DOCX", "/DOT", "/X-DOT"});
}
bool isMSPowerPointMIMEType(Units type) {
    return containsAny(type, {"POWERPOINT", "/PPT", "/X-PPT"});
}
bool isMSExcelMIMEType(Units type) { return containsAny(type, {"EXCEL", "/XLS", "/X-XLS"}); }
bool isMSOfficeMIMEType(Units type) {
    return isMSWordMIMEType(type) || isMSPowerPointMIMEType(type) || isMSExcelMIMEType(type);
}
bool isOpenOfficeMIMEType(Units type) {
    return detail::keyword::contains(type, "/VND.OASIS.OPENDOCUMENT.TEXT");
}
bool isStarOfficeMIMEType(Units type) {
    return detail::keyword::contains(type, "/VND.SUN.XML.WRITER");
}
bool isMultimediaMIMEType(Units type) {
    return detail::keyword::beginsWith(type, "AUDIO/") ||
           detail::keyword::beginsWith(type, "VIDEO/") ||
           containsAny(type, {"/WMF", "/X-WMF", "/ASF", "/X-ASF", "/ASX", "/X-ASX", "MSMETAFILE"});
}

String MIMETypeForExtension(Units extension) {
    const std::string key = keyOf(extension);
    const String known = stringOf(detail::MIMEDatabase::installed().typeOf(key));
    return known.isAbsent() ? typeByKind(extension) : known;
}

String extensionForMIMEType(Units type) {
    const Units name = withoutParameters(type);
    // Two names of old browsers come first: the database may have them as aliases or not, and
    // the answer is not to depend on the machine.
    if (name == u"image/pjpg") return u"jpg";
    if (name == u"image/pjpeg") return u"jpeg";
    return stringOf(detail::MIMEDatabase::installed().extensionOf(keyOf(name)));
}

}  // namespace velmo
