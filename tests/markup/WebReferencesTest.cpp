#include <velmocore/markup/Entities.h>
#include <velmocore/markup/Links.h>
#include <velmocore/markup/Page.h>

#include "TestSupport.h"
#include "markup/ReferenceTables.h"

namespace velmo {
namespace {

String decoded(View text, bool inAttribute = false) {
    return stringByConvertingEntitiesToCharacters(text, {.inAttribute = inAttribute, .web = WebRules::today()});
}

TEST(WebReferences, TableHasAllNames) {
    std::string_view names = detail::referenceNames();
    std::vector<std::string_view> list;
    std::size_t loose = 0;
    for (; !names.empty(); names.remove_prefix(list.back().size() + 1)) {
        list.push_back(names.substr(0, names.find_first_of("; ")));
        loose += names[list.back().size()] == ' ';
    }
    EXPECT_EQ(list.size(), 2125u);
    EXPECT_EQ(loose, 106u);
    EXPECT_TRUE(std::ranges::is_sorted(list));
    EXPECT_EQ(detail::referenceUnits().size(), 2 * list.size());
}

TEST(WebReferences, AreReadByTheStandard) {
    const std::tuple<View, View, View> cases[] = {
        // in a text, and in an attribute
        {u"&lt;&LT &AMP;", u"<< &", u"<< &"},
        {u"&notit; &notin; &not;", u"\u00ACit; \u2209 \u00AC", u"&notit; \u2209 \u00AC"},
        {u"&copy=1&copy", u"\u00A9=1\u00A9", u"&copy=1\u00A9"},
        {u"&lang;&zwj;&Afr;&bne;&NotEqualTilde;", u"\u27E8\u200D\U0001D504=\u20E5\u2242\u0338",
         u"\u27E8\u200D\U0001D504=\u20E5\u2242\u0338"},
        {u"&CounterClockwiseContourIntegral; &CounterClockwiseContourIntegralx;",
         u"\u2233 &CounterClockwiseContourIntegralx;", u"\u2233 &CounterClockwiseContourIntegralx;"},
        {u"&eacute &frac12x &nosuch; &lang", u"\u00E9 \u00BDx &nosuch; &lang", u"\u00E9 &frac12x &nosuch; &lang"},
        {u"&#128;&#x96&#0;&#xD800;&#1114112;&#99999999999999999999;", u"\u20AC\u2013\uFFFD\uFFFD\uFFFD\uFFFD",
         u"\u20AC\u2013\uFFFD\uFFFD\uFFFD\uFFFD"},
        {u"&#x1F600;&#00000000000000000000000000000000065;&#129;", u"\U0001F600A\u0081", u"\U0001F600A\u0081"},
        {u"&# &#x &#; &;& &", u"&# &#x &#; &;& &", u"&# &#x &#; &;& &"},
    };
    for (const auto& [text, inText, inAttribute] : cases) {
        EXPECT_EQ(decoded(text), inText) << String(text);
        EXPECT_EQ(decoded(text, true), inAttribute) << String(text);
    }
    const auto with = [](EntityOptions options) {
        options.web = WebRules::today();
        return stringByConvertingEntitiesToCharacters(u"&amp;&#38;&nbsp;&apos;&eacute;&#233;", options);
    };
    EXPECT_EQ(with({.convertStandard = false}), u"&amp;&#38;\u00A0'\u00E9\u00E9");
    EXPECT_EQ(with({.onlyNumericEntities = true}), u"&&\u00A0'&eacute;\u00E9");
    EXPECT_EQ(with({.nonUmlauted = true}), u"&&\u00A0'ee");
}

TEST(WebReferences, AreReadInPagesWhenAsked) {
    const std::string bytes = "<title>&nexist;a</title><a href='/x?a=1&copy=2%20'>&nexist; &#150;</a>";
    const URL url = URL::URLWithString(u"http://h/");
    const Page told(bytes, {.url = url}), today(bytes, {.url = url, .web = WebRules::today()});
    EXPECT_EQ(told.title(), u"&nexist;a");
    EXPECT_EQ(today.title(), u"\u2204a");
    EXPECT_TRUE(today.plainText().view().ends_with(u"\u2204 \u2013"));
    EXPECT_EQ(told.links()[0].absoluteString(), u"http://h/x?a=1&copy=2");
    EXPECT_EQ(today.links()[0].absoluteString(), u"http://h/x?a=1&copy=2%20");
}

}  // namespace
}  // namespace velmo
