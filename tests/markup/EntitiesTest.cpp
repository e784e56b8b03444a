#include <velmocore/markup/Entities.h>

#include <set>

#include <velmocore/text/CharacterSets.h>
#include <velmocore/text/ConversionTables.h>

#include "TestSupport.h"
#include "markup/EntityTables.h"

namespace velmo {
namespace {

String decoded(const char16_t* text, EntityOptions options = {}) {
    return stringByConvertingEntitiesToCharacters(text, options);
}

constexpr EntityOptions Mild{.convertStandard = false};
constexpr EntityOptions Numbers{.convertStandard = false, .onlyNumericEntities = true};

TEST(Entities, TableIsWholeAndInOrder) {
    const auto rows = detail::entityRows();
    ASSERT_EQ(rows.size(), 246u);
    std::set<std::string_view> names;
    std::set<char16_t> units;
    for (const detail::EntityRow& row : rows) {
        names.insert(row.name);
        units.insert(row.unit);
        EXPECT_EQ(detail::unitOfEntity(row.name), row.unit) << row.name;
        EXPECT_EQ(detail::entityOfUnit(row.unit), row.name);
    }
    EXPECT_TRUE(names.size() == 246 && units.size() == 246);
    EXPECT_TRUE(*units.begin() == 160 && *units.rbegin() == 9830);
    EXPECT_EQ(rows[7].name, "agrave");
    EXPECT_EQ(rows[245].name, "euro");
    for (std::string_view no : {"", "amp", "gt", "lt", "quot", "cedil", "fnof", "apos", "EACUTE", "thetasymx", "e"})
        EXPECT_EQ(detail::unitOfEntity(no), 0) << no;
    EXPECT_EQ(detail::unitOfEntity({"\0nu", 3}), 0);
    EXPECT_EQ(detail::entityOfUnit(0x00B8), "");
}

TEST(Entities, DecodesWhatTheWebWrites) {
    using namespace std::string_view_literals;
    const std::tuple<const char16_t*, View, EntityOptions> cases[] = {
        {u"&eacute;&Eacute;&EACUTE;", u"\u00E9\u00C9&EACUTE;", {}},
        {u"&#x41;&#X41;&#65;", u"AAA", {}},
        {u"&#128512;&#xD800;&#55296;", u"\U0001F600\xD800\xD800", {}},
        {u"&#x10FFFF;&#x110000;&#4294967361;", u"\U0010FFFF&#x110000;A", {}},
        {u"&apos&lt&gt;&ampx&quot", u"'<>&x\"", {}},
        {u"&lt;&#60;&apos;&#65;&amp;&quot;&gt;&#38;&#34;&#x3e;", u"&lt;&#60;'A&amp;&quot;&gt;&#38;&#34;&#x3e;", Mild},
        {u"&eacute;&apos;&nbsp;&#65;", u"&eacute;'\u00A0A", Numbers},
        // At the end of the range the last unit counts as terminator.
        {u"&#65", u"\0065", {}},
        // Numbers without digits are 0.
        {u"a&#;b&#tb&#x;b", u"a\0b\0tb\0b"sv, {}},
        // A run and its terminator have 31 units at most.
        {u"&#00000000000000000000000000065;", u"A", {}},
        {u"&#000000000000000000000000000065;", u"&#000000000000000000000000000065;", {}},
        // Of each unit of a name only the low byte counts.
        {u"&\u0165acute;&\u0100nu;&cedil;&fnof;", u"\u00E9&\u0100nu;&cedil;&fnof;", {}},
    };
    for (const auto& [text, result, options] : cases) EXPECT_EQ(decoded(text, options), result) << utf8(text);
}

TEST(Entities, KeepsItsReceiver) {
    for (const char16_t* same : {u"", u"&lt", u"no reference", u"&foo; & &", u"&lt;&eacute"}) {
        const String text(same);
        EXPECT_TRUE(stringByConvertingEntitiesToCharacters(text, Numbers).isIdenticalTo(text));
    }
    // The length tells whether there is anything to do, so that umlauts stay.
    const String umlauts(u"\u00E4 & \u00F6");
    EXPECT_TRUE(stringByConvertingEntitiesToCharactersNonUmlauted(umlauts, true).isIdenticalTo(umlauts));
    EXPECT_EQ(stringByConvertingEntitiesToCharactersNonUmlauted(u"\u00E4&ouml;&#252;", true), u"aou");
    EXPECT_TRUE(stringByConvertingEntitiesToCharacters(String()).isAbsent());
}

/// The rules once more, unit by unit, with a linear search of the list.
std::u16string slowlyDecoded(std::u16string_view text, EntityOptions options) {
    std::u16string out;
    const auto plain = [&](char16_t unit) { out += options.nonUmlauted ? umlautsToAscii(unit) : unit; };
    std::size_t i = 0;
    const auto loose = [&](std::u16string_view form, char16_t unit) {
        if (text.compare(i, form.size(), form) != 0) return false;
        out += unit;
        i += form.size();
        if (i < text.size() && text[i] == u';') ++i;
        return true;
    };
    while (i < text.size()) {
        if (text[i] != u'&' || i + 1 == text.size()) {
            plain(text[i++]);
            continue;
        }
        if (loose(u"&apos", u'\'') || loose(u"&nbsp", 160)) continue;
        if (options.convertStandard &&
            (loose(u"&quot", u'"') || loose(u"&amp", u'&') || loose(u"&lt", u'<') || loose(u"&gt", u'>')))
            continue;
        const bool isNumber = text[i + 1] == u'#';
        if (!isNumber && options.onlyNumericEntities) {
            plain(text[i++]);
            continue;
        }
        std::size_t at = i + 1 + isNumber;
        const bool isHex = isNumber && at < text.size() && (text[at] == u'x' || text[at] == u'X');
        at += isHex;
        std::u16string run;
        while (at < text.size()) {
            const char16_t unit = text[at++];
            const bool isDigit = unit >= u'0' && unit <= u'9';
            const bool isHexDigit = isDigit || (unit >= u'a' && unit <= u'f') || (unit >= u'A' && unit <= u'F');
            if (isNumber ? !(isHex ? isHexDigit : isDigit) : !alphaNumCharacterSetRep().contains(unit)) break;
            if (at < text.size()) run += unit;
        }
        const std::size_t behind = at - (text[at - 1] != u';');
        bool done = at - i - 1 >= 2 && at - i - 1 <= 31;
        if (done && isNumber) {
            std::uint32_t value = 0;
            for (char16_t unit : run)
                value = value * (isHex ? 16 : 10) +
                        static_cast<std::uint32_t>(unit <= u'9' ? unit - u'0' : (unit | 32) - u'a' + 10);
            const bool isStandard = value == 34 || value == 38 || value == 60 || value == 62;
            if (value > 0x10FFFF || (isStandard && !options.convertStandard))
                done = false;
            else if (value < 0x10000)
                plain(static_cast<char16_t>(value));
            else {
                out += static_cast<char16_t>(0xD800 + ((value - 0x10000) >> 10));
                out += static_cast<char16_t>(0xDC00 + (value & 0x3FF));
            }
        } else if (done) {
            std::string name;
            for (char16_t unit : run) name += static_cast<char>(unit);
            done = false;
            for (const detail::EntityRow& row : detail::entityRows())
                if (!done && row.name == name) {
                    plain(row.unit);
                    done = true;
                }
        }
        if (done)
            i = behind;
        else
            plain(text[i++]);
    }
    return out;
}

TEST(Entities, AgreesWithTheSlowReading) {
    const auto parts = test::wordsOf(
        u"& & &# &#x ; ; amp lt gt quot apos nbsp eacute Omega thetasym x F 60 38 65 00000000 128512 4294967356 D83D "
        u" \u00E4 \u0165acute nu \u0100");
    std::mt19937 random(7);
    for (int round = 0; round < 40000; ++round) {
        std::u16string text;
        for (unsigned n = random() % 9; n > 0; --n) text += parts[random() % parts.size()];
        const EntityOptions options{random() % 2 == 0, random() % 2 == 0, random() % 3 == 0};
        const std::u16string expected = slowlyDecoded(text, options);
        std::u16string place = u"#" + text;
        const std::size_t length = convertEntities2Characters(place.data(), place.data(), 1, text.size(), options);
        ASSERT_EQ(utf8(place.substr(0, length)), utf8(expected)) << utf8(text);
        ASSERT_LE(length, text.size());
        const String result = stringByConvertingEntitiesToCharacters(text, options);
        if (text.size() > 3 && expected.size() != text.size()) {
            ASSERT_EQ(result, expected);
        } else {
            ASSERT_EQ(result, text);
        }
    }
}

TEST(Entities, StandardFormsNeedTheirSemicolon) {
    const std::pair<const char16_t*, const char16_t*> cases[] = {
        {u"&quot;&amp;&lt;&gt;", u"\"&<>"},
        {u"&#34;&#38;&#60;&#62;", u"\"&<>"},
        {u"&lt &#x3c; &apos; &#65; &lt", u"&lt &#x3c; &apos; &#65; &lt"},
        // A semicolon farther on decides on the length of the form.
        {u"&gt;a;", u"&gt;a;"},
        {u"&gt;;", u"&gt;;"},
        {u"&gt;ab;", u">ab;"},
        {u"&amp;amp;", u"&amp;"},
        {u"&lt;", u"<"},
        {u"&&lt;", u"&<"}};
    for (const auto& [text, result] : cases)
        EXPECT_EQ(stringByConvertingStandardEntitiesToCharacters(text), result) << utf8(text);
    const String same(u"nothing & nothing");
    EXPECT_TRUE(stringByConvertingStandardEntitiesToCharacters(same).isIdenticalTo(same));
}

TEST(Entities, EncodesAndBringsBack) {
    EXPECT_EQ(stringByConvertingCharactersToEntities(u"<\u00E9 & \u20AC \u00B8 \U0001F600>"),
              u"<&eacute; & &euro; &#184; &#55357;&#56832;>");
    EXPECT_EQ(stringByConvertingCharactersToEntities(u"<\u00E9\"'>", true), u"<&#233;\"'>");
    EXPECT_EQ(stringByConvertingCharactersToEntities(u"<\u00E9&\"'>", false), u"&lt;\u00E9&amp;&quot;'&gt;");
    const String ascii(u"plain <b>");
    EXPECT_TRUE(stringByConvertingCharactersToEntities(ascii).isIdenticalTo(ascii));
    EXPECT_TRUE(stringByConvertingHighCharactersToEntities(ascii).isIdenticalTo(ascii));
    EXPECT_TRUE(stringByConvertingCharactersToEntities(String(), true).isAbsent());

    std::u16string all;
    for (unsigned unit = 1; unit < 0x10000; ++unit) all += static_cast<char16_t>(unit);
    for (bool highOnly : {true, false}) {
        const String there = stringByConvertingCharactersToEntities(all, highOnly);
        EXPECT_TRUE(highOnly ? stringByConvertingEntitiesToCharacters(there, Mild) == all
                             : stringByConvertingStandardEntitiesToCharacters(there) == all);
    }
    EXPECT_EQ(stringByConvertingEntitiesToCharacters(stringByConvertingCharactersToEntities(all)), all);
}

}  // namespace
}  // namespace velmo
