#include <velmocore/text/Normalisation.h>

#include <unicode/unorm2.h>
#include <unicode/utf16.h>

#include "TestSupport.h"
#include "platform/MarkRuns.h"
#include "platform/Unicode.h"

namespace velmo {
namespace {

/// By ICU alone.
std::u16string normalizedDirectly(View text, int form) {
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2* const normalizer =
        unorm2_getInstance(nullptr, form % 2 ? "nfkc" : "nfc", form < 2 ? UNORM2_DECOMPOSE : UNORM2_COMPOSE, &status);
    std::u16string result(text.size() * 20, u'\0');
    result.resize(static_cast<std::size_t>(unorm2_normalize(normalizer, text.data(), static_cast<int>(text.size()),
                                                            result.data(), static_cast<int>(result.size()), &status)));
    return result;
}

TEST(Normalisation, FormsAndCase) {
    const auto form = [](NormalizationForm f, View text) { return normalizedString(text, f); };
    EXPECT_EQ(normalizedString(u"a\u0308\uFB01"), u"\u00E4\uFB01");
    EXPECT_EQ(form(NormalizationForm::D, u"\u00E4"), u"a\u0308");
    EXPECT_EQ(form(NormalizationForm::KD, u"\u00E4\uFB01"), u"a\u0308fi");
    EXPECT_EQ(form(NormalizationForm::KC, u"a\u0308\uFB01"), u"\u00E4fi");
    EXPECT_EQ(getCharactersOfNormalizedString(u"a\u0308x"), u"\u00E4x");
    EXPECT_EQ(normalizedLowercaseString(u"A\u0308\u0130"), u"\u00E4i\u0307");
    EXPECT_EQ(normalizedUppercaseString(u"a\u0308 stra\u00DFe"), u"\u00C4 STRASSE");
    EXPECT_EQ(static_cast<int>(NormalizationForm::KC), 3);

    std::u16string text = u"o'neil's \u00E9TUDE, \u01C6ep";
    capitalize(text);
    EXPECT_EQ(text, u"O'neil's \u00C9tude, \u01C5ep");
    uppercase(text);
    EXPECT_EQ(text, u"O'NEIL'S \u00C9TUDE, \u01C4EP");
    lowercase(text);
    EXPECT_EQ(text, u"o'neil's \u00E9tude, \u01C6ep");
    text = u"E\u0301";
    normalizeLowercaseString(text);
    EXPECT_EQ(text, u"\u00E9");
    normalizeUppercaseString(text);
    normalizeString(text, NormalizationForm::D);
    EXPECT_EQ(text, u"E\u0301");
}

// The short cut through the table says what the full mapping says.
TEST(Normalisation, CaseOfEveryUnit) {
    for (unsigned unit = 0; unit < 65536; ++unit) {
        std::u16string lower(1, static_cast<char16_t>(unit)), upper = lower;
        const std::u16string original = lower;
        lowercase(lower);
        uppercase(upper);
        ASSERT_EQ(detail::unicode::lowerCase(View(original)), lower) << unit;
        ASSERT_EQ(detail::unicode::upperCase(View(original)), upper) << unit;
        ASSERT_EQ(normalizedString(original), detail::unicode::normalized(original, detail::unicode::Form::C)) << unit;
    }
    std::u16string text = u"A\u0130\u03A3";  // a dot above, and a final sigma
    lowercase(text);
    EXPECT_EQ(text, u"ai\u0307\u03C2");
}

// Long runs of marks are put in order beforehand. No normal form may differ for that from what
// the normaliser makes of the text alone.
TEST(Normalisation, RunsOfMarks) {
    const UChar32 marks[] = {0x300, 0x301, 0x323,   0x327,   0x344,   0x340,  0x345, 0x5B0, 0x5C1, 0x3099, 0x94D, 0x93C,
                             0xF73, 0xF71, 0x1D165, 0x1D16D, 0x1D15E, 0x20D0, 0x591, 0xE4,  'a',   0x915,  0x1E7F};
    std::mt19937 random(2);
    std::size_t ordered = 0;
    for (int round = 0; round < 3000; ++round) {
        std::u16string text;
        const std::size_t length = random() % 150;
        while (text.size() < length) {
            const UChar32 mark = marks[random() % (random() % 40 ? 18 : std::size(marks))];
            for (unsigned times = 1 + random() % 3; times > 0; --times) {
                char16_t units[2];
                std::size_t count = 0;
                U16_APPEND_UNSAFE(units, count, mark);
                text.append(units, count);
            }
        }
        ordered += detail::withMarksInOrder(text).has_value();
        for (int form = 0; form < 4; ++form)
            ASSERT_EQ(normalizedString(text, static_cast<NormalizationForm>(form)), normalizedDirectly(text, form))
                << form;
    }
    EXPECT_GT(ordered, 500u);
}

TEST(Normalisation, ReceiverOrNewString) {
    const String text(u"plain");
    for (const auto operation : {+[](const String& s) { return normalizedString(s); }, normalizedLowercaseString,
                                 fixedAndNormalizedString, optimizedString}) {
        EXPECT_EQ(operation(text), text);
        EXPECT_FALSE(operation(text).isIdenticalTo(text));
        EXPECT_TRUE(operation(String()).isAbsent());
        EXPECT_EQ(operation(u""), u"");
    }
    EXPECT_EQ(optimizedMutableString(text), text.view());
}

TEST(Normalisation, FixedForKeeping) {
    EXPECT_EQ(fixedAndNormalizedString(u"a\U0001F600b"), u"a  b");
    EXPECT_EQ(fixedAndNormalizedString(View(u"a\0\u0308", 3)), View(u"a \u0308"));
    std::u16string text = {u'o', 0x0308, 0xDC00, 0xD83D, u'x', 0xF400, 0xF8FF, 0xF3FF, 0xF900, 0xD7FF, 0xE000};
    fixAndNormalizeString(text);
    // The ideograph U+F900 has a canonical equivalent.
    EXPECT_EQ(text, (std::u16string{0x00F6, u' ', u' ', u'x', u' ', u' ', 0xF3FF, 0x8C48, 0xD7FF, 0xE000}));
}

TEST(Normalisation, Ligatures) {
    std::u16string text = u"\uFB00\uFB01\uFB02\uFB03\uFB04\uFB05\uFB06\u0133\u0132\u00E6x";
    convertLigaturesToCharacters(text);
    EXPECT_EQ(text, u"fffiflffifflftstijIJ\u00E6x");
    const std::u16string before = text;
    convertLigaturesToCharacters(text);
    EXPECT_EQ(text, before);
}

}  // namespace
}  // namespace velmo
