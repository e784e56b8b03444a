#include <velmocore/text/StringRanges.h>

#include <map>

#include <velmocore/text/ConversionTables.h>

#include "TestSupport.h"
#include "platform/Surrogates.h"
#include "platform/Unicode.h"
#include "text/SimpleUnits.h"
#include "text/SubstringSearch.h"

namespace velmo {
namespace {

constexpr Range None = Range::none();

TEST(StringRanges, BetweenMarkers) {
    const std::tuple<View, View, View, bool, SearchOptions, Range> cases[] = {
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
    for (const auto& [text, start, end, required, options, expected] : cases)
        EXPECT_EQ(stringRangeWithStart(text, start, end, required, options), expected) << utf8(text);

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
    const std::tuple<View, View, SearchOptions, Range> cases[] = {
        {u"xa\u0308y", u"\u00E4", DefaultSearch, {1, 2}},
        {u"xa\u0308y", u"a", LiteralSearch, {1, 1}},
        {u"x\u00E4y", u"a\u0308", LiteralSearch, None},
        {u"xa\u0308y", u"a", DiacriticInsensitiveSearch, {1, 2}},
        {u"\uFF21\uFF22", u"AB", WidthInsensitiveSearch, {0, 2}},
        {u"a", u"\u0308", DiacriticInsensitiveSearch, None},
    };
    for (const auto& [text, sought, options, expected] : cases)
        EXPECT_EQ(detail::rangeOfString(text, sought, {0, text.size()}, options), expected)
            << utf8(text) << ' ' << utf8(sought);
}

/// A character with its marks, decomposed and folded.
std::u16string slowlyFolded(View character, SearchOptions options) {
    std::u16string result;
    for (const char16_t unit : character) {
        const bool isWidthForm = (options & WidthInsensitiveSearch) && unit >= 0xFF00 && unit <= 0xFFEE;
        result += isWidthForm ? detail::unicode::normalized(View(&unit, 1), detail::unicode::Form::KC).view()
                              : View(&unit, 1);
    }
    result = detail::unicode::normalized(result, detail::unicode::Form::D).view();
    if (options & DiacriticInsensitiveSearch)
        std::erase_if(result, [](char16_t unit) { return unit >= 0x300 && unit < 0x370; });
    if (options & CaseInsensitiveSearch)
        for (char16_t& unit : result) unit = toLower(toUpper(unit));
    return result;
}

struct SlowText {
    std::vector<std::size_t> starts;
    std::vector<std::u16string> characters;
    std::u16string all;

    SlowText(View text, SearchOptions options) {
        for (std::size_t i = 0; i < text.size();) {
            starts.push_back(i);
            i += detail::isPairAt(text, i) ? 2 : 1;
            while (i < text.size() && text[i] >= 0x300 && text[i] < 0x370) ++i;
            characters.push_back(slowlyFolded(text.substr(starts.back(), i - starts.back()), options));
            all += characters.back();
        }
        starts.push_back(text.size());
    }
};

/// Every character is tried as a start.
Range slowRange(View text, View sought, SearchOptions options) {
    const SlowText haystack(text, options);
    const std::u16string needle = SlowText(sought, options).all;
    Range last = Range::none();
    for (std::size_t i = 0; i < haystack.characters.size() && !needle.empty(); ++i) {
        std::u16string found;
        std::size_t end = i;
        while (end < haystack.characters.size() && (found.size() < needle.size() || haystack.characters[end].empty()))
            found += haystack.characters[end++];
        if (haystack.characters[i].empty() || found != needle) continue;
        last = {haystack.starts[i], haystack.starts[end] - haystack.starts[i]};
        if (!(options & BackwardsSearch)) break;
    }
    return last;
}

// Long texts are searched in pieces, in the way that each piece needs.
TEST(StringRanges, AgreeWithTheSlowSearch) {
    std::mt19937 random(12);
    const std::vector<View> plain = {u"a",      u"b",      u"\u00E4", u"\u0436", u"\u0416",
                                     u"\u4E00", u"\uAC00", u"\u1EA4", u"\u03C3"};
    const std::vector<View> odd = {u"a\u0308", u"\U0001F600", u"\u0301", u"\u1100", u"\u1161",        u"\u212B",
                                   u"\uFF21",  u"\xD83D",     u"\xDE00", u"\u0344", u"a\u0323\u0302", u"\u0958"};
    std::size_t found = 0;
    for (int round = 0; round < 1500; ++round) {
        const std::size_t length = round % 10 ? random() % 30 : 3000 + random() % 9000;
        const unsigned rare = 1 + random() % (round % 10 ? 6 : 3000);
        std::u16string text;
        while (text.size() < length) {
            const auto& list = random() % rare ? plain : odd;
            text += list[random() % list.size()];
        }
        std::u16string sought = text.empty() ? u"a" : text.substr(random() % text.size(), 1 + random() % 6);
        if (random() % 4 == 0) sought = detail::unicode::normalized(sought, detail::unicode::Form::D).view();
        if (random() % 4 == 0) sought[random() % sought.size()] = plain[random() % plain.size()][0];
        const auto options =
            static_cast<SearchOptions>(random() % 2 | (random() % 2) << 2 | (random() % 4 ? 0 : random() % 4 << 7));
        const Range expected = slowRange(text, sought, options);
        ASSERT_EQ(detail::rangeOfString(text, sought, {0, text.size()}, options), expected)
            << utf8(sought) << " in " << (text.size() < 40 ? utf8(text) : "a long text") << ' ' << options;
        found += expected.isFound();
    }
    EXPECT_GT(found, 700u);
}

// What makes the quick way right: over simple units the two comparisons say the same.
TEST(StringRanges, SimpleUnitsCompareAsTheirCharacters) {
    std::map<std::u16string, char16_t> folds, decompositions;
    std::map<char16_t, std::u16string> foldedOf;
    for (unsigned i = 0; i < 65536; ++i) {
        const auto unit = static_cast<char16_t>(i);
        if (!detail::simpleUnits().contains(unit)) continue;
        const View text(&unit, 1);
        const char16_t fold = toLower(toUpper(unit));
        const std::u16string folded = slowlyFolded(text, CaseInsensitiveSearch);
        ASSERT_EQ(folds.try_emplace(folded, fold).first->second, fold) << i;
        ASSERT_EQ(foldedOf.try_emplace(fold, folded).first->second, folded) << i;
        const auto [same, isFirst] = decompositions.try_emplace(slowlyFolded(text, DefaultSearch), unit);
        ASSERT_TRUE(isFirst) << i;
    }
    EXPECT_GT(decompositions.size(), 50000u);
}

}  // namespace
}  // namespace velmo
