#include <velmocore/net/FormData.h>

#include "TestSupport.h"

namespace velmo {
namespace {

const std::string Field = "Content-Disposition: form-data;";

/// The fields as text, for comparison: NAME=VALUE, one after the other.
std::string read(const std::string& bytes, const String& boundary = u"B") {
    const auto form = formDataUsingBoundary(bytes, boundary);
    if (!form) return "absent";
    std::string text;
    for (const auto& [name, value] : *form) {
        const Data* data = value.as<Data>();
        text += name.utf8() + "=" + (data ? std::string(charsOf(*data)) : value.as<String>()->utf8()) + ";";
    }
    return text;
}
std::string part(const std::string& header, const std::string& body) {
    return "--B\r\n" + Field + header + "\r\n\r\n" + body + "\r\n";
}

TEST(FormData, ReadsParts) {
    const std::pair<std::string, const char*> cases[] = {
        {part(" name=\"a\"", "one") + part("name=\"b\"; filename=\"c.txt\"", std::string("\r\n\0--", 5)) + "--B--\r\n",
         nullptr},
        {part(" name=\"a\"", "one") + part(" name=\"a\"", "two") + "--B--\r\n", "a=two;"},
        {part(" name=\"a\"", "") + "--B--\r\n", "a=;"},
        {part(" name=\"\xC3\xA4\"\r\nContent-Type: text/plain", "x") + "--B--\r\n", "\xC3\xA4=x;"},
        {"--B\r\n" + Field + " name=\"a\"\r\n\r\n--B--\r\n", ""},     // its body would overlap the header
        {"--B\r\n" + Field + " name=\"a\"\r\n\r\none--B--\r\n", ""},  // no CR LF in front of the delimiter
        {"--B\r\ncontent-disposition: form-data; name=\"a\"\r\n\r\none\r\n--B--\r\n", ""},
        {part("abc", "x") + part("", "x") + part("    ", "x") + part(" name=\"\xFF\"", "x") + "--B--\r\n", ""},
        {"--B--\r\n", "absent"},  // not longer than the delimiter and four bytes
        {"\r\n--B--\r\n", ""},
        {part(" name=\"a\"", "one"), "absent"},
        {part(" name=\"a\"", "one") + "--B--", "absent"},
        {part(" name=\"a\"", "one") + "--C--\r\n", ""},
    };
    for (const auto& [bytes, expected] : cases)
        EXPECT_EQ(read(bytes), expected ? expected : std::string("a=one;b=\r\n\0--;b_filename=c.txt;", 31)) << bytes;
    EXPECT_EQ(read(cases[0].first, {}), "absent");
    EXPECT_EQ(read(""), "absent");
    EXPECT_EQ(read("--\r\n" + Field + "name=\"a\"\r\n\r\nx\r\n----\r\n", u""), "a=x;");
}

TEST(FormData, StandsDamage) {
    const std::string whole = part(" name=\"a\"", "one") + part(" name=\"b\"; filename=\"f\"", "two") + "--B--\r\n";
    for (std::size_t at = 0; at < whole.size(); ++at) {
        EXPECT_EQ(read(whole.substr(0, at)), "absent");
        for (const char byte : {'\0', '-', '\r', '"', '\xFF'}) {
            std::string damaged = whole;
            damaged[at] = byte;
            EXPECT_LE(read(damaged).size(), whole.size());
        }
    }
}

TEST(FormData, AppendsAndDecodes) {
    Data data;
    appendString(data, u"\u00E4");
    appendFormat(data, u"%@=%d", {u"n", 7});
    EXPECT_EQ(stringUsingUTF8Encoding(data), u"\u00E4n=7");
    EXPECT_EQ(stringUsingEncoding(data, ISOLatin1StringEncoding), u"\u00C3\u00A4n=7");
    EXPECT_TRUE(stringUsingUTF8Encoding("\xE4").isAbsent());
}

}  // namespace
}  // namespace velmo
