// Text copied from units or from bytes, and the marks that steer it, beside loops over units.
#include "text/TextCopy.h"

#include <memory>

#include "TestSupport.h"

namespace velmo::detail {
namespace {

template <class Unit>
void expectSameMarks(const Unit* units) {
    const TextMarks marks = textMarks(units), expected = textMarksByUnit(units);
    ASSERT_EQ(marks.plain, expected.plain);
    ASSERT_EQ(marks.blank, expected.blank);
    ASSERT_EQ(marks.white, expected.white);
    for (int count = 1; count <= 16; ++count)
        ASSERT_EQ(areWhite(units, static_cast<std::size_t>(count)), std::countr_one(expected.white) >= count);
}

TEST(TextMarks, AgreeWithTheLoopOverUnits) {
    std::mt19937 random(5);
    for (unsigned round = 0; round < 65536; ++round) {
        char16_t units[TextMarks::Units];
        char bytes[TextMarks::Units];
        std::uint32_t others = 0;
        for (int i = 0; i < TextMarks::Units; ++i) {
            units[i] = static_cast<char16_t>(random() % 3 ? random() % 256 : random());
            bytes[i] = static_cast<char>(random());
            others |= static_cast<std::uint32_t>(bytes[i] < 0) << i;
        }
        units[round % TextMarks::Units] = static_cast<char16_t>(round);
        expectSameMarks(units);
        expectSameMarks(bytes);
        ASSERT_EQ(nonAscii(bytes), others);
    }
}

/// What is to be copied in front of the first &.
std::u16string collapsed(View text, bool isBehindWhite) {
    std::u16string out;
    for (char16_t unit : text.substr(0, text.find(u'&'))) {
        const bool isWhite = whiteCharacterSetRep().contains(unit);
        if (!isWhite || !isBehindWhite) out += isWhite ? u' ' : unit;
        isBehindWhite = isWhite;
    }
    return out;
}

template <class Unit>
void expectCopied(std::basic_string_view<Unit> text, std::size_t readable, View decoded, bool isBehindWhite) {
    const std::u16string expected = collapsed(decoded, isBehindWhite);
    std::u16string out(text.size() + TextMarks::Units, u'#');
    TextCopy<Unit> copy(text.data(), text.data() + text.size(), text.data() + readable, out.data(), isBehindWhite,
                        whiteCharacterSetRep());
    ASSERT_EQ(copy.run(), decoded.find(u'&') == View::npos) << String(decoded);
    ASSERT_EQ(View(out.data(), copy.out()), expected);
    ASSERT_EQ(copy.left(), text.size() - std::min(text.find(static_cast<Unit>('&')), text.size()));
    if (!expected.empty()) { ASSERT_EQ(copy.isBehindWhite(), expected.back() == u' '); }
}

TEST(TextCopy, CollapsesAsUnitsAndAsBytes) {
    constexpr std::string_view Pieces[] = {" ", "\n \t", "\xC2\xA0", "\xE2\x80\x83", "\xE3\x80\x80", "\xEF\xBB\xBF",
                                           "\xC3\xA9", "\xD0\x9F\xD1\x80", " \xD0\x9F", "\xE6\x97\xA5\xE6\x9C\xAC",
                                           "\xE1\x9A\x80", "\xE2\x80\x94", "\xF0\x9F\x98\x80", "\x01", "\x03", "\x7F",
                                           // What is no UTF-8: overlong, a surrogate, cut, stray.
                                           "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xE6\x97", "\xC3", "\x80",
                                           "\xF4\x90\x80\x80"};
    std::mt19937 random(7);
    for (int round = 0; round < 40000; ++round) {
        const unsigned often = 1 + random() % 20, kinds = 1 + random() % std::size(Pieces);
        std::string bytes;
        for (unsigned n = random() % 60; n > 0; --n)
            bytes += random() % often ? std::string_view("word") : Pieces[random() % kinds];
        if (random() % 4 == 0) bytes.insert(random() % (bytes.size() + 1), "&");
        const bool isBehindWhite = random() % 2;
        const String units = String::fromUTF8(bytes);
        // In the middle of a page, with white space behind, and at the end of one.
        const std::string page = bytes + std::string(40, random() % 2 ? ' ' : '<');
        const std::u16string wide = std::u16string(units.view()) + std::u16string(40, u' ');
        const std::unique_ptr<char[]> alone(new char[bytes.size()]);
        std::copy(bytes.begin(), bytes.end(), alone.get());
        using Bytes8 = std::string_view;
        expectCopied(Bytes8(page).substr(0, bytes.size()), page.size(), units, isBehindWhite);
        expectCopied(Bytes8(alone.get(), bytes.size()), bytes.size(), units, isBehindWhite);
        expectCopied(View(wide).substr(0, units.length()), wide.size(), units, isBehindWhite);
        expectCopied(units.view(), units.length(), units, isBehindWhite);
    }
}

}  // namespace
}  // namespace velmo::detail
