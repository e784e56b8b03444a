// The parameters that only name a session or a campaign, in one table, so that one look at a text
// tells which of them it has. Which of them go, and when, is told by the rules in SessionIDs.cpp.
#pragma once

#include <array>
#include <iterator>

#include "url/Parameters.h"

namespace velmo::detail {

/// What is known of a URL. A parameter that needs one of these goes only with it.
enum Trait : unsigned {
    Always = 1,
    StaticPage = 2,      ///< .html? or .htm?
    ScriptPage = 4,      ///< .php?
    ServerPage = 8,      ///< .asp? or .aspx?
    Topic = 16,          ///< a script that shows a topic of a forum
    News = 32,           ///< an article of a news group
    SessionSeen = 64,    ///< what may be an id of a session was there
    IsSession = 128,     ///< needs nothing, and marks the session as seen
    IsIfNoNumber = 256,  ///< goes unless its value is a number
    IsMark = 512,        ///< only looked for
    IsCampaign = 1024,   ///< goes when all sessions are gone
};

struct RemovedParameter {
    ParameterName name;
    unsigned needs;
};

/// In the order in which they are tried.
inline constexpr RemovedParameter RemovedParameters[] = {
    {{u"PHPSESSIONID="}, IsSession},
    {{u"PHPSESSID="}, IsSession},
    {{u"JSESSIONID="}, IsSession},
    {{u"JSESSID="}, IsSession},
    {{u"SESSIONID="}, IsSession},
    {{u"WGSESSID="}, IsSession},
    {{u"SESSID="}, IsSession},
    {{u"CFID=", false}, IsSession},
    {{u"CFTOKEN=", false}, IsSession},
    {{u"affid=", false}, IsSession},
    {{u"REFFID=", false}, IsSession},
    {{u"cid=", false}, IsIfNoNumber},
    {{u"p_sid=", false}, IsIfNoNumber},
    {{u"sid=", false}, IsIfNoNumber},
    {{u"ccbill=", false}, Always},
    {{u"nats=", false}, Always},
    {{u"_fb_noscript=", false}, Always},
    {{u"pi=", false}, StaticPage | ScriptPage},
    {{u"CACHE="}, StaticPage | ScriptPage},
    {{u"CMP=", false}, StaticPage},
    {{u"ATT=", false}, StaticPage},
    {{u"LSRC="}, ScriptPage | ServerPage},
    {{u"HIGHLIGHT="}, Topic},
    {{u"hilit=", false}, Topic},
    {{u"ei=", false}, News},
    {{u"RANDOM="}, SessionSeen},
    {{u"UTM_SOURCE="}, IsCampaign},
    {{u"UTM_MEDIUM="}, IsCampaign},
    {{u"UTM_CAMPAIGN="}, IsCampaign},
    {{u"UTM_TERM="}, IsCampaign},
    {{u"UTM_CONTENT="}, IsCampaign},
    {{u"UTM_NOOVERRIDE="}, IsCampaign},
    {{u"VED="}, IsMark},  // of a patent, which has a rule of its own
    {{u"ID="}, IsMark},
    {{u"&p=", false}, IsMark},
    {{u"s=", false}, IsMark},  // of a topic, if the two marks above allow it
};
inline constexpr std::size_t NumberOfRemovedParameters = std::size(RemovedParameters);
inline constexpr std::size_t SessionOfTopic = NumberOfRemovedParameters - 1,
                             PageOfTopic = SessionOfTopic - 1, AnyID = PageOfTopic - 1,
                             ResultNumber = AnyID - 1;

constexpr ParameterMask bitOf(std::size_t row) { return ParameterMask(1) << row; }

/// The rows that go with one of the traits.
constexpr ParameterMask rowsOf(unsigned traits) {
    ParameterMask rows = 0;
    for (std::size_t i = 0; i < NumberOfRemovedParameters; ++i)
        if (RemovedParameters[i].needs & traits) rows |= bitOf(i);
    return rows;
}

/// The names alone, as they are looked for.
inline constexpr auto RemovedNames = [] {
    std::array<ParameterName, NumberOfRemovedParameters> names{};
    for (std::size_t i = 0; i < names.size(); ++i) names[i] = RemovedParameters[i].name;
    return names;
}();
static_assert(NumberOfRemovedParameters <= MostParameterNames);
inline constexpr ParameterList RemovedList(RemovedNames);

}  // namespace velmo::detail
