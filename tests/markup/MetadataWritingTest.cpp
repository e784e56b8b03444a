#include <velmocore/markup/MetadataWriting.h>

#include <velmocore/markup/PageMetadata.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(MetadataWriting, Base) {
    const std::tuple<String, String, String, String> cases[] = {
        {u"<html><HEAD x>a", u"http://h/?a&b", u"<html><HEAD x><BASE href=\"http://h/?a&amp;b\"/>\na",
         u"<html><HEAD x><BASE href=\"http://h/?a&amp;b\"/>\na"},
        {u"<head>a<base target=x>b<base href=c>d<base href=e>", u"f",
         u"<head>a<base target=x>b<BASE href=\"f\"/>\nd<base href=e>",
         u"<head>a<base target=x>b<base href=c>d<base href=e>"},
        {u"<head>a<base href=c>b", u"", u"<head>ab", u"<head>a<base href=c>b"},
        {u"<head></head><body><base href=c>", u"d", u"<head><BASE href=\"d\"/>\n</head><body><base href=c>",
         u"<head><BASE href=\"d\"/>\n</head><body><base href=c>"},
        {u"<head>", u"", u"<head>", u"<head>"},
        {u"<body><head>", u"a", u"<body><head>", u"<body><head>"},
        {u"", u"a", u"", u""},
        {String(), u"a", String(), String()}};
    for (const auto& [page, url, set, added] : cases) {
        EXPECT_EQ(stringBySettingBaseURL(page, url), set) << page;
        EXPECT_EQ(stringByAddingBaseURL(page, url), added) << page;
        EXPECT_TRUE(stringBySettingBaseURL(page, String()).isIdenticalTo(page));
        EXPECT_TRUE(stringByAddingBaseURL(page, String()).isIdenticalTo(page));
    }
    const String page(u"<p>a");
    EXPECT_TRUE(stringBySettingBaseURL(page, u"http://h/").isIdenticalTo(page));
    const String based = stringByAddingBaseURL(u"<head></head>", u"http://h/?a&b");
    EXPECT_EQ(htmlBaseURL(based).absoluteString(), u"http://h/?a&b");
    EXPECT_EQ(stringBySettingBaseURL(stringBySettingBaseURL(based, u"x"), u""), u"<head>\n\n</head>");
}

TEST(MetadataWriting, MetaTags) {
    const std::tuple<String, String> cases[] = {
        {u"a<meta name=X content=b>c<body><META NAME='x'>d</meta name=x>e", u"ac<body>de"},
        {u"<meta property=x content=a><meta http-equiv=x content=b><meta name=xx>",
         u"<meta property=x content=a><meta http-equiv=x content=b><meta name=xx>"},
        {u"a<meta name=x", u"a<meta name=x"},
        {String(), String()}};
    for (const auto& [page, stripped] : cases) {
        EXPECT_EQ(stringByStrippingMetaAttributeWithName(page, u"x"), stripped) << page;
        EXPECT_TRUE(stringByStrippingMetaAttributeWithName(page, String()).isAbsent());
        EXPECT_TRUE(stringByStrippingMetaAttributeWithName(page, u"").isIdenticalTo(page));
    }
}

}  // namespace
}  // namespace velmo
