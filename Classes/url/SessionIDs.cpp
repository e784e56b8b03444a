#include <iterator>

#include <velmocore/text/CharacterSets.h>
#include <velmocore/text/CharacterTests.h>
#include <velmocore/text/Comparison.h>
#include <velmocore/text/FastSearch.h>
#include <velmocore/text/Removal.h>

#include "text/Keyword.h"
#include "url/Parameters.h"
#include "url/Reductions.h"

namespace velmo::detail {
namespace {

using Units = std::u16string_view;

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
};

struct Row {
    ParameterName name;
    unsigned needs;
};

/// In the order in which they are tried.
constexpr Row Rows[] = {
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
    {{u"ID="}, IsMark},
    {{u"&p=", false}, IsMark},
    {{u"s=", false}, IsMark},  // of a topic, if the two marks above allow it
};
constexpr std::size_t NumberOfRows = std::size(Rows);
constexpr std::size_t AnyID = NumberOfRows - 3, PageOfTopic = NumberOfRows - 2,
                      SessionOfTopic = NumberOfRows - 1;

constexpr auto Names = [] {
    std::array<ParameterName, NumberOfRows> names{};
    for (std::size_t i = 0; i < NumberOfRows; ++i) names[i] = Rows[i].name;
    return names;
}();
static_assert(NumberOfRows <= ParameterFinder::MostNames);

/// What the URL is by the ending in front of a ?, of which the first kind counts.
unsigned kindOf(Units text) {
    unsigned kinds = 0;
    for (std::size_t i = text.find(u'?'); i != Units::npos; i = text.find(u'?', i + 1)) {
        const Units page = text.substr(0, i);
        const auto endsWith = [page](std::string_view ending) {
            return page.size() >= ending.size() &&
                   keyword::beginsWith(page.substr(page.size() - ending.size()), ending);
        };
        if (endsWith(".HTML") || endsWith(".HTM")) kinds |= StaticPage;
        if (endsWith(".PHP")) kinds |= ScriptPage;
        if (endsWith(".ASP") || endsWith(".ASPX")) kinds |= ServerPage;
    }
    for (unsigned kind : {StaticPage, ScriptPage, ServerPage})
        if (kinds & kind) return kind;
    return 0;
}

bool isTopicOrThread(Units text) {
    constexpr std::string_view Topics[] = {"viewtopic.php", "viewthread.php", "showtopic.php",
                                           "showpost.php", "showthread.php"};
    if (text.size() >= 13 && fastContainsSubCStrings(text, Topics, &lowerCharsTable())) return true;
    return countNumbers(text) >= 2 && hasSuffixNoCase(stringByRemovingDigits(text), u"-t-.html");
}

unsigned traitsOf(Units text) {
    unsigned traits = Always | kindOf(text);
    if ((traits & ScriptPage) && isTopicOrThread(text)) traits |= Topic;
    if (keyword::contains(text, "//GROUPS.GOOGLE.COM/")) traits |= News;
    return traits;
}

class SessionRemover {
public:
    explicit SessionRemover(GapText& text)
        : text_(text), traits_(traitsOf(text.view())), finder_(text, Names) {}

    void run() {
        for (std::size_t row; (row = next()) != NotThere;) finder_.remove(row);
    }

private:
    /// The row of the parameter to take out; NotThere if none is left.
    std::size_t next() {
        unsigned traits = traits_;
        if (!finder_.contains(AnyID)) {
            if ((traits & Topic) && finder_.contains(PageOfTopic) &&
                finder_.isParameter(SessionOfTopic))
                return SessionOfTopic;
        } else {
            std::size_t row = firstOf(IsSession);
            if (row != NotThere) {
                traits_ |= SessionSeen;
                return row;
            }
            row = firstOf(IsIfNoNumber);
            if (row == NotThere)
                traits |= SessionSeen;
            else if (hasLetterInValue(row))
                return row;
        }
        const std::size_t row = firstOf(traits);
        if (row != NotThere) traits_ |= traits & SessionSeen;
        return row;
    }

    std::size_t firstOf(unsigned traits) const {
        for (std::size_t row = 0; row < NumberOfRows; ++row)
            if ((Rows[row].needs & traits) && finder_.isParameter(row)) return row;
        return NotThere;
    }

    /// A number is no session. The value is looked for behind a name of three letters, so
    /// that the longer name has letters of its own there and always goes.
    bool hasLetterInValue(std::size_t row) const {
        const std::size_t separator = finder_.separatorOf(row);
        const std::size_t end = endOfParameter(text_, separator);
        const CharacterSetRep& letters = alphaCharacterSetRep();
        for (std::size_t i = separator + 4; i < end; ++i)
            if (letters.contains(text_[i])) return true;
        return false;
    }

    GapText& text_;
    unsigned traits_;
    ParameterFinder finder_;
};

/// What stands in front of the ? of a page that only asks for a login or shows a widget.
void cutAtForms(GapText& text) {
    const struct {
        std::u16string_view form;
        std::size_t questionMark;
    } forms[] = {{u"/login?", 6}, {u"/register?", 9}, {u".html?widgetType=", 5}};
    for (bool cut = true; cut;) {
        cut = false;
        for (const auto& [form, questionMark] : forms) {
            const std::size_t position = text.view().find(form);
            if (position == Units::npos) continue;
            text.truncate(position + questionMark);
            cut = true;
            break;
        }
    }
}

}  // namespace

void removeSessionIDs(GapText& text) {
    const Units units = text.view();
    if (units.find(u'=') != Units::npos) SessionRemover(text).run();
    if (text.view().find(u'?') != Units::npos) cutAtForms(text);
}

}  // namespace velmo::detail
