#include <velmocore/url/QueryParameters.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(QueryParameters, FindsValues) {
    const std::tuple<const char16_t*, const char16_t*, const char16_t*, bool> cases[] = {
        {u"http://h/p?a=1&b=2", u"b", u"2", true},
        {u"http://h/p?a=1;b=2", u"b", u"2", true},
        {u"http://h/p?A=1", u"a", nullptr, false},
        {u"http://h/p?a=&a=2", u"a", u"2", true},
        {u"http://h/p?a=", u"a", nullptr, true},
        {u"http://h/p?a&b=1", u"b", nullptr, false},
        {u"http://h/p?a&b=1", u"a&b", u"1", true},
        {u"http://h/p?a=1&b", u"b", nullptr, false},
        {u"http://h/p?a=b=c&d=e", u"a", u"b=c", true},
        {u"?a=%41", u"a", u"%41", true},
        {u"?&&;?a=1", u"a", u"1", true},
        {u"a=1", u"a", nullptr, false},
        {u"?a=1", u"", nullptr, false},
        {u"?\u00E4=1", u"\u00E4", u"1", true}};
    for (const auto& [string, name, value, contained] : cases) {
        EXPECT_EQ(queryParamNamed(string, name), String(value)) << String(string);
        EXPECT_EQ(containsQueryParamNamed(string, name), contained) << String(string);
    }
    EXPECT_EQ(paramNamed(u"a=1&b=2", u"a"), u"1");
    EXPECT_TRUE(containsParamNamed(u"a=", u"a"));
    // The text must be longer than the name.
    EXPECT_TRUE(paramNamed(u"ab=", u"ab=").isAbsent());
    EXPECT_FALSE(containsParamNamed(u"", u"a"));
    EXPECT_TRUE(paramNamed(u"a=1", std::u16string_view()).isAbsent());
}

TEST(QueryParameters, CountsAndCollects) {
    EXPECT_EQ(numberOfQueryParams(u"http://h/?a=&b=2&a=3"), 3u);
    EXPECT_EQ(queryParams(u"http://h/?a=&b=2&a=3&b=4&c=&d"), (QueryParams{{u"a", u"3"}, {u"b", u"4"}}));
    EXPECT_EQ(numberOfQueryParams(u"http://h/a=1"), 0u);
    EXPECT_FALSE(queryParams(u"http://h/a=1").has_value());
    EXPECT_EQ(queryParams(u"x?"), QueryParams());
    const URL url = URL::URLWithString(u"http://h/?a=1&b=#c=3");
    EXPECT_EQ(queryParams(url), (QueryParams{{u"a", u"1"}}));
    EXPECT_EQ(numberOfQueryParams(url), 2u);
    EXPECT_TRUE(containsQueryParamNamed(url, u"b"));
    EXPECT_EQ(queryParamNamed(url, u"a"), u"1");
    EXPECT_FALSE(queryParams(URL()).has_value());
    EXPECT_FALSE(queryParams(URL::URLWithString(u"http://h/?")).has_value());
}

TEST(QueryParameters, ReplacesValues) {
    const String string(u"http://h/?a=1&b=&c=3#d");
    EXPECT_EQ(stringByReplacingQueryParamNamed(string, u"a", u"xyz"), u"http://h/?a=xyz&b=&c=3#d");
    EXPECT_EQ(stringByReplacingQueryParamNamed(string, u"a", {}), u"http://h/?a=&b=&c=3#d");
    for (const char16_t* name : {u"b", u"d", u""})
        EXPECT_TRUE(stringByReplacingQueryParamNamed(string, name, u"x").isIdenticalTo(string));
    const URL url = URL::URLWithString(u"http://h/?a=1&b=2");
    EXPECT_EQ(stringByReplacingQueryParamNamed(url, u"b", u"x"), u"a=1&b=x");
    EXPECT_EQ(stringByReplacingQueryParamNamed(url, u"c", u"x"), u"a=1&b=2");
    EXPECT_TRUE(stringByReplacingQueryParamNamed(URL(), u"c", u"x").isAbsent());
}

TEST(QueryParameters, AppendsParameters) {
    std::u16string string = u"http://h/";
    appendParameter(string, u"a", u"1 :/?&;@#%41=\u00E4");
    appendParameter(string, u"b", u"x");
    appendParameter(string, u"", u"x");
    appendParameter(string, u"c", u"");
    appendParameter(string, u"c", u"\xDC00");
    EXPECT_EQ(string, u"http://h/?a=1%20%3A%2F%3F%26%3B%40%23%2541=%C3%A4&b=x");
}

}  // namespace
}  // namespace velmo
