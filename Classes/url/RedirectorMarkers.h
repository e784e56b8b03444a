// The hosts by which links of search engines are known, by party. A domain with a full stop
// in front stands for its subdomains, a plain one for itself too; a name that begins with
// slashes must follow a scheme. All are in lower case. To add a host of a party, add a
// constant and its test in LinkAcceptance.cpp; the order of the tests counts.
#pragma once

#include <string_view>

namespace velmo::detail::markers {

using Marker = std::u16string_view;

// Microsoft: Bing, MSN, Live. What Bing's pages have to say for themselves.
inline constexpr Marker Bing = u".bing.com";
inline constexpr Marker BingsOwn[] = {
    u".msn.com",
    u".msn.de",
    u"go.microsoft.com/fwlink/",
    u"go.microsoft.com/?linkid=",
    u"onlinehelp.microsoft.com",
    u".live.com",
};
inline constexpr Marker MSNRedirect = u".r.msn.com";

// Ask, Teoma, Lycos, HotBot
inline constexpr Marker AskGroup[] = {u"ask.com", u".teoma.com", u"lycos.com", u"hotbot.com"};
inline constexpr Marker AskRedirect = u"http://web.ask.com/redir?";
inline constexpr Marker AskTracking[] = {u"http://tm.wc.ask.com/", u"http://tmsyn.wc.ask.com/"};
inline constexpr Marker AsksOwn[] = {u"ask.com", u"pricegrabber.com", u"superpages.com"};

// Info
inline constexpr Marker Info = u"info.com";
inline constexpr Marker InfoAdvertisers[] = {
    u"ticketsnow.com",
    u"shopping.com",
    u"www.yellowbook.com",
};

// DuckDuckGo
inline constexpr Marker DuckDuckGo = u"duckduckgo.com";

// Yahoo, AltaVista, AlltheWeb
inline constexpr Marker YahooGroup[] = {u"yahoo.com", u"altavista.com", u"alltheweb.com"};
inline constexpr Marker AlltheWebClick = u"click.alltheweb.com";

// Google, with Blogger and YouTube
inline constexpr Marker GoogleGroup[] = {u"google.de", u"google.com", u"google.co.uk"};
inline constexpr Marker GoogleUrl[] = {
    u"www.google.com/url?url=",
    u"www.google.com.au/url?url=",
};
inline constexpr Marker GoogleQuery[] = {u".google.com/url?q=", u".google.com.au/url?q="};
inline constexpr Marker Scholar = u"scholar.google.com";
inline constexpr Marker BloggerStart = u"www.blogger.com/?tab=";
inline constexpr Marker BloggerHome = u"//www.blogger.com/";
inline constexpr Marker YouTube = u"//www.youtube.com";

// the National Library of Medicine
inline constexpr Marker Medline = u"vsearch.nlm.nih.gov";

// LexisWeb
inline constexpr Marker LexisWeb = u"lexisweb.com";

}  // namespace velmo::detail::markers
