#include <velmocore/url/MIMETypes.h>

#include <set>

#include "TestSupport.h"
#include "url/MIMEDatabase.h"

namespace velmo {
namespace {

TEST(MIMETypes, KindsOfTypes) {
    const struct {
        bool (*isOf)(std::u16string_view);
        std::vector<const char16_t*> yes, no;
    } cases[] = {
        {isMarkupMIMEType,
         {u"TEXT/x", u"application/XHTML", u"Application/rss+x", u"application/x-atom", u"application/rdf"},
         {u"application/RSS", u"application/RDF", u"image/svg+xml", u"application/json", u" text/html"}},
        {isHTMLMIMEType, {u"text/plain", u"application/xHTMl", u"x/htm"}, {u"application/xml", u"text"}},
        {isJSONMIMEType, {u"Application/JSON", u"text/json"}, {u"application/json;x", u"application/ld+json"}},
        {isWebArchiveMIMEType, {u"application/X-webarchive"}, {u"application/x-webarchive "}},
        {isImageMIMEType, {u"Image/"}, {u"x-image/gif", u"image"}},
        {isTextMIMEType, {u"Text/css"}, {u"text"}},
        {isPlainTextMIMEType, {u"text/PLAIN; charset=utf-8"}, {u"text/html"}},
        {isStylesheetOrScriptMIMEType, {u"text/CSS", u"text/x-javascript", u"x-pointplus"}, {u"text/ecmascript"}},
        {isRTFMIMEType, {u"text/RTF", u"application/x-rtf", u"text/richtext;x"}, {u"text/RichText", u"text/rtf;x"}},
        {isPDFMIMEType, {u"x/PDF", u"x/x-pdf"}, {u"pdf", u"x/pdfx"}},
        {isPostScriptMIMEType, {u"x/PostScript", u"x/x-postscript"}, {u"postscript"}},
        {isMSWordMIMEType, {u"application/vnd.MSWord.x", u"x/dot", u"x/x-docx"}, {u"x/docm", u"doc"}},
        {isMSPowerPointMIMEType, {u"x/vnd.ms-PowerPoint", u"x/pptx", u"x/x-ppt"}, {u"ppt"}},
        {isMSExcelMIMEType, {u"x/vnd.ms-Excel", u"x/xlsx", u"x/x-xls"}, {u"xls"}},
        {isMSOfficeMIMEType, {u"x/dot", u"x/ppt", u"x/xls"}, {u"x/pdf"}},
        {isOpenOfficeMIMEType, {u"application/vnd.oasis.opendocument.TEXT-x"}, {u"vnd.oasis.opendocument.text"}},
        {isStarOfficeMIMEType, {u"application/vnd.sun.xml.Writer.x"}, {u"application/vnd.sun.xml.calc"}},
        {isMultimediaMIMEType, {u"Audio/x", u"video/", u"x/ASF", u"x/x-wmf", u"x-msmetafile"}, {u"audio", u"asx"}}};
    for (const auto& c : cases) {
        for (const auto* type : c.yes) EXPECT_TRUE(c.isOf(type)) << &c - cases << String(type);
        for (const auto* type : c.no) EXPECT_FALSE(c.isOf(type)) << &c - cases << String(type);
        EXPECT_FALSE(c.isOf({}));
    }
}

/// What holds with and without the machine's database.
TEST(MIMETypes, FromExtensionsAndBack) {
    const std::tuple<const char16_t*, const char16_t*, const char16_t*> cases[] = {
        {u"HTML", u"text/html", u"html"}, {u"jpe", u"image/jpeg", u"jpg"},
        {u"png", u"image/png", u"png"},   {u"pdf", u"application/pdf", u"pdf"},
        {u"ts", u"video/mp2t", u"ts"},    {u"ogg", u"audio/ogg", u"oga"},
        {u"COD", u"image/COD", nullptr},  {u"m75", nullptr, nullptr},
        {u"fid", u"video/fid", nullptr},  {u"postscript", u"application/postscript", u"ps"},
        {u"no such", nullptr, nullptr},   {u"\u212A", nullptr, nullptr},
        {u"", nullptr, nullptr},          {nullptr, nullptr, nullptr}};
    for (const auto& [extension, type, preferred] : cases) {
        EXPECT_EQ(MIMETypeForExtension(String(extension)), String(type)) << String(extension);
        if (type) { EXPECT_EQ(extensionForMIMEType(type), String(preferred)) << String(type); }
    }
    EXPECT_EQ(extensionForMIMEType(u"Text/HTML ; charset=utf-8"), u"html");
    EXPECT_EQ(extensionForMIMEType(u"image/pjpg"), u"jpg");
    EXPECT_EQ(extensionForMIMEType(u"image/pjpeg"), u"jpeg");
    EXPECT_TRUE(extensionForMIMEType({}).isAbsent());
    EXPECT_EQ(extensionForMIMEType(u"text/xml"), u"xml");
    EXPECT_EQ(extensionForMIMEType(u"image/X-Icon"), u"ico");
    EXPECT_EQ(extensionForMIMEType(u"audio/mp3"), u"mp3");
    EXPECT_EQ(extensionForMIMEType(u"application/javascript"), u"js");
}

TEST(MIMETypes, ReadsTheDatabase) {
    const detail::MIMEDatabase database(
        "# comment:x:*.no\n50:a/first:*.xyz\n50:a/second:*.xyz:\n60:a/heavy:*.xyz:noglob,cs2\n99:a/case:*.xyz:cs\n"
        "50:x/ts:*.ts\n50:video/mp2t:*.ts\n80:x/html:*.html\n:a/none:*.noweight\n50:a/b:*.tar.zz\n50:a/c:*.[1-9]\n"
        "50:a/d:makefile\n50::*.notype\n-7:a/e:*.minus\n99999999999:a/f:*.huge\n50\n\n50:a/last:*.last");
    const std::pair<const char*, const char*> types[] = {
        {"xyz", "a/heavy"}, {"ts", "video/mp2t"}, {"html", "x/html"}, {"noweight", "a/none"},
        {"tar.zz", "a/b"},  {"[1-9]", ""},        {"no", ""},         {"notype", ""},
        {"minus", "a/e"},   {"huge", "a/f"},      {"last", "a/last"}, {"css", "text/css"}};
    for (const auto& [extension, type] : types) EXPECT_EQ(database.typeOf(extension), type) << extension;
    EXPECT_EQ(database.extensionOf("a/first"), "xyz");
    EXPECT_EQ(database.extensionOf("text/html"), "html");
    const detail::MIMEDatabase named(
        "50:x/doc.macroEnabled:*.docm\n60:text/x-python:*.wsgi\n60:text/x-python:*.py\n50:text/x-c++src:*.c++",
        "a/other x/doc.macroEnabled\nA/Third text/html\ntext/x-c++src text/html\na/b no/such\n\n \na/c");
    EXPECT_EQ(named.typeOf("docm"), "x/doc.macroEnabled");
    const std::pair<const char*, const char*> extensions[] = {
        {"x/doc.macroenabled", "docm"}, {"a/other", "docm"},      {"a/third", "html"}, {"a/b", ""},
        {"text/x-python", "py"},        {"text/x-c++src", "cpp"}, {"a/c", ""},         {"", ""}};
    for (const auto& [type, extension] : extensions) EXPECT_EQ(named.extensionOf(type), extension) << type;
    const detail::MIMEDatabase ownOnly("");
    std::set<std::string_view> seen;
    for (const detail::MIMERow& row : detail::mimeRows()) {
        EXPECT_EQ(ownOnly.typeOf(row.extension), row.type);
        EXPECT_TRUE(seen.insert(row.extension).second) << row.extension;
    }
}

}  // namespace
}  // namespace velmo
