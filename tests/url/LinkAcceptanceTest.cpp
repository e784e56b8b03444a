#include <velmocore/url/LinkAcceptance.h>

#include "TestSupport.h"

namespace velmo {
namespace {

constexpr const char16_t *Bing = u"http://www.bing.com/search", *Ask = u"http://www.ask.com/web",
                         *Info = u"http://www.info.com/x", *Duck = u"http://duckduckgo.com/html/",
                         *Yahoo = u"http://search.yahoo.com/search", *Google = u"http://www.google.com/search",
                         *Scholar = u"http://scholar.google.com/scholar", *Medline = u"http://vsearch.nlm.nih.gov/x",
                         *Lexis = u"http://www.lexisweb.com/x", *Plain = u"http://h.org/a/b";

TEST(LinkAcceptance, FollowsTheRulesOfEachEngine) {
    const std::tuple<const char16_t*, const char16_t*, const char16_t*, const char16_t*> cases[] = {
        // any host: nothing is unwrapped
        {Plain, u"http://x.org/y", u"http://x.org/y", u"http://x.org/y"},
        {Plain, u"c?u=http://x.org", u"http://h.org/a/c?u=http://x.org", nullptr},
        {Plain, u"//x.org/y", u"http://x.org/y", nullptr},
        {Plain, u"./http://x", u"http://h.org/a/http://x", nullptr},
        {Plain, u"mailto:a@b.org", u"mailto:a@b.org", nullptr},
        {Plain, u"http://www.bing.com/x", u"http://www.bing.com/x", nullptr},
        {Plain, u"http://x.org/cache?q=1", u"http://x.org/cache?q=1", nullptr},
        {Plain, u"http://x.org/cache%3Fq=1", u"http://x.org/cache?q=1", nullptr},
        {Plain, u"http://x.org/a%2Fb", u"http://x.org/a/b", u"http://x.org/a/b"},
        {Plain, u"http://x.org/a%20b", u"http://x.org/a%20b", u"http://x.org/a%20b"},  // decoded it is no URL
        {Plain, u"http://h.org/translate?hl=de", u"http://h.org/translate?hl=de", nullptr},
        // Bing
        {Bing, u"http://x.MSN.com/y", nullptr, nullptr},
        {Bing, u"http://x.msn.de/y", nullptr, nullptr},
        {Bing, u"http://go.microsoft.com/fwlink/?x", nullptr, nullptr},
        {Bing, u"/x?a&furl=http%3a//x.org&b", nullptr, nullptr},  // not decoded
        {Bing, u"/x?a&furl=http://x.org/%2F&b", u"http://x.org/%2F", u"http://x.org/%2F"},
        {Bing, u"/x?a&furl=http://www.bing.com", u"http://www.bing.com", u"http://www.bing.com"},
        {Bing, u"/x", u"http://www.bing.com/x", nullptr},
        {u"http://bing.com/", u"http://x.msn.de/y", u"http://x.msn.de/y", u"http://x.msn.de/y"},
        // Ask
        {Ask, u"http://web.ask.com/redir?a&bu=http%3A%2F%2Fx.org&qte=1", u"http://x.org", u"http://x.org"},
        {Ask, u"http://web.ask.com/redir?a", nullptr, nullptr},
        {Ask, u"http://tm.wc.ask.com/r?a&u=http://x.org/", u"http://x.org/", u"http://x.org/"},
        {Ask, u"http://tmsyn.wc.ask.com/r?a", nullptr, nullptr},
        {Ask, u"http://www.PriceGrabber.com/", nullptr, nullptr},
        {u"http://a.teoma.com/", u"http://x.superpages.com/", nullptr, nullptr},
        {u"http://www.lycos.com/", u"http://x.org/", u"http://x.org/", u"http://x.org/"},
        // Info
        {Info, u"/RedirPaid.htm?x=http://x.org", nullptr, nullptr},
        {Info, u"http://www.yellowbook.com/", nullptr, nullptr},
        {Info, u"/redirfree.htm?u=http://y.org&v=http://x.org/a&pg=1&time=2", u"http://x.org/a&pg=1",
         u"http://x.org/a&pg=1"},
        {Info, u"/redirfree.htm?u=http://x.org/a&pg=1", u"http://x.org/a", u"http://x.org/a"},
        {Info, u"/redirfree.htm?u=http://x.org/a", nullptr, nullptr},
        {Info, u"/redirfree.htm?u=ftp://x.org/a&pg=1", nullptr, nullptr},
        {Info, u"/x?a&rawto=http://x.org/?a&b", u"http://x.org/?a&b", u"http://x.org/?a&b"},
        {Info, u"/ClickHandler.ashx?du=http%3A%2F%2Fx.org%2F%C3%A4&b", u"http://x.org/%C3%A4", nullptr},
        {Info, u"/ClickHandler.ashx?du=y&ClickHandler.ashx?ru=http%3A%2F%2Fx.org&b", u"http://x.org", u"http://x.org"},
        {Info, u"/x", u"http://www.info.com/x", nullptr},
        // DuckDuckGo
        {Duck, u"/l/?kh=-1&uddg=http%3A%2F%2Fx.org%2Fa%253Fb&c", u"http://x.org/a?b", u"http://x.org/a?b"},
        {Duck, u"/l/?uddg=https://x.org/", u"https://x.org/", u"https://x.org/"},
        {Duck, u"/l/?uddg=http%FF", nullptr, nullptr},
        {Duck, u"/about", u"http://duckduckgo.com/about", nullptr},
        // Yahoo
        {Yahoo, u"http://0.R.msn.com/?x&r=http://x.org", nullptr, nullptr},
        {Yahoo, u"http://click.alltheweb.com/x/http/x.org/a", u"http://x.org/a", u"http://x.org/a"},
        {Yahoo, u"/x?a&rurl=http%3a//x.org&b", u"http://x.org", u"http://x.org"},
        {Yahoo, u"/x%26rurl=http%253a//x.org%26b", u"http://x.org", u"http://x.org"},
        {Yahoo, u"/x?u=http://x.org/%23a&b", u"http://x.org/", u"http://x.org/#a"},
        {Yahoo, u"/x/*-http%3a/x.org/a&b", u"http://x.org/a&b", u"http://x.org/a&b"},
        {Yahoo, u"/x/**http%3a//x.org/a&b", u"http://x.org/a&b", u"http://x.org/a&b"},
        {Yahoo, u"/x&r=http://x.org/*-http://y.org", u"http://x.org/*-http://y.org", u"http://x.org/*-http://y.org"},
        {Yahoo, u"/x/RU=http%3a%2f%2fx.org%2f/RK=0", u"http://x.org/", u"http://x.org/"},
        {Yahoo, u"/x/RU=http%FF/", nullptr, nullptr},
        {Yahoo, u"http://x.org/", nullptr, nullptr},
        // Google
        {Google, u"http://www.blogger.com/?tab=x", u"http://www.blogger.com/?tab=x", nullptr},
        {Google, u"http://www.google.com/url?url=http://x.org/&sa=1", u"http://x.org/&sa=1", u"http://x.org/&sa=1"},
        {Google, u"/url?q=http://x.org/&sa=1", u"http://x.org/", u"http://x.org/"},
        {Google, u"http://a.google.com.au/url?q=http://x.org/", u"http://x.org/", u"http://x.org/"},
        {Google, u"http://h.org/url?q=http://x.org/", u"http://h.org/url?q=http://x.org/",
         u"http://h.org/url?q=http://x.org/"},
        {Google, u"/url?q=", nullptr, nullptr},
        {Scholar, u"/x/url?q=http://x.org/&sa=1", u"http://x.org/&sa=1", u"http://x.org/&sa=1"},
        {Google, u"/imgres?imgurl=http://y.org&imgrefurl=http://x.org/a&h", u"http://x.org/a", u"http://x.org/a"},
        {Google, u"/imgres?imgurl=x&imgrefurl=", nullptr, nullptr},
        {Google, u"/url?sa=t&q=http://x.org&b", u"http://x.org", u"http://x.org"},
        {Google, u"http://x.org/codesearch?ct=rc&cs_p=1", u"http://x.org/codesearch?ct=rc&cs_p=1",
         u"http://x.org/codesearch?ct=rc&cs_p=1"},
        {Google, u"http://x.org/codesearch?ct=rc", nullptr, nullptr},
        {Google, u"http://www.youtube.com/x", u"http://www.youtube.com/x", nullptr},
        {Google, u"/url?q=http://www.youtube.com/x", u"http://www.youtube.com/x", u"http://www.youtube.com/x"},
        {Google, u"/url?q=http://www.blogger.com/", u"http://www.blogger.com/", nullptr},
        {Google, u"http://x.org/", u"http://x.org/", u"http://x.org/"},
        {Google, u"/x", u"http://www.google.com/x", nullptr},
        // Medline, LexisWeb
        {Medline, u"/cgi-bin/query-meta?a&url=http%3A//x.org&rid=1", u"http://x.org", u"http://x.org"},
        {Medline, u"/cgi-bin/query-meta?a", nullptr, nullptr},
        {Medline, u"/x", u"http://vsearch.nlm.nih.gov/x", nullptr},
        {Lexis, u"/Refer.aspx?Type=WebResult&url=http://x.org&rid=1", u"http://x.org&rid=1", u"http://x.org&rid=1"},
        {Lexis, u"/Refer.aspx?Type=WebResult", nullptr, nullptr},
        // no host, no base
        {u"file:///a/b", u"http://x.org", u"http://x.org", u"http://x.org"},
        {nullptr, u"http://x.org", nullptr, u"http://x.org"},
        {nullptr, u"x", nullptr, nullptr},
        {Plain, u"", nullptr, nullptr},
        {Plain, nullptr, nullptr, nullptr}};
    for (const auto& [page, link, resolved, accepted] : cases) {
        const URL base = URL::URLWithString(page);
        EXPECT_EQ(resolveStringURL(link, base).absoluteString(), String(resolved)) << String(link);
        EXPECT_EQ(acceptStringURL(link, base).absoluteString(), String(accepted)) << String(link);
    }
}

}  // namespace
}  // namespace velmo
