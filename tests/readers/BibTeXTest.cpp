#include <velmocore/readers/BibTeX.h>

#include "TestSupport.h"

namespace velmo {
namespace {

/// An entry a line: "name=value;" for each field.
String shown(const BibTeXEntries& list) {
    std::u16string text;
    for (const BibTeXEntry& entry : list.entries) {
        for (const auto& [name, value] : entry.fields)
            text.append(name.view()).append(u"=").append(value.view()).append(u";");
        text += u"\n";
    }
    return text;
}

TEST(BibTeX, ReadsEntries) {
    const struct {
        View text, entries;
    } cases[] = {
        {u"", u""},
        {u"@article{k, title = {A {B} C}}", u"@=k;title=A B C;\n"},
        {u"@string{j = \"Journal\"} @book{k, x = j}", u"@=k;x=Journal;\n"},
        {u"@string {a = b} @STRING(b = {a a}) @book{k, x = {a b}}", u"@=k;x=b b b b;\n"},
        {u"@string{a = b, c = a} @book{k, x = ac}", u"@=k;x=ba;\n"},  // not in their own entry
        {u"@string{a = 1} @string{a = 2} @book{k, x = {aba}}", u"@=k;x=2b2;\n"},
        {u"@book(k, x = \"a {\"} b\", y = c d )z = 1", u"@=k;x=a \" b;y=c d;\n"},
        {u"@book{k, x = \"a\" # \"b\", y = a # b, x = 2}", u"@=k;x=2;y=a # b;\n"},
        {u"@book{ k ,X= 1 ,x=2,= 3, ,\n y\n=4}", u"@= k ;X=1;x=2;y=4;\n"},
        {u"@book{a:b, x = 1}@book{, x = 2}@book{x = 3}@book{k}", u"x=1;\n@=;x=2;\nx=3;\n\n"},
        {u"@comment{no} % x = {1}\n@{k, x = 1} @", u"\n"},
        {u"@book{k, x = 1, @book{l, x = 2} }", u"@=k;x=1;\n@=l;x=2;\n"},
        {u"@book{k, x = {a {b}", u"@=k;x=a b;\n"},
        {u"@book{k, x = \"a}b\", y =", u"@=k;x=ab;y=;\n"},
        {u"@a{k, x = \"\\'{e}t\\'{e} \\bf a\\\\b \\&c\"}", u"@=k;x=ete ab c;\n"},
        {u"@a{k, x = {a $b^{c \\d {e}}f$ g $h}}", u"@=k;x=a c e g;\n"},
        {u"@a{k, x = { ``a''\n\t\u2028b ''' }}", u"@=k;x=\"a\" b \"';\n"},
    };
    for (const auto& [text, entries] : cases) EXPECT_EQ(shown(BibTeXEntriesNamed(text)), entries) << String(text);
}

TEST(BibTeX, ReadsEntriesOfOneType) {
    const View text = u"@string{s=1} @article{a, x = \"@book{no}\"} me@home.org @Book{b, y = s} @books{c, z = 1}";
    const BibTeXEntries list = BibTeXEntriesNamed(text, u"bOOK");
    EXPECT_EQ(shown(list), u"@=b;y=1;\n");
    EXPECT_EQ(list.keys, (Strings{u"@", u"y"}));
    EXPECT_EQ(BibTeXEntriesNamed(text, u"string").entries.size(), 0u);
}

TEST(BibTeX, ReadsFilesAsTheyAreWritten) {
    const auto read = [](const char* name) { return BibTeXEntriesNamed(String::fromUTF8(test::readData(name))); };
    const View abstract =
        u"This is an abstract. This line should be long enough to test multilines... and with a "
        u"french \u00E9rudit word";
    const BibTeXEntries traps = read("bibtex/traps.bib"), features = read("bibtex/features.bib");
    ASSERT_EQ(traps.entries.size(), 1u);
    EXPECT_EQ(traps.entries[0].value(u"author"), u"Jean Laide, Ben Loaeb");
    EXPECT_EQ(traps.entries[0].value(u"abstract"), abstract);
    EXPECT_EQ(traps.keys.size(), 11u);
    EXPECT_EQ(shown(features),
              u"\n\n\n\n\n\n@=mykey;author=John;title=Cool Stuff;"
              u"booktitle=My International Conference;year=2014;\n");
    EXPECT_EQ(read("bibtex/article_with_special_characters.bib").entries[0].value(u"author"), u"Jean Cesaru");
    const BibTeXEntries several = read("bibtex/multiple_entries_and_comments.bib");
    ASSERT_EQ(several.entries.size(), 5u);  // two comments
    EXPECT_EQ(several.entries[1].value(u"Publisher"), u"The Royal Society of Chemistry");
    EXPECT_EQ(several.entries[2].fields.size(), 3u);
}

/// Macros that double each time, and one long macro named all over a value.
TEST(BibTeX, BoundsTheGrowthOfMacros) {
    std::u16string doubling = u"@string{m = \"xx\"}", hostile = u"@string{a = \"" + test::repeated(u"b", 9999) + u"\"}";
    for (int i = 0; i < 10000; ++i) doubling += u"@string{m = \"mm\"}";
    doubling += u"@book{k, x = m}";
    hostile += u"@book{k, x = {" + test::repeated(u"a", 9999) + u"}, y = c}";
    for (const std::u16string& text : {doubling, hostile}) {
        const BibTeXEntries list = BibTeXEntriesNamed(text);
        ASSERT_EQ(list.entries.size(), 1u);
        EXPECT_LE(list.entries[0].value(u"x").length(), 16 * text.size() + 1'000'000);
    }
    EXPECT_EQ(BibTeXEntriesNamed(hostile).entries[0].value(u"y"), u"c");
}

}  // namespace
}  // namespace velmo
