#include <velmocore/text/CharacterFinding.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(CharacterFinding, TheCaseRule) {
    const std::tuple<View, char16_t, CharacterSearch, std::uint64_t, std::uint64_t, std::size_t> cases[] = {
        {u"aaa", u'a', {}, NotFound, NotFound, 0},  // only the capital is looked for
        {u"aAaA", u'a', {}, 1, 3, 2},
        {u"aAaA", u'A', {}, 1, 3, 2},
        {u"aAaA", u'a', {.letterCase = Case::Insensitive}, 0, 3, 4},
        {u"x\u00E9\u00C9", u'\u00E9', {.letterCase = Case::Insensitive}, 1, 2, 2},
        {u"\u0131I\u017F", u'i', {.letterCase = Case::Insensitive}, 0, 1, 2},
        {u"a.b.c", u'.', {}, 1, 3, 2},
        {u"a.b.c", u'.', {.startAt = 2}, 3, 3, 1},
        {u"a.b", u'.', {.startAt = 3}, NotFound, NotFound, 0},
        {u"a.b", u'.', {.startAt = 99}, NotFound, NotFound, 0},
        {u"ab.", u'.', {.startAt = 3}, NotFound, NotFound, 0},
        {u"a.b", u'.', {.startAt = -5}, 1, 1, 1},
        {u"", u'.', {}, NotFound, NotFound, 0},
        {u"stra\u00DFe", u'\u00DF', {}, 4, 4, 1},
    };
    for (const auto& [text, unit, search, first, last, count] : cases) {
        SCOPED_TRACE(utf8(text));
        EXPECT_EQ(findCharacter(text, unit, search), first);
        EXPECT_EQ(findLastCharacter(text, unit, search), last);
        EXPECT_EQ(countCharacter(text, unit, search), count);
        EXPECT_EQ(containsCharacter(text, unit, search), count > 0);
    }
}

TEST(CharacterFinding, OneOfSeveral) {
    EXPECT_EQ(findOneOf(u"path?a#b", u"#?"), 4u);
    EXPECT_EQ(findOneOf(u"path?a#b", u"#?", {.startAt = 5}), 6u);
    EXPECT_EQ(findOneOf(u"abc", u"C"), NotFound);
    EXPECT_EQ(findOneOf(u"abc", u"C", {.letterCase = Case::Insensitive}), 2u);
    EXPECT_EQ(findOneOf(u"abc", u"c"), 2u);  // no replacement by the capital here
    EXPECT_EQ(findOneOf(u"abc", View()), NotFound);
    EXPECT_EQ(findOneOf(u"abc", u"c", {.startAt = 3}), NotFound);
    EXPECT_EQ(findOneOf(u"", u"c"), NotFound);
}

TEST(CharacterFinding, Punctuation) {
    EXPECT_TRUE(containsCharacters(u"a.b/c", FullStopMask | SlashMask));
    EXPECT_FALSE(containsCharacters(u"a.b", 5));
    EXPECT_FALSE(containsCharacters(u"a.b", 0));
    EXPECT_FALSE(containsCharacters(u"", 1));
    EXPECT_TRUE(containsCharacters(u"\u4E00.@/?;_*$", 255));
    const View marks = u".@/?;_*$";
    for (std::size_t i = 0; i < marks.size(); ++i)
        for (std::size_t bit = 0; bit < 8; ++bit)
            EXPECT_EQ(containsCharacters(marks.substr(i, 1), 1u << bit), i == bit);
}

TEST(CharacterFinding, AngleBrackets) {
    EXPECT_TRUE(countLTGT(u"<a></a>"));
    EXPECT_FALSE(countLTGT(u"plain"));
    EXPECT_FALSE(countLTGT(u""));
    const AngleBrackets odd = countLTGT(u"<a> < b and some more text >>>");
    EXPECT_FALSE(odd);
    EXPECT_EQ(odd.LT, 2u);
    EXPECT_EQ(odd.GT, 4u);
}

}  // namespace
}  // namespace velmo
