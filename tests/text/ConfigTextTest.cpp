#include <velmocore/text/ConfigText.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(ConfigText, MeaningfulLines) {
    const Strings expected = {u"host example.com", u"port 80", u"ab"};
    EXPECT_EQ(configLines(u"# comment\r\n\r\n  host example.com \t\r\n \u00A0# other\nport 80\n\nx\nab"), expected);
    EXPECT_TRUE(configLines(u"").empty());
    EXPECT_TRUE(configLines(u"x \n #y").empty());
}

TEST(ConfigText, Values) {
    const std::tuple<View, View, String> cases[] = {
        {u"name value", u"name", u"value"},   {u"NAME\t two words ", u"name", u"two words"},
        {u"namely value", u"name", String()}, {u"name", u"name", String()},
        {u"name   ", u"name", String()},      {u"name=value", u"name", String()},
        {u"name value", u"", String()},       {u"", u"name", String()},
    };
    for (const auto& [line, key, value] : cases) EXPECT_EQ(configValueForKey(line, key), value) << utf8(line);
}

TEST(ConfigText, TypedValues) {
    EXPECT_EQ(typedValueForKeys(u"TWO", {u"one", u"two"}), 1u);
    EXPECT_EQ(typedValueForKeys(u"three", {u"one", u"two"}), NotFound);
    EXPECT_EQ(typedValueForKeys(u"two", {u"one", View(), u"two"}), NotFound);
    EXPECT_EQ(typedValueForKeys(View(), {u""}), NotFound);
    for (const char16_t* text : {u"2", u"-1", u" 7x", u"YES", u"True", u"on", u"9999999999999999999999"})
        EXPECT_TRUE(boolValue(text)) << utf8(text);
    for (const char16_t* text : {u"", u"0", u"one", u"no", u"truely", u"y", u"+", u"x1"})
        EXPECT_FALSE(boolValue(text)) << utf8(text);
    EXPECT_FALSE(boolValue(String()));
}

}  // namespace
}  // namespace velmo
