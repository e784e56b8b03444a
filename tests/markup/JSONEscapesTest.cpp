#include <velmocore/markup/JSONEscapes.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(JSONEscapes, Decodes) {
    using namespace std::string_view_literals;
    const std::tuple<const char16_t*, View, View> cases[] = {
        {u"\\b\\f\\n\\r\\t\\\"\\/\\\\\\q", u"\b\f\n\r\t\"/\\q"sv, u"\b\f\n\r\t\"/\\q"sv},
        {u"\\u00e9\\u00E9x", u"\u00E9\u00E9x"sv, u"\u00E9\u00E9x"sv},
        {u"\\u0g4z1", u"\u00401"sv, u"\u00401"sv},
        {u"\\u12", u"\u1200"sv, u"\u1200"sv},
        {u"\\u", u"\0"sv, u"\0"sv},
        {u"\\v\\x41\\O\\0", u"vx41O0"sv,
         u"\vA\0"
         u"0"sv},
        {u"\\x4", u"x4"sv, u"@"sv},
        {u"a\\", u"a\\"sv, u"a\\"sv},
        {u"\\ud83d\\ude00", u"\U0001F600"sv, u"\U0001F600"sv},
    };
    for (const auto& [text, json, script] : cases) {
        EXPECT_EQ(stringByConvertingJSONToCharacters(text), json) << utf8(text);
        EXPECT_EQ(stringByConvertingJavaScriptToCharacters(text), script) << utf8(text);
    }
}

TEST(JSONEscapes, GoesRoundAndKeepsItsReceiver) {
    std::u16string all;
    for (unsigned unit = 0; unit < 0x10000; ++unit) all += static_cast<char16_t>(unit);
    const String escaped = stringByConvertingCharactersToJSON(all);
    EXPECT_EQ(escaped.length(), all.size() + 8);
    EXPECT_EQ(stringByConvertingJSONToCharacters(escaped), all);
    EXPECT_EQ(stringByConvertingCharactersToJSON(u"\x08\t\n\x0B\f\r\"/\\'\x1B"),
              u"\\b\\t\\n\x0B\\f\\r\\\"\\/\\\\'\x1B");
    for (const String& same : {String(), String(u""), String(u"plain 'text' \u00E9")}) {
        EXPECT_TRUE(stringByConvertingJSONToCharacters(same).isIdenticalTo(same));
        EXPECT_TRUE(stringByConvertingCharactersToJSON(same).isIdenticalTo(same));
    }
}

}  // namespace
}  // namespace velmo
