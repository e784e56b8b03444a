#include <velmocore/markup/PageMetadata.h>

#include <sys/mman.h>
#include <unistd.h>

#include <filesystem>
#include <set>
#include <sstream>

#include <velmocore/markup/EditableNotes.h>
#include <velmocore/markup/Entities.h>
#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/platform/Log.h>
#include <velmocore/text/Collapsing.h>
#include <velmocore/text/Trimming.h>

#include "TestSupport.h"

namespace velmo {
namespace {

/// All values by their names, each by its own operation. Absent ones stand there too.
using Values = std::map<std::string, String>;

constexpr std::pair<const char*, String (*)(View)> Operations[] = {
    {"title", htmlTitle},
    {"normalizedTitle", normalizedHtmlTitle},
    {"metaTitle", htmlMetaTitle},
    {"indexTitle", htmlMetaIndexTitle},
    {"keywords", htmlMetaKeywords},
    {"description", htmlMetaDescription},
    {"metaDate", htmlMetaDate},
    {"author", htmlMetaAuthor},
    {"copyright", htmlMetaCopyright},
    {"refresh", htmlMetaRefresh},
    {"date", htmlDate},
    {"canonical", htmlCanonicalURL},
    {"base", [](View page) { return htmlBaseURL(page).absoluteString(); }},
    {"note", [](View page) { return String(isFormattedNote(page) ? u"yes" : u"no"); }}};

void addAttributes(Values& values, const std::string& prefix, const MetaAttributes& attributes) {
    for (const auto& [name, value] : attributes) values[prefix + name.utf8()] = value;
}

void addSummary(Values& values, const HtmlMetaSummary& summary) {
    values["summary keywords"] = summary.keywords;
    values["summary description"] = summary.description;
    values["summary title"] = summary.title;
    values["summary index title"] = summary.indexTitle;
    values["summary date"] = summary.date;
}

Values valuesOfOperations(View page) {
    Values values;
    for (const auto& [name, operation] : Operations) values[name] = operation(page);
    addAttributes(values, "meta ", htmlMetaAttributes(page));
    addAttributes(values, "converted ", htmlMetaAttributesByConvertingEntitiesToCharacters(page));
    addSummary(values, htmlMetaKeywordsDescriptionTitleDate(page));
    return values;
}

Values valuesOfOneScan(View page) {
    const HtmlMetadata all = htmlMetadata(page, {.summary = true});
    Values values{{"title", all.title},
                  {"normalizedTitle", all.normalizedTitle},
                  {"metaTitle", all.metaTitle},
                  {"indexTitle", all.indexTitle},
                  {"keywords", all.keywords},
                  {"description", all.description},
                  {"metaDate", all.metaDate},
                  {"author", all.author},
                  {"copyright", all.copyright},
                  {"refresh", all.refresh},
                  {"date", all.date},
                  {"canonical", all.canonical},
                  {"base", all.base.absoluteString()},
                  {"note", all.isFormattedNote ? u"yes" : u"no"}};
    addAttributes(values, "meta ", all.attributes);
    addAttributes(values, "converted ", all.convertedAttributes);
    addSummary(values, all.summary);
    return values;
}

String valueOf(View page, const std::string& name) {
    const Values values = valuesOfOperations(page);
    const auto value = values.find(name);
    return value == values.end() ? String() : value->second;
}

String samplePage(const std::filesystem::path& path) {
    return stringWithMarkupData(Bytes(test::readFile(path.string())));
}

std::set<std::filesystem::path> samplePaths() {
    std::set<std::filesystem::path> paths;
    for (const auto& file : std::filesystem::directory_iterator(VELMO_PAGES))
        if (file.path().string().ends_with("html")) paths.insert(file.path());
    return paths;
}

TEST(PageMetadata, Values) {
    const std::tuple<const char16_t*, const char*, String> cases[] = {
        {u"<title>a &amp; b</title><title>c</title>", "title", u"a &amp; b"},
        {u"<title> a &amp;\n b </title>", "normalizedTitle", u"a &\n b"},
        {u"x<title/>", "title", u"x"},
        {u"</body><title>a</title>", "title", u""},
        {u"<title>a<b>c</title>", "title", u"c"},
        {u"<meta name=\"keywords\" content=\"a\"><META NAME='Keywords' content=b><meta name=dc.keywords content='c '>",
         "keywords", u"a b c"},
        {u"<meta name=keywords content=''><meta name=keywords>", "keywords", String()},
        {u"<meta property=\"og:title\" content=\"x\">", "metaTitle", u"x"},
        {u"<meta property=\"og:title\" content=\"x\">", "meta og:title", u"x"},
        {u"<meta property=title content=x><meta property=keywords content=y>", "metaTitle", String()},
        {u"<meta property=description content=x><meta name=og:description content=y>", "description", u"y"},
        {u"<meta name=IndexTitle content=a>", "indexTitle", u"a"},
        {u"<meta name=refresh content=a><meta HTTP-EQUIV=Refresh content='5; url=b'>", "refresh", u"5; url=b"},
        {u"<meta name=dc.rights content=a></meta name=copyright content=b>", "copyright", u"a b"},
        {u"<body><meta name=author content=a>", "author", String()},
        {u"<meta name=NAME property=p content=a><meta property=NAME content=b><meta content=c>", "meta name", u"a b"},
        {u"<meta name=a content=' &lt;b&gt;c&lt;/b&gt;\nd\n\n&eacute; '>", "converted a", u"c d \u00E9"},
        {u"<meta name=a content='b  &amp;\n c'><meta name=A content='&lt; d'>", "converted a", u"b & c < d"},
        {u"<meta NAME=\"Date\" CONTENT=\"2001\">", "date", u"2001"},
        {u"<meta name=\"article:publishDate\" content=a>", "date", u"a"},
        {u"<meta name=date content=''><meta http-equiv=Last-Modified content=a><meta name=date content=b>", "date",
         u"a"},
        {u"<meta name=date content=a><meta name=DC.date content=b>", "metaDate", u"a b"},
        {u"<link rel=\"canonical\" href=\"#x\"><link rel=x href=y></link rel=canonical href=z><link rel=CANONICAL "
         u"href=' a&amp;b '>",
         "canonical", u"a&b"},
        {u"<base target=x></base href=http://h/><base href='//i.org/'><base href=http://j/>", "base", u"http://i.org/"},
        {u"<base href='#'><base href=http://j/>", "base", String()},
        {u"<meta name=vw:iseditablenote content=0>", "note", u"yes"},
        {u"<meta name=VW:isEditableNote content=''>", "note", u"no"}};
    for (const auto& [page, name, value] : cases) EXPECT_EQ(valueOf(page, name), value) << String(page);
    const String page(u"<meta name=a content=b><meta http-equiv=a content=c>");
    EXPECT_EQ(htmlMetaAttributeWithName(page, u"A"), u"b");
    EXPECT_EQ(htmlMetaHTTPEquiv(page, u"A"), u"c");
    EXPECT_TRUE(htmlMetaAttributeWithName(page, String()).isAbsent());
    EXPECT_TRUE(htmlMetaHTTPEquiv(page, u"").isAbsent());
    for (const auto& [name, value] : valuesOfOperations(u"")) EXPECT_TRUE(value.isEmpty() || name == "note") << name;
}

TEST(PageMetadata, Summary) {
    const std::tuple<const char16_t*, const char*, String> cases[] = {
        {u"<title>a</title><meta name=\"title\" content=\"b\"><meta name=\"dc.title\" content=\"c\">", "title", u"c"},
        {u"<title></title><meta name=title content=b><title>a</title>", "title", u"b"},
        {u"<meta property=og:title content=a><meta name=dc.title content=b>", "title", u"a"},
        {u"<meta name=keywords content=a><meta property=Keywords content=b>", "keywords", u"a b"},
        {u"<meta name=keywords content=a><meta name=dc.keywords content=b><meta name=dc.keywords content=c>",
         "keywords", u"b c"},
        {u"<meta name=description content=a><meta property=og:description content=b><meta name=dc.description "
         u"content=c>",
         "description", u"b c"},
        {u"<body><meta name=description content=a>", "description", u"a"},
        {u"<meta name=indextitle content=a><meta name=IndexTitle content=b>", "index title", u"a"},
        {u"<meta name=x_date content=''><meta name=x http-equiv=last-modified content=a><meta name=date content=b>",
         "date", u"a"},
        {u"<meta name=other content=a>", "title", String()}};
    for (const auto& [page, name, value] : cases)
        EXPECT_EQ(valueOf(page, std::string("summary ") + name), value) << String(page);
}

TEST(PageMetadata, DateAttributes) {
    for (const std::u16string& name : test::wordsOf(u"date PDATE updated dateGen DisplayDate date.x dc.date dc.DATED "
                                                    u"x_date xPubDate publicationdate x:publishDate"))
        EXPECT_TRUE(isDateAttribute(name)) << String(name);
    for (const std::u16string& name :
         test::wordsOf(u" dates updatedx xdate dc_dates pubdatex lastdate published dc.dat datex"))
        EXPECT_FALSE(isDateAttribute(name)) << String(name);
}

TEST(PageMetadata, OneScanGivesWhatEachOperationGives) {
    setLogHandler([](std::string_view) {});
    for (const auto& path : samplePaths()) {
        const String page = samplePage(path);
        EXPECT_EQ(valuesOfOneScan(page), valuesOfOperations(page)) << path;
    }
    constexpr View Parts[] = {u"<title>",
                              u"</title>",
                              u"<title/>",
                              u"<body>",
                              u"</body>",
                              u"<head>",
                              u"<meta name=",
                              u"<meta property=",
                              u"<meta http-equiv=",
                              u"<link rel=canonical href=",
                              u"<base href=",
                              u"title",
                              u"dc.title",
                              u"og:title",
                              u"keywords",
                              u"dc.keywords",
                              u"description",
                              u"date",
                              u"refresh",
                              u"IndexTitle",
                              u"last-modified",
                              u" content=",
                              u"'",
                              u"a",
                              u"http://h/",
                              u"#",
                              u">",
                              u">",
                              u">",
                              u"&lt;b>",
                              u" ",
                              u"=",
                              u"/",
                              u"<script>",
                              u"</script>",
                              u"<!--",
                              u"-->",
                              u"VW:isEditableNote"};
    std::mt19937 random(3);
    for (int round = 0; round < 20000; ++round) {
        std::u16string page;
        for (std::size_t i = random() % 24; i > 0; --i) page += Parts[random() % std::size(Parts)];
        ASSERT_EQ(valuesOfOneScan(page), valuesOfOperations(page)) << String(page);
    }
    setLogHandler(nullptr);
}

// A page of 10 MB of which only the memory pages that the head stands on may be read.
class PageOfReadableHead {
public:
    explicit PageOfReadableHead(View head) {
        const auto pageSize = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        readable_ = (head.size() * sizeof(char16_t) / pageSize + 2) * pageSize;
        units_ =
            static_cast<char16_t*>(mmap(nullptr, Size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        std::fill(std::copy(head.begin(), head.end(), units_), units_ + readable_ / sizeof(char16_t), u'>');
        mprotect(reinterpret_cast<char*>(units_) + readable_, Size - readable_, PROT_NONE);
    }
    ~PageOfReadableHead() { munmap(units_, Size); }

    View view() const { return {units_, Size / sizeof(char16_t)}; }
    /// All that can have been looked at.
    std::size_t readableUnits() const { return readable_ / sizeof(char16_t); }

private:
    static constexpr std::size_t Size = 10 << 20;
    char16_t* units_;
    std::size_t readable_;
};

TEST(PageMetadata, LooksNoFurtherThanTheBodyTag) {
    const String head = samplePage(VELMO_PAGES "/cc-about-en.html");
    const std::u16string_view upToBody = head.view().substr(0, head.view().find(u"<body"));
    const PageOfReadableHead page(std::u16string(upToBody) + u"<body>");
    EXPECT_LT(page.readableUnits(), upToBody.size() + 8192);
    for (const auto& [name, operation] : Operations) EXPECT_EQ(operation(page.view()), operation(upToBody)) << name;
    EXPECT_EQ(htmlMetaAttributes(page.view()), htmlMetaAttributes(upToBody));
    EXPECT_EQ(htmlMetaAttributesByConvertingEntitiesToCharacters(page.view()).size(),
              htmlMetaAttributes(upToBody).size());
    EXPECT_EQ(htmlMetadata(page.view()).attributes, htmlMetaAttributes(upToBody));
    // The memory is what stops the others.
    EXPECT_DEATH((void)htmlMetaKeywordsDescriptionTitleDate(page.view()), "");
}

/// A value as a parser of HTML gives it.
String asParsed(const String& value) {
    const String text = stringByConvertingEntitiesToCharacters(value);
    return stringByTrimmingWhiteSpaces(stringByRemovingMultipleWhiteSpaces(text));
}

/// What there is to compare with the parser's values.
Values comparedValues(View page) {
    Values values = valuesOfOperations(page);
    std::erase_if(values, [](const auto& entry) {
        const std::string& name = entry.first;
        return name == "normalizedTitle" || name == "note" || name.starts_with("summary ") ||
               name.starts_with("converted ") || asParsed(entry.second).isEmpty();
    });
    for (auto& [name, value] : values) value = asParsed(value);
    return values;
}

// Where the rules differ from what the parser's tree says, and why they want it so.
const std::map<std::string, const char*> Differences = {
    {"readability-base-url-base-element-relative.html base", "a base must be a URL of the web, this one is a path"},
};

// The values beside it are those that scripts/head-values reads with an HTML5 parser.
TEST(PageMetadata, RealPagesAsAParserReadsThem) {
    std::map<std::string, Values> expected;
    std::istringstream lines(test::readData("head-values.tsv"));
    std::size_t count = 0;
    for (std::string page, name, value;
         std::getline(lines, page, '\t') && std::getline(lines, name, '\t') && std::getline(lines, value); ++count)
        expected[page][name] = String::fromUTF8(value);
    EXPECT_EQ(count, 114u);
    std::set<std::string> different;
    for (const auto& path : samplePaths()) {
        const std::string file = path.filename().string();
        Values found = comparedValues(samplePage(path)), &parsed = expected[file];
        for (const Values& names : {found, parsed})
            for (const auto& [name, value] : names) {
                if (found[name] == parsed[name] || !different.insert(file + " " + name).second) continue;
                EXPECT_TRUE(Differences.contains(file + " " + name)) << file << " " << name << "\n"
                                                                     << found[name] << "\n"
                                                                     << parsed[name];
            }
    }
    EXPECT_EQ(different.size(), Differences.size());
}

}  // namespace
}  // namespace velmo
