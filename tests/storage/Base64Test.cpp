#include <velmocore/storage/Base64.h>

#include "TestSupport.h"

namespace velmo {
namespace {

std::string decoded(View string) {
    const auto data = decodedBase64Data(string);
    return data ? std::string(charsOf(*data)) : "absent";
}

TEST(Base64, PublishedVectorsWithAndWithoutPadding) {
    const std::tuple<const char*, View, View> cases[] = {{"f", u"Zg==", u"Zg"},
                                                         {"fo", u"Zm8=", u"Zm8"},
                                                         {"foo", u"Zm9v", u"Zm9v"},
                                                         {"foob", u"Zm9vYg==", u"Zm9vYg"},
                                                         {"fooba", u"Zm9vYmE=", u"Zm9vYmE"},
                                                         {"foobar", u"Zm9vYmFy", u"Zm9vYmFy"}};
    for (const auto& [text, padded, bare] : cases) {
        EXPECT_EQ(encodedBase64Data(Bytes(text)), padded);
        EXPECT_EQ(encodebase64(String::fromUTF8(text)), bare);
        EXPECT_EQ(decoded(padded), text);
        EXPECT_EQ(decodebase64(padded).utf8(), text);
        EXPECT_EQ(decodebase64(bare).utf8(), text);
        EXPECT_TRUE(isBase64String(padded) && isBase64String(bare));
    }
    EXPECT_TRUE(encodedBase64Data({}).isAbsent());
    EXPECT_EQ(encodeBase64Bytes(Bytes("f"), u'.'), u"Zg..");
}

TEST(Base64, DamageShiftsNothingAndEqualSignsCount) {
    using namespace std::string_literals;
    const std::pair<View, std::string> cases[] = {
        {u"Zg", "f\0\0"s},        {u"Zg=", "f\0"s},     {u"====", "absent"},
        {u"=", "\0\0"s},          {u"", "absent"},      {u"Zm9v\nYmFy", "foo\1\x89\x85\xC8\0\0"s},
        {u"Zg==Zg==", "f\0\0f"s}, {u"Z\u0416==", "d"s}, {u"A=======", "absent"}};
    for (const auto& [string, expected] : cases) EXPECT_EQ(decoded(string), expected) << utf8(string);
    EXPECT_EQ(decodebase64(u"YQBi"), u"a");
    EXPECT_TRUE(decodebase64(u"AAAA").isAbsent());
    EXPECT_TRUE(decodebase64(u"/w==").isAbsent());
    EXPECT_EQ(decodebase64UsingEncoding(u"5A==", ISOLatin1StringEncoding), u"\u00E4");
    const String empty = String::empty();
    EXPECT_TRUE(decodebase64(empty).isIdenticalTo(empty) && decodebase64(String()).isAbsent());
    for (const auto wrong : {u"", u"=", u"Z", u"Zg=", u"Zm9vY", u"Zg=a", u"Z===", u"Zm 9v", u"Zm\n9v"})
        EXPECT_FALSE(isBase64String(wrong)) << utf8(wrong);
}

TEST(Base64, EveryByteComesBack) {
    std::mt19937 random(2);
    for (std::size_t length = 1; length < 200; ++length) {
        Data data(length);
        for (auto& byte : data) byte = static_cast<std::uint8_t>(random());
        EXPECT_EQ(decodedBase64Data(encodedBase64Data(data)), data);
    }
}

}  // namespace
}  // namespace velmo
