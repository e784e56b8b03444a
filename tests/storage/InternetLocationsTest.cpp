#include <velmocore/storage/InternetLocations.h>

#include <unistd.h>

#include <filesystem>

#include "TestSupport.h"

namespace velmo {
namespace {

std::string number(std::size_t value, int size = 4) {
    std::string bytes;
    while (size-- > 0) bytes += static_cast<char>(value >> (8 * size));
    return bytes;
}

/// An AppleDouble file with a type and a fork of resources, each the only one of its type.
std::string appleDouble(const std::string& type, const std::vector<std::pair<std::string, std::string>>& resources) {
    std::string data, types, references;
    for (const auto& [kind, content] : resources) {
        types += kind + number(2 + 8 * resources.size() + references.size());
        references += number(256, 2) + number(0xFFFF, 2) + number(data.size()) + number(0);
        data += number(content.size()) + content;
    }
    const std::string map = std::string(24, '\0') + number(28, 2) + number(resources.size() - 1) + types + references;
    const std::string fork =
        number(16) + number(16 + data.size()) + number(data.size()) + number(map.size()) + data + map;
    return number(0x00051607) + std::string(20, '\0') + number(2, 2) + number(9) + number(50) + number(32) + number(2) +
           number(82) + number(fork.size()) + type + std::string(28, '\0') + fork;
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

TEST(InternetLocations, AreReadInAllForms) {
    const std::string other = list("<key>Other</key><string>x</string>"),
                      text = "\xEF\xBB\xBF[InternetShortcut]\r\nA=b\r\nurl= http://h/ \r\nURL=x",
                      both = appleDouble("ilht", {{"TEXT", "text"}, {"url ", "http://r/"}}),
                      only = appleDouble("ilvn", {{"drag", "x"}, {"TEXT", "http://t/"}}),
                      bad = appleDouble("ilht", {{"url ", "\xFF"}, {"TEXT", "t"}}),
                      link = appleDouble("LINK", {{"TEXT", "t"}});
    const struct {
        std::string content;
        View extension;
        std::string beside, result;
    } cases[] = {
        {Named, u"WebLoc", "", "http://h/ N"},
        {"\xEF\xBB\xBF" + Named, u"webbookmark", both, "http://h/ N"},
        {Named, u"txt", "", "absent"},
        {Named, u"txt", both, "http://h/ N"},
        {other, u"webloc", both, "http://r/"},
        {other, u"webloc", "", "absent"},
        {list("<key>URL</key><integer>1</integer>"), u"webloc", only, "http://t/"},
        {"", u"txt", only, "absent"},
        {"", u"inetloc", bad, "absent"},
        {text, u"URL", "", "http://h/"},
        {text, u"txt", link, "http://h/"},
        {" http://bare/ \n", u"url", "", "http://bare/"},
        {"http://bare/", u"txt", link, "absent"},
        {"http://a/\nhttp://b/\n", u"url", both, "absent"},
        {" \n", u"url", "", "absent"},
        {"URL=\xFF", u"url", "", "absent"},
        {test::readData("locations/pliststyle.webloc"), u"webloc", "", "https://github.com/peterc/webloc"},
        {test::readData("locations/oldstyle.webloc"), u"webloc", "", "https://github.com/peterc/webloc"},
        {test::readData("locations/xml-content.url"), u"url", "", "http://coffeescript.org/"},
    };
    for (const auto& [content, extension, beside, result] : cases)
        EXPECT_EQ(resolved(content, extension, beside), result) << content;
}

// What is cut has its URL or none; what is damaged is read without harm.
TEST(InternetLocations, SurviveDamage) {
    const std::string resources = appleDouble("ilht", {{"TEXT", "text"}, {"url ", "http://r/"}});
    for (std::string sample :
         {test::readData("locations/pliststyle.webloc"), test::readData("locations/oldstyle.webloc"), resources}) {
        const auto read = [&](std::string_view bytes) { return resolved(bytes, u"webloc", bytes); };
        const std::string whole = read(sample);
        EXPECT_NE(whole, "absent");
        for (std::size_t i = 0; i < sample.size(); ++i) {
            const std::string cut = read(std::string_view(sample).substr(0, i));
            EXPECT_TRUE(cut == "absent" || cut == whole) << i << " " << cut;
            for (int change = 0; change < 256; ++change) ++sample[i], read(sample);
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
    for (const String& none : {String(), String(u""), String(u"\xD800")})
        EXPECT_FALSE(createInternetLocation(none, folder / "b"));
    EXPECT_FALSE(createInternetLocation(u"h", u"") || createInternetLocation(u"h", folder) ||
                 createURL(URL(), folder / "b"));
    EXPECT_FALSE(std::filesystem::exists(folder / "b"));
    std::ofstream(folder / "._a", std::ios::binary) << appleDouble("ilft", {{"url ", "ftp://h/"}});
    EXPECT_TRUE(isInternetLocationFile(folder / "a"));
    EXPECT_EQ(resolveInternetLocation(folder / "a").url, u"ftp://h/");
    EXPECT_FALSE(isInternetLocationFile(folder / "b") || resolveInternetLocation(folder / "none.webloc"));
    std::filesystem::remove_all(folder);
}

TEST(InternetLocations, HaveTheExtensionOfTheirScheme) {
    const std::tuple<View, View, View> cases[] = {
        // of the string, of the URL
        {u"HTTPS://h/", u"webloc", u"webloc"},           {u"sftp://h/", u"ftploc", u"ftploc"},
        {u"file:///x", u"fileloc", u"fileloc"},          {u"/x", u"fileloc", u"inetloc"},
        {u"mailto:abc@def.org", u"mailloc", u"mailloc"}, {u"news:a.b", u"inetloc", u"newsloc"},
        {u"nntp://h/", u"newsloc", u"newsloc"},          {u"VNC://h/", u"vncloc", u"vncloc"},
        {u"gopher://h/", u"inetloc", u"inetloc"},        {u"", {}, u"inetloc"}};
    for (const auto& [text, ofString, ofURL] : cases) {
        EXPECT_EQ(pathExtensionForInternetLocation(String(text)), String(ofString)) << String(text).utf8();
        EXPECT_EQ(pathExtensionForInternetLocation(URL::URLWithString(text)), String(ofURL)) << String(text).utf8();
    }
}

}  // namespace
}  // namespace velmo
