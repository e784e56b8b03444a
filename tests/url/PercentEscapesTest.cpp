#include <velmocore/url/PercentEscapes.h>

#include "TestSupport.h"
#include "text/SmallerMachine.h"

namespace velmo {
namespace {

TEST(PercentEscapes, StandardAndASCIIDecoding) {
    const std::tuple<const char16_t*, const char16_t*, const char16_t*> cases[] = {
        {u"%2", u"%2", u"%2"},
        {u"%2F", u"/", u"/"},
        {u"%2f", u"/", u"/"},
        {u"a%2", u"a%2", u"a%2"},
        {u"a%2Fb%", u"a/b%", u"a/b%"},
        {u"%41%7A", u"%41%7A", u"Az"},
        {u"%3F", u"?", u"?"},
        {u"a?%3F", u"a?%3F", u"a??"},
        {u"%3Fa?", u"%3Fa?", u"?a?"},
        {u"%G0%%2F", u"%G0%/", u"%G0%/"},
        {u"%C3%A4%80%FF", u"%C3%A4%80%FF", u"%C3%A4%80%FF"},
        {u"%252F", u"%2F", u"%2F"},
        {u"%7E%7F%00", u"~%7F%00", nullptr},
        {u"%09%0A%0D%20%24%25%26%27%2B%2F%3A%3B%3D%40", u"\t\n\r $%&'+/:;=@", u"\t\n\r $%&'+/:;=@"},
        {u"\u00E4%26\u20AC", u"\u00E4&\u20AC", u"\u00E4&\u20AC"}};
    for (const auto& [given, standard, ascii] : cases) {
        EXPECT_EQ(stringByReplacingStandardPercentEscapesOfURL(given), standard) << String(given);
        if (ascii) { EXPECT_EQ(stringByReplacingASCIIPercentEscapesOfURL(given), ascii) << String(given); }
    }
    for (const char16_t* same : {u"", u"%2", u"plain", u"%zz%"}) {
        const String string(same);
        EXPECT_TRUE(stringByReplacingStandardPercentEscapesOfURL(string).isIdenticalTo(string));
        EXPECT_TRUE(stringByReplacingPercentEscapesOfURL(string).isIdenticalTo(string));
    }
    EXPECT_TRUE(stringByReplacingASCIIPercentEscapesOfURL(String()).isAbsent());
    // Every value, each in an array of its own.
    int decoded = 0;
    for (int value = 0; value < 256; ++value) {
        char16_t escape[] = {u'%', u"0123456789abcdef"[value >> 4], u"0123456789ABCDEF"[value & 15]};
        decoded += convertPercentEscapesOfURL(escape, 3, true) == 1;
    }
    EXPECT_EQ(decoded, 16);  // the fifteen codes and ?
}

TEST(PercentEscapes, StandardAndASCIIEscaping) {
    EXPECT_EQ(stringByAddingStandardPercentEscapesToURL(u" #$%&+/:;=?@a!\u00E4"),
              u"%20%23%24%25%26%2b%2f%3a%3b%3d%3f%40a!\u00E4");
    EXPECT_EQ(stringByAddingASCIIPercentEscapesToURL(u"aZ9-_.~\n\x7F\u00E4\uFFFF"),
              u"aZ9%2d%5f%2e%7e%0a%7f\u00E4\uFFFF");
    const String plain(u"abc\u00E4"), empty(u"");
    EXPECT_TRUE(stringByAddingStandardPercentEscapesToURL(plain).isIdenticalTo(plain));
    EXPECT_TRUE(stringByAddingASCIIPercentEscapesToURL(empty).isIdenticalTo(empty));
    EXPECT_TRUE(stringByAddingASCIIPercentEscapesToURL(String()).isAbsent());
    std::u16string all;
    for (char16_t unit = 1; unit < 300; ++unit) all += unit;
    EXPECT_EQ(stringByReplacingASCIIPercentEscapesOfURL(stringByAddingASCIIPercentEscapesToURL(all)), all);
}

TEST(PercentEscapes, EscapesWhatAURLMayNotHold) {
    const std::tuple<const char16_t*, PercentEscapeOptions, const char16_t*> cases[] = {
        {u"http://h/a b?c#d", {}, u"http://h/a%20b?c#d"},
        {u"a#b#c", {}, u"a#b%23c"},
        {u"a%20b%2%", {}, u"a%20b%252%25"},
        {u"\"<>\\^`{|}\x01\x7F", {}, u"%22%3C%3E%5C%5E%60%7B%7C%7D%01%7F"},
        {u"!$&'()*+,-./09:;=?@AZ_az~", {}, u"!$&'()*+,-./09:;=?@AZ_az~"},
        {u"\u00E4\u20AC\U0001F600", {}, u"%C3%A4%E2%82%AC%F0%9F%98%80"},
        {u"\u00E4", {.encoding = 5}, u"%E4"},
        {u"\u20AC", {.encoding = 5}, nullptr},
        {u"\u00E4", {.encoding = 1}, nullptr},
        {u"\xD83D", {}, nullptr},
        {u"http://[::1]/[1]", {}, u"http://[::1]/%5B1%5D"},
        {u"http://u@[::1]:8/", {}, u"http://u@[::1]:8/"},
        {u"a[b]//[c]", {}, u"a%5Bb%5D//[c]"},
        {u"//h[1]/", {}, u"//h%5B1%5D/"},
        {u"a b|c", {.leaveUnescaped = u" |"}, u"a b|c"},
        {u"a/b:c", {.toBeEscaped = u"/"}, u"a%2Fb:c"},
        {u"a/b:c?d&e;f@g", {.toBeEscaped = {}}, u"a/b%3Ac%3Fd%26e%3Bf%40g"},
        {u"%41", {.toBeEscaped = u"%"}, u"%2541"}};
    for (const auto& [string, options, expected] : cases)
        EXPECT_EQ(stringByAddingPercentEscapesToURL(string, options), String(expected)) << String(string);
    const String fine(u"http://h/a%20b");
    EXPECT_TRUE(stringByAddingPercentEscapesToURL(fine).isIdenticalTo(fine));
    EXPECT_TRUE(stringByAddingPercentEscapesToURL(String()).isAbsent());
}

TEST(PercentEscapes, DecodesInAnEncoding) {
    EXPECT_EQ(stringByReplacingPercentEscapesOfURL(u"a%C3%A4b%41\u00F6%E2%82%AC"), u"a\u00E4bA\u00F6\u20AC");
    EXPECT_EQ(stringByReplacingPercentEscapesOfURL(u"%E4%2", 5), u"\u00E4%2");
    EXPECT_EQ(stringByReplacingPercentEscapesOfURL(u"%EF%BF%BD"), u"\uFFFD");
    for (const char16_t* broken : {u"%E4", u"%C3a", u"%C3\u00A4", u"%EF%BF%BD%FF"})
        EXPECT_TRUE(stringByReplacingPercentEscapesOfURL(broken).isAbsent()) << String(broken);
    EXPECT_TRUE(stringByReplacingPercentEscapesOfURL(u"%E4", 1).isAbsent());
    EXPECT_EQ(stringByReplacingPercentEscapesOfURL(u"%83e%E9", 8), String());
    EXPECT_EQ(stringByReplacingPercentEscapesOfURL(u"/%83e/", ShiftJISStringEncoding), u"/\u30C6/");
    EXPECT_EQ(stringByReplacingPercentEscapesOfURL(u"%EF%BB%BFx"), u"\uFEFFx");
    EXPECT_TRUE(stringByReplacingPercentEscapesOfURL(u"%41", 987654).isAbsent());
    for (StringEncoding encoding :
         {ShiftJISStringEncoding, JapaneseEUCStringEncoding, ISO2022JPStringEncoding, UTF16BigEndianStringEncoding}) {
        const String text(u"/\u30C6 x\u3042|");
        const String escaped = stringByAddingPercentEscapesToURL(text, {.encoding = encoding});
        EXPECT_EQ(stringByReplacingPercentEscapesOfURL(escaped, encoding), text) << escaped;
    }
    EXPECT_TRUE(stringByReplacingPercentEscapesOfURL(String()).isAbsent());
}

TEST(PercentEscapes, WhatIsEscapedComesBack) {
    std::mt19937 random(3);
    for (int round = 0; round < 5000; ++round) {
        std::u16string text;
        for (unsigned n = random() % (round % 100 ? 20 : 3000); n > 0; --n)
            text += static_cast<char16_t>(random() % 3 ? random() % 128 : random() % 0xD800);
        const String escaped = stringByAddingPercentEscapesToURL(text, {.toBeEscaped = u"%"});
        ASSERT_EQ(stringByReplacingPercentEscapesOfURL(escaped), text);
    }
}

/// Runs of letters, escapes of characters and of parts of them, and what only looks like an escape.
String randomEscapes(std::mt19937& random, std::size_t length) {
    constexpr std::u16string_view Pieces[] = {
        u"%C3%A4", u"%e2%82%ac", u"%F0%9F%98%80",      u"%41", u"%00", u"%", u"%4", u"%%", u"%4G",
        u"%G4",    u"a",         u"some more letters", u"%20", u"%7f"};
    constexpr std::u16string_view Rare[] = {u"%C3",          u"%80",    u"%ED%A0%80", u"%C0%80",
                                            u"%F4%90%80%80", u"\u00E4", u"\u2534"};
    std::u16string text;
    const bool isSound = random() % 2;
    while (text.size() < length)
        text += isSound || random() % 200 ? Pieces[random() % std::size(Pieces)] : Rare[random() % std::size(Rare)];
    return text.substr(0, length);
}

TEST(PercentEscapes, AllMachinesDecodeTheSame) {
    std::mt19937 random(11);
    std::size_t absent = 0;
    for (int round = 0; round < 20000; ++round) {
        const String text = randomEscapes(random, random() % (round % 100 ? 300 : 12000));
        const String widest = stringByReplacingPercentEscapesOfURL(text);
        const test::WithoutAvx512 smaller;
        const String expected = stringByReplacingPercentEscapesOfURL(text);
        ASSERT_EQ(widest, expected) << text;
        ASSERT_EQ(widest.isAbsent(), expected.isAbsent()) << text;
        absent += widest.isAbsent();
    }
    EXPECT_GT(absent, 1000u);
    EXPECT_LT(absent, 19000u);
}

TEST(PercentEscapes, QueryTerms) {
    EXPECT_EQ(stringByFormattingQueryTerm(u"a \t b+c", 4), u"a+b%2Bc");
    EXPECT_EQ(stringByFormattingQueryTerm(u"a \t b+c", 4, false), u"a%20b+c");
    EXPECT_EQ(stringByFormattingQueryTerm(u"100% C# \u00E4 %20", 4), u"100%25+C%23+%C3%A4+%2520");
    EXPECT_EQ(stringByFormattingQueryTerm(u"\u00E4", 5), u"%E4");
    EXPECT_TRUE(stringByFormattingQueryTerm(u"\u20AC", 5).isAbsent());
    EXPECT_TRUE(stringByFormattingQueryTerm(String(), 4).isAbsent());
}

}  // namespace
}  // namespace velmo
