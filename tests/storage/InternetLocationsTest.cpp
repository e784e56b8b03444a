#include <velmocore/storage/InternetLocations.h>

#include <unistd.h>

#include <filesystem>

#include "TestSupport.h"

namespace velmo {
namespace {

std::string number(std::uint32_t value, int size = 4) {
    std::string bytes;
    while (size-- > 0) bytes += static_cast<char>(value >> (8 * size));
    return bytes;
}

using Resources = std::vector<std::pair<std::string, std::string>>;

/// A fork of resources, each the only one of its type.
std::string forkOf(const Resources& resources) {
    std::string data, types, references;
    for (const auto& [type, content] : resources) {
        const auto offset = static_cast<std::uint32_t>(2 + 8 * resources.size() + references.size());
        types += type + number(0, 2) + number(offset, 2);
        references += number(256, 2) + number(0xFFFF, 2) + number(static_cast<std::uint32_t>(data.size())) + number(0);
        data += number(static_cast<std::uint32_t>(content.size())) + content;
    }
    const auto count = static_cast<std::uint32_t>(resources.size()) - 1, size = static_cast<std::uint32_t>(data.size());
    const std::string map =
        std::string(24, '\0') + number(28, 2) + number(0, 2) + number(count, 2) + types + references;
    return number(16) + number(16 + size) + number(size) + number(static_cast<std::uint32_t>(map.size())) + data + map;
}

/// An AppleDouble file with the type and the fork.
std::string appleDouble(const std::string& type, const Resources& resources) {
    const std::string info = type + std::string(28, '\0'), fork = forkOf(resources);
    const std::uint32_t start = 26 + 2 * 12;
    return number(0x00051607) + number(0x00020000) + std::string(16, '\0') + number(2, 2) + number(9) + number(start) +
           number(32) + number(2) + number(start + 32) + number(static_cast<std::uint32_t>(fork.size())) + info + fork;
}

/// The URL, a space and the name.
std::string resolved(std::string_view content, View extension, std::string_view beside = {}) {
    const InternetLocation found = resolveInternetLocationData({Bytes(content), extension, Bytes(beside)});
    return (found ? found.url.utf8() : "absent") + (found.name.isAbsent() ? "" : " " + found.name.utf8());
}

std::string list(const std::string& members) {
    return "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>" + members + "</dict></plist>";
}
const std::string Named = list("<key>URL</key><string>http://h/</string><key>Name</key><string>N</string>");

TEST(InternetLocations, AreKnownByExtensionOrType) {
    EXPECT_EQ(InternetLocationTypes().size(), 22u);
    for (const char16_t* extension : {u"webloc", u"MailLoc", u"url", u"URL", u"webbookmark", u"vncloc"})
        EXPECT_TRUE(isInternetLocationExtension(extension, {}));
    for (const char16_t* type : {u"'LINK'", u"'ilht'", u"'ilns'"})
        EXPECT_TRUE(isInternetLocationExtension(u"txt", type));
    for (const char16_t* type : {u"'ilvn'", u"'link'", u"ilht", u"'ILHT'", u"''", u""})
        EXPECT_FALSE(isInternetLocationExtension(u"weblocs", type));
}

TEST(InternetLocations, AreReadInAllForms) {
    const std::string plain = "<key>Other</key><string>x</string>",
                      crlf = "\xEF\xBB\xBF[InternetShortcut]\r\nurl= http://h/ \r\n";
    const std::string both = appleDouble("ilht", {{"TEXT", "text"}, {"url ", "http://r/"}}),
                      text = appleDouble("ilvn", {{"drag", "x"}, {"TEXT", "http://t/"}}),
                      link = appleDouble("LINK", {{"TEXT", "t"}});
    const struct {
        std::string content;
        View extension;
        std::string beside, result;
    } cases[] = {
        {Named, u"webloc", "", "http://h/ N"},
        {"\xEF\xBB\xBF" + Named, u"webloc", both, "http://h/ N"},
        {Named, u"txt", "", "absent"},
        {Named, u"txt", both, "http://h/ N"},
        {list(plain), u"webloc", both, "http://r/"},
        {list(plain), u"webloc", "", "absent"},
        {list("<key>URL</key><integer>1</integer>"), u"webloc", text, "http://t/"},
        {"", u"inetloc", text, "http://t/"},
        {"", u"txt", text, "absent"},
        {"", u"webloc", appleDouble("ilht", {{"url ", "\xFF"}, {"TEXT", "t"}}), "absent"},
        {"[InternetShortcut]\nA=b\nUrL=http://h/\nURL=x\n", u"url", "", "http://h/"},
        {crlf, u"URL", "", "http://h/"},
        {crlf, u"txt", link, "http://h/"},
        {" http://bare/ \n", u"url", "", "http://bare/"},
        {"http://bare/", u"txt", link, "absent"},
        {"http://a/\nhttp://b/\n", u"url", both, "absent"},
        {" \n", u"url", "", "absent"},
        {"URL=\xFF", u"url", "", "absent"},
        {"<?xml?>\n" + Named, u"url", "", "absent"},
        {test::readData("locations/pliststyle.webloc"), u"webloc", "", "https://github.com/peterc/webloc"},
        {test::readData("locations/oldstyle.webloc"), u"webloc", "", "https://github.com/peterc/webloc"},
        {test::readData("locations/xml-content.url"), u"url", "", "http://coffeescript.org/"},
    };
    for (const auto& [content, extension, beside, result] : cases)
        EXPECT_EQ(resolved(content, extension, beside), result) << content;
}

// What is cut has its URL or none; what is damaged is read without harm.
TEST(InternetLocations, SurviveDamage) {
    const std::string double_ = appleDouble("ilht", {{"TEXT", "text"}, {"url ", "http://r/"}});
    const std::pair<std::string, std::function<std::string(const std::string&)>> samples[] = {
        {test::readData("locations/pliststyle.webloc"), [](const auto& bytes) { return resolved(bytes, u"webloc"); }},
        {test::readData("locations/oldstyle.webloc"), [](const auto& bytes) { return resolved(bytes, u"webloc"); }},
        {double_, [](const auto& bytes) { return resolved("", u"webloc", bytes); }},
    };
    for (const auto& [sample, read] : samples) {
        const std::string whole = read(sample);
        for (std::size_t i = 0; i < sample.size(); ++i) {
            const std::string cut = read(sample.substr(0, i));
            EXPECT_TRUE(cut == "absent" || cut == whole) << i << " " << cut;
            for (int value = 0; value < 256; ++value) {
                std::string damaged = sample;
                damaged[i] = static_cast<char>(value);
                read(damaged);
            }
        }
    }
}

TEST(InternetLocations, ComeBackAsWritten) {
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("velmo-locations-" + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    const Strings urls = {u"http://h/?a=1&b=<2>'\"", u"http://\u4E2D\u6587/\u00E9\xD83D\xDE00",
                          u"h/" + test::repeated(u"a\u00E9", 1500)};
    for (const String& url : urls) {
        EXPECT_TRUE(createInternetLocation(url, folder / "a.webloc"));
        EXPECT_EQ(resolveInternetLocation(folder / "a.webloc").url, url);
        EXPECT_TRUE(createURL(url, folder / "a.url"));
        EXPECT_EQ(resolveInternetLocation(folder / "a.url").url, url);
    }
    EXPECT_TRUE(createURL(URL::URLWithString(u"http://h/"), folder / "a.url"));
    EXPECT_EQ(test::readFile(folder / "a.url"), "[InternetShortCut]\nURL=http://h/\n");
    EXPECT_FALSE(createInternetLocation(u"", folder / "b") || createInternetLocation(String(u"\xD800"), folder / "b") ||
                 createInternetLocation(URL(), folder / "b") || createInternetLocation(u"h", u"") ||
                 createInternetLocation(u"h", folder) || createURL(String(), folder / "b") || createURL(u"h", Path()));
    EXPECT_FALSE(std::filesystem::exists(folder / "b"));
    std::ofstream(folder / "._a", std::ios::binary) << appleDouble("ilft", {{"url ", "ftp://h/"}});
    EXPECT_TRUE(isInternetLocationFile(folder / "a"));
    EXPECT_EQ(resolveInternetLocation(folder / "a").url, u"ftp://h/");
    EXPECT_FALSE(isInternetLocationFile(folder / "b"));
    EXPECT_TRUE(resolveInternetLocation(folder / "none.webloc").url.isAbsent());
    std::filesystem::remove_all(folder);
}

TEST(InternetLocations, HaveTheExtensionOfTheirScheme) {
    const struct {
        View text, ofString, ofURL;
    } cases[] = {
        {u"HTTP://h/", u"webloc", u"webloc"},
        {u"https://h/", u"webloc", u"webloc"},
        {u"sftp://h/", u"ftploc", u"ftploc"},
        {u"file:///x", u"fileloc", u"fileloc"},
        {u"/x", u"fileloc", u"inetloc"},
        {u"mailto:abc@def.org", u"mailloc", u"mailloc"},
        {u"news:a.b", u"inetloc", u"newsloc"},
        {u"nntp://h/", u"newsloc", u"newsloc"},
        {u"VNC://h/", u"vncloc", u"vncloc"},
        {u"gopher://h/", u"inetloc", u"inetloc"},
        {u"", {}, u"inetloc"},
    };
    for (const auto& [text, ofString, ofURL] : cases) {
        EXPECT_EQ(pathExtensionForInternetLocation(String(text)), String(ofString)) << String(text).utf8();
        EXPECT_EQ(pathExtensionForInternetLocation(URL::URLWithString(text)), String(ofURL)) << String(text).utf8();
    }
    EXPECT_TRUE(pathExtensionForInternetLocation(URL()).isAbsent());
}

}  // namespace
}  // namespace velmo
