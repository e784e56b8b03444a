#include "url/URLMarks.h"

#include <velmocore/text/CharacterSets.h>

#include "TestSupport.h"
#include "url/Grammar.h"

namespace velmo::detail {
namespace {

/// A text of URL units, a few of which, or most, are others.
std::u16string randomUnits(std::mt19937& random, std::size_t length) {
    const unsigned often = 1 + random() % 20;
    std::u16string text(length, u'a');
    for (char16_t& unit : text)
        unit = random() % often ? View(u"abz09AZ-_~!$'()*,/.:?#;=%&")[random() % 26]
               : random() % 4   ? static_cast<char16_t>(random() % 256)
                                : static_cast<char16_t>(random());
    return text;
}

void expectSameMarks(const std::u16string& text) {
    const URLMarks marks = urlMarksOneByOne(text);
    const ParameterMarks parameters = parameterMarksOneByOne(text);
    ASSERT_EQ(urlMarksOf(text), marks) << utf8(text);
    ASSERT_EQ(urlMarksByBlocks(text), marks) << utf8(text);
    ASSERT_EQ(parameterMarksOf(text), parameters) << utf8(text);
    ASSERT_EQ(parameterMarksByBlocks(text), parameters) << utf8(text);
}

TEST(URLMarks, AreThoseFoundOneByOne) {
    std::mt19937 random(3);
    for (int round = 0; round < 30; ++round)
        for (std::size_t length = 0; length <= UnitBits::MostUnits; ++length) {
            const std::u16string text = randomUnits(random, length);
            expectSameMarks(text);
        }
    for (unsigned unit = 0; unit < 65536; ++unit) expectSameMarks(std::u16string(3, static_cast<char16_t>(unit)));
}

TEST(URLMarks, BitsAreFoundAndCutOut) {
    std::mt19937 random(4);
    for (int round = 0; round < 20000; ++round) {
        std::u16string text = test::randomText(random, u"==aaaaaa", random() % 129);
        const UnitBits bits = parameterMarksOf(text).equals;
        const auto size = static_cast<std::uint32_t>(text.size());
        const auto from = static_cast<std::uint32_t>(random() % (size + 1));
        const auto to = from + static_cast<std::uint32_t>(random() % (size + 1 - from));
        ASSERT_EQ(bits.first(from, to), std::min<std::size_t>(text.find(u'=', from), to));
        const std::size_t last = text.substr(0, to).rfind(u'=');
        ASSERT_TRUE(last == text.npos || bits.last(to) == last) << to;
        text.erase(from, to - from);
        ASSERT_EQ(bits.erased(from, to), parameterMarksOf(text).equals) << from << ' ' << to;
    }
}

// The grammar by marks and the one that looks at each unit find the same parts.
TEST(URLMarks, CutAsTheUnitsDo) {
    std::mt19937 random(5);
    const auto pieces = test::wordsOf(
        u"http: file: x-y+z.1: 1: : // / /a ? # ; = %41 %4 % a b.c u@ u:p@ [::1] h.org :80 :99999 :x \u00E4 | .. ");
    int cut = 0;
    for (int round = 0; round < 60000; ++round) {
        std::u16string text;
        for (unsigned n = random() % 9; n > 0; --n) text += pieces[random() % pieces.size()];
        grammar::Parts byMarks, byUnits;
        const bool isURL = grammar::cut(text, byMarks);
        ASSERT_EQ(isURL, grammar::cutOneByOne(text, byUnits)) << utf8(text);
        if (!isURL) continue;
        ++cut;
        for (std::size_t part = 0; part < NumberOfURLParts; ++part) {
            const auto &a = byMarks.spans[part], &b = byUnits.spans[part];
            ASSERT_EQ(std::pair(a.location, a.length), std::pair(b.location, b.length)) << utf8(text) << ' ' << part;
        }
    }
    EXPECT_GT(cut, 10000);
}

}  // namespace
}  // namespace velmo::detail
