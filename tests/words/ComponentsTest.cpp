#include <velmocore/words/Components.h>

#include <velmocore/words/Separators.h>

#include "TestSupport.h"

namespace velmo {
namespace {

using Strings = std::vector<String>;

TEST(Components, EndWithTheirSeparators) {
    const struct {
        String text;
        Strings with, without;
    } cases[] = {
        {String(), {}, {}},
        {u"", {}, {}},
        {u"a.b.", {u"a.", u"b."}, {u"a", u"b"}},
        {u".a", {u".", u"a"}, {u"a"}},
        {u"?!", {u"?!"}, {}},
        {u"Yes. No?! Perhaps", {u"Yes.", u" No?!", u" Perhaps"}, {u"Yes", u" No", u" Perhaps"}},
        {u"a\r\nb", {u"a\r\n", u"b"}, {u"a", u"b"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text.utf8());
        EXPECT_EQ(componentsUsingDefaultSeparation(c.text), c.with);
        EXPECT_EQ(componentsUsingSeparators(c.text, {.withSeparators = false}), c.without);
        EXPECT_EQ(numberOfComponentsUsingSeparators(c.text), c.with.size());
        Strings handled;
        EXPECT_EQ(parseComponentsWithHandler(c.text,
                                             [&](std::u16string_view units, Range component) {
                                                 handled.push_back(units.substr(component.location, component.length));
                                             }),
                  c.with.size());
        EXPECT_EQ(handled, c.with);
    }
    const String whole(u"whole");
    EXPECT_TRUE(componentsUsingDefaultSeparation(whole)[0].isIdenticalTo(whole));
    EXPECT_EQ(numberOfComponentsUsingSeparators(u"a, b; c. d", &defaultSentenceSeparators()), 2u);
    EXPECT_EQ(parseComponentsWithHandler(u"a", nullptr), 0u);
}

TEST(Components, MutableHandlersAndRanges) {
    std::u16string copy;
    EXPECT_EQ(parseMutableComponentsWithHandler(u"a.b.c",
                                                [&](std::span<char16_t> units, Range component) {
                                                    units[component.location] = u'x';
                                                    copy.assign(units.begin(), units.end());
                                                }),
              3u);
    EXPECT_EQ(copy, u"x.x.x");
    EXPECT_EQ(componentsOfCharacters(u"ab..c"), (std::vector<Range>{{0, 4}, {4, 1}}));
    EXPECT_EQ(numberOfComponentsInRange(u"a.b.c", {1, NotFound}), 3u);
    EXPECT_EQ(numberOfComponentsInRange(u"a.b.c", {5, 1}), 0u);
}

TEST(Components, Paragraphs) {
    const std::u16string_view text = u"One line\r\n\r\nand another one\n";
    const struct {
        Range range;
        std::uint64_t minLen, paragraphs, words;
    } cases[] = {{{0, NotFound}, 1, 2, 5}, {{0, 99}, 4, 2, 2}, {{4, 5}, 1, 1, 1},
                 {{99, 1}, 1, 0, 0},       {{0, 0}, 1, 0, 0},  {Range::none(), 1, 0, 0}};
    for (const auto& c : cases) {
        const ParagraphCount count = numberOfParagraphs(text, c.range, c.minLen);
        EXPECT_EQ(count.paragraphs, c.paragraphs) << c.range.location;
        EXPECT_EQ(count.words, c.words) << c.range.location;
    }
    EXPECT_EQ(numberOfParagraphs(u"a\uFEFFb", {0, 3}).paragraphs, 1u);
}

}  // namespace
}  // namespace velmo
