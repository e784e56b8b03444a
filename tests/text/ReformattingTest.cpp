#include <velmocore/text/Reformatting.h>

#include <velmocore/text/CharacterSets.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(Reformatting, Mails) {
    const std::pair<View, View> cases[] = {
        {u"one\r\ntwo\rthree", u"one two three"},
        {u"one\r\n\r\n\n\ntwo", u"one\n\ntwo"},
        {u"one\n> two\n> three", u"one\n> two\n> three"},
        {u"list\n- a\n- b\n/path\n}", u"list\n- a\n- b\n/path\n}"},
        {u"one\n  two", u"one\n two"},
        {u"he wrote:\ntext", u"he wrote:\ntext"},
        {u"one\t \u00A0two  ", u"one two "},
        {u"\none", u"one"},
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(reformattedMailing(text), expected) << utf8(text);
    for (const auto& [text, expected] : cases) {
        std::u16string inPlace(text);
        reformatMailing(inPlace);
        EXPECT_EQ(inPlace, expected) << utf8(text);
    }
    EXPECT_TRUE(reformattedMailing(String()).isAbsent());
}

/// Line ends first become LF, then each stretch of them is decided by its two neighbours.
std::u16string unwrappedSlowly(std::u16string text) {
    for (std::size_t i = 0; (i = text.find(u"\r\n", i)) != text.npos; ++i) text.replace(i, 2, u"\n");
    for (char16_t& unit : text)
        if (isFeedUnit(unit)) unit = u'\n';
    std::u16string out;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t end = std::min(text.find_first_not_of(text[i] == u'\n' ? u"\n" : u" \t", i), text.size());
        const bool stays = end < text.size() && View(u" -/>}").find(text[end]) != View::npos;
        if (text[i] != u'\n') {
            out += end > i ? u' ' : text[i];
            i = std::max(end, i + 1);
            continue;
        }
        if (end - i > 1)
            out += u"\n\n";
        else if (stays)
            out += u'\n';
        else if (end < text.size() && !out.empty() && !whiteCharacterSetRep().contains(out.back()))
            out += out.back() == u':' || out.back() == u'>' ? u'\n' : u' ';
        i = end;
    }
    return out;
}

TEST(Reformatting, MailsAgreeWithTheSlowWay) {
    std::mt19937 random(9);
    for (int round = 0; round < 20000; ++round) {
        const std::u16string text = test::randomText(random, u"ab \t\n\r\n:>-\uFEFF}", random() % 20);
        ASSERT_EQ(reformattedMailing(text), unwrappedSlowly(text)) << utf8(text);
    }
}

TEST(Reformatting, Lines) {
    const std::tuple<View, View, View> cases[] = {
        {u"one\ntwo\n\nthree", u"", u"one two\n\nthree"},
        {u"> one\n> two\n>\n> three\n", u">", u"one two\n\nthree"},
        {u"one\n\n\n\ntwo", u"", u"one\n\ntwo"},
        {u"\n\none", u"", u"one"},
        {u"one\r\n\r\ntwo", u"", u"one\r\n\r\ntwo"},
        {u"one\n\n", u"", u"one\n"},  // no doubling at the last line
        {u"one  x\n ", u"", u"one x"},
        {u"*-*", u"-*", u""},
    };
    for (const auto& [text, removed, expected] : cases)
        EXPECT_EQ(reformattedStringByRemovingCharactersOfString(text, removed), expected) << utf8(text);
    EXPECT_EQ(reformattedStringByRemovingCharactersOfString(u"a\nb", View()), u"a b");
}

}  // namespace
}  // namespace velmo
