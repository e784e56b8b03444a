#include <velmocore/text/StringRanges.h>

#include "TestSupport.h"

namespace velmo {
namespace {

using View = std::u16string_view;
constexpr Range None = Range::none();

TEST(StringRanges, BetweenMarkers) {
    const struct {
        View text, start, end;
        bool required;
        SearchOptions options;
        Range expected;
    } cases[] = {
        {u"<b>bold</b>", u"<b>", u"</b>", false, DefaultSearch, {3, 4}},
        {u"<b></b>", u"<b>", u"</b>", true, DefaultSearch, {3, 0}},
        {u"<b>bold", u"<b>", u"</b>", false, DefaultSearch, {3, 4}},
        {u"<b>bold", u"<b>", u"</b>", true, DefaultSearch, None},
        {u"<b>bold", u"<b>", u"</b>", false, BackwardsSearch, None},
        {u"<b>bold", u"<b>", u"", false, DefaultSearch, {3, 4}},
        {u"<b>bold", u"", u"</b>", false, DefaultSearch, None},
        {u"<b>bold", u"<i>", u"</b>", false, DefaultSearch, None},
        {u"[a][b][c]", u"[", u"]", true, BackwardsSearch, {7, 1}},
        {u"<B>x</b>", u"<b>", u"</B>", true, CaseInsensitiveSearch, {3, 1}},
        {u"<B>x</b>", u"<b>", u"</B>", true, DefaultSearch, None},
        {u"[x\uFF3D", u"[", u"]", true, WidthInsensitiveSearch, {1, 1}},
        {u"[x\uFF3D", u"[", u"]", true, DefaultSearch, None},
        {u"", u"a", u"b", false, DefaultSearch, None},
    };
    for (const auto& c : cases)
        EXPECT_EQ(stringRangeWithStart(c.text, c.start, c.end, c.required, c.options), c.expected) << utf8(c.text);

    EXPECT_EQ(substringWithStart(u"<b>bold</b>", u"<b>", u"</b>"), u"bold");
    EXPECT_TRUE(substringWithStart(u"<b></b>", u"<b>", u"</b>").isAbsent());
    EXPECT_TRUE(substringWithStart(u"<b>", u"<b>", u"").isAbsent());
    StringRange range(u"<b>", u"");
    EXPECT_TRUE(range.end().isAbsent());
    EXPECT_EQ(substringWithStringRange(u"<b>bold", range), u"bold");
    std::u16string text = u"a<b>bold</b>c";
    deleteCharactersInStringRange(text, range);
    EXPECT_EQ(text, u"a<b>bold</b>c");
    deleteCharactersInRangeWithStart(text, u"<b>", u"</b>");
    EXPECT_EQ(text, u"ac");
}

TEST(StringRanges, OrderOfTheListWins) {
    EXPECT_EQ(findStrings(u"ab", {u"b", u"a"}), 1u);
    EXPECT_EQ(findStrings(u"abab", {u"x", u"b"}, DefaultSearch, 2), 3u);
    EXPECT_EQ(findStrings(u"abab", {u"B"}, CaseInsensitiveSearch | BackwardsSearch), 3u);
    EXPECT_EQ(findStrings(u"ab", {u"x", String(), u"a"}), NotFound);
    EXPECT_EQ(findStrings(u"ab", {u"b"}, DefaultSearch, 2), NotFound);
    EXPECT_EQ(findStrings(u"", {u""}), NotFound);
}

TEST(StringRanges, CharactersWithTheirMarks) {
    const struct {
        View text, sought;
        SearchOptions options;
        Range expected;
    } cases[] = {
        {u"xa\u0308y", u"\u00E4", DefaultSearch, {1, 2}},
        {u"x\u00E4y", u"a\u0308", DefaultSearch, {1, 1}},
        {u"xa\u0308y", u"a", DefaultSearch, None},
        {u"xa\u0308y", u"a", LiteralSearch, {1, 1}},
        {u"xa\u0308y", u"\u0308", DefaultSearch, None},
        {u"x\u00E4y", u"a\u0308", LiteralSearch, None},
        {u"xa\u0308y", u"a", DiacriticInsensitiveSearch, {1, 2}},
        {u"x\u00C4y", u"a", DiacriticInsensitiveSearch | CaseInsensitiveSearch, {1, 1}},
        {u"\u00E4a\u0308", u"\u00E4", BackwardsSearch, {1, 2}},
        {u"\uFF21\uFF22", u"AB", WidthInsensitiveSearch, {0, 2}},
        {u"\uFF21\uFF22", u"ab", WidthInsensitiveSearch | CaseInsensitiveSearch, {0, 2}},
        {u"\uFF21", u"A", DefaultSearch, None},
        {u"\U0001F600x", u"x", DefaultSearch, {2, 1}},
        {u"\u0416\u0436", u"\u0436", CaseInsensitiveSearch, {0, 1}},
        {u"a", u"\u0308", DiacriticInsensitiveSearch, None},
    };
    for (const auto& c : cases) {
        const Range range =
            stringRangeWithStart(c.text, c.sought, u"", false, c.options & BackwardsSearch ? DefaultSearch : c.options);
        if (!(c.options & BackwardsSearch)) {
            EXPECT_EQ(range.isFound() ? range.location : NotFound, c.expected.isFound() ? c.expected.end() : NotFound)
                << utf8(c.text) << ' ' << utf8(c.sought);
        }
        EXPECT_EQ(findStrings(c.text, {String(c.sought)}, c.options), c.expected.location)
            << utf8(c.text) << ' ' << utf8(c.sought);
    }
}

}  // namespace
}  // namespace velmo
