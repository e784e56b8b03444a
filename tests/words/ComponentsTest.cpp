#include <velmocore/words/Components.h>

#include <velmocore/words/Separators.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(Components, EndWithTheirSeparators) {
    const std::tuple<String, Strings, Strings> cases[] = {
        {String(), {}, {}},
        {u"", {}, {}},
        {u"a.b.", {u"a.", u"b."}, {u"a", u"b"}},
        {u".a", {u".", u"a"}, {u"a"}},
        {u"?!", {u"?!"}, {}},
        {u"Yes. No?! Perhaps", {u"Yes.", u" No?!", u" Perhaps"}, {u"Yes", u" No", u" Perhaps"}},
        {u"a\r\nb", {u"a\r\n", u"b"}, {u"a", u"b"}},
    };
    for (const auto& [text, with, without] : cases) {
        SCOPED_TRACE(text.utf8());
        EXPECT_EQ(componentsUsingDefaultSeparation(text), with);
        EXPECT_EQ(componentsUsingSeparators(text, {.withSeparators = false}), without);
        EXPECT_EQ(numberOfComponentsUsingSeparators(text), with.size());
        Strings handled;
        EXPECT_EQ(parseComponentsWithHandler(text,
                                             [&](View units, Range component) {
                                                 handled.push_back(units.substr(component.location, component.length));
                                             }),
                  with.size());
        EXPECT_EQ(handled, with);
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
    const View text = u"One line\r\n\r\nand another one\n";
    const std::tuple<Range, std::uint64_t, std::uint64_t, std::uint64_t> cases[] = {
        {{0, NotFound}, 1, 2, 5}, {{0, 99}, 4, 2, 2}, {{4, 5}, 1, 1, 1},
        {{99, 1}, 1, 0, 0},       {{0, 0}, 1, 0, 0},  {Range::none(), 1, 0, 0}};
    for (const auto& [range, minLen, paragraphs, words] : cases) {
        const ParagraphCount count = numberOfParagraphs(text, range, minLen);
        EXPECT_EQ(count.paragraphs, paragraphs) << range.location;
        EXPECT_EQ(count.words, words) << range.location;
    }
    EXPECT_EQ(numberOfParagraphs(u"a\uFEFFb", {0, 3}).paragraphs, 1u);
}

}  // namespace
}  // namespace velmo
