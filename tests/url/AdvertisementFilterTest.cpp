#include <velmocore/url/AdvertisementFilter.h>

#include "TestSupport.h"

namespace velmo {
namespace {

bool matches(const AdvertisementFilter& filter, View url) { return filter.matches(URL::URLWithString(url)); }

TEST(AdvertisementFilter, ReadsRulesAndSkipsOthers) {
    const AdvertisementFilter filter(
        u"[List 2.0]\r\n! a comment\n\n||Ads.example^\n||net.example^$third-party,popup\n||h.org/Banner/\n"
        u"||h.org/b/x^\n||adserver.^\n/popunder.\n*?Adid=*\n&ad\n/ads/*/x\n|http://x/\nh.org##.ad\n/^ad[0-9]/\n"
        u"||img.example^$image\n@@||good.ads.example^\n@@/popunder.html\n||ads.example/more\n");
    EXPECT_EQ(filter.numberOfRules(), 8u);
    EXPECT_EQ(filter.numberOfSkippedLines(), 8u);
    for (const auto& url : test::wordsOf(
             u"http://ads.example/ HTTPS://a.ADS.example:8/x http://net.example http://h.org/banner/a.gif "
             u"http://www.h.org/BANNER/ http://x.org/popunder.js http://x.org/?adid=2 http://ADID.org/a?adid="))
        EXPECT_TRUE(matches(filter, url)) << String(url);
    for (const auto& url : test::wordsOf(
             u"http://xads.example/ http://example/ http://ads.example.org/ http://good.ads.example/ "
             u"http://h.org/ http://h.org/ban http://h.org/a/banner/ http://oh.org/banner/ http://x.org/popunder.html "
             u"http://img.example/ http://x.org/&ad http://x.org/ads/a/x mailto:a@ads.example ads.example"))
        EXPECT_FALSE(matches(filter, url)) << String(url);
    EXPECT_FALSE(matches(AdvertisementFilter(u""), u"http://h/") || filter.matches(URL()));
}

// What the index finds is what a look at rule by rule finds.
TEST(AdvertisementFilter, SameAsRuleByRule) {
    std::mt19937 random(3);
    const auto text = [&](std::size_t length) {
        std::u16string units;
        while (units.size() < length) units += u"ab/-"[random() % 4];
        return units;
    };
    int hits = 0;
    for (int round = 0; round < 300; ++round) {
        std::vector<std::u16string> fragments;
        std::u16string rules;
        for (unsigned n = random() % 12; n > 0; --n) {
            fragments.push_back(text(4 + random() % 6));
            rules += fragments.back() + u'\n';
        }
        const AdvertisementFilter filter(rules);
        for (int i = 0; i < 30; ++i) {
            const std::u16string url = u"http://h/" + text(random() % 40);
            const bool expected = std::any_of(fragments.begin(), fragments.end(),
                                              [&](const auto& part) { return url.find(part) != url.npos; });
            ASSERT_EQ(matches(filter, url), expected) << utf8(rules) << utf8(url);
            hits += expected;
        }
    }
    EXPECT_GT(hits, 500);
}

}  // namespace
}  // namespace velmo
