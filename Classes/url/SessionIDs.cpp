// Parameters that only name a session are taken out one after the other, and each removal may
// change what else is to be removed: the same name may come again, or what was seen before may
// allow more. So the rules are a table, in the order in which they are tried, and the loop asks
// for the first row that applies until there is none. What would make that slow is kept: where
// each name stands (see url/Parameters.h), and which values are known to be numbers.
#include <array>
#include <bit>
#include <iterator>

#include <velmocore/text/CharacterSets.h>
#include <velmocore/url/URLClassification.h>

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
static_assert(NumberOfRows <= MostParameterNames);
constexpr ParameterList List(Names);

/// The rows that go with one of the traits.
constexpr ParameterMask rowsOf(unsigned traits) {
    ParameterMask rows = 0;
    for (std::size_t i = 0; i < NumberOfRows; ++i)
        if (Rows[i].needs & traits) rows |= ParameterMask(1) << i;
    return rows;
}
/// The same for traits that are known only when a URL is read.
constexpr auto RowsOfTraits = [] {
    std::array<ParameterMask, 10> rows{};
    for (unsigned bit = 0; bit < rows.size(); ++bit) rows[bit] = rowsOf(1u << bit);
    return rows;
}();
ParameterMask rowsOfAll(unsigned traits) {
    ParameterMask rows = 0;
    for (; traits; traits &= traits - 1)
        rows |= RowsOfTraits[static_cast<std::size_t>(std::countr_zero(traits))];
    return rows;
}
constexpr ParameterMask SessionRows = rowsOf(IsSession), NumberRows = rowsOf(IsIfNoNumber),
                        SeenRows = rowsOf(SessionSeen);
constexpr ParameterMask bitOf(std::size_t row) { return ParameterMask(1) << row; }
constexpr ParameterMask KindRows = rowsOf(StaticPage | ScriptPage | ServerPage),
                        TopicRows = rowsOf(Topic) | bitOf(SessionOfTopic), NewsRows = rowsOf(News);

/// What the URL is by the ending in front of a ?, of which the first kind counts.
unsigned kindOf(Units text) {
    unsigned kinds = 0;
    for (std::size_t i = indexOf(text, u'?'); i < text.size(); i = indexOf(text, u'?', i + 1)) {
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

bool isNews(Units text) {
    constexpr std::string_view Host = "//GROUPS.GOOGLE.COM/";
    for (std::size_t i = indexOf(text, u'/'); i < text.size(); i = indexOf(text, u'/', i + 1))
        if (keyword::beginsWith(text.substr(i), Host)) return true;
    return false;
}

/// What is known of a URL, as far as one of the rows asks for it.
unsigned traitsOf(Units text, ParameterMask rows) {
    unsigned traits = Always;
    if (rows & (KindRows | TopicRows)) traits |= kindOf(text);
    if ((traits & ScriptPage) && (rows & TopicRows) && stringURLIsTopicOrThread(text))
        traits |= Topic;
    if ((rows & NewsRows) && isNews(text)) traits |= News;
    return traits;
}

class SessionRemover {
public:
    explicit SessionRemover(GapText& text)
        : text_(text), finder_(text, List, startOfParameters(text)) {}

    void run() {
        if (!finder_.parameters()) return;
        const unsigned traits = traitsOf(text_.view(), finder_.present());
        isTopic_ = traits & Topic;
        rows_ = rowsOfAll(traits);
        for (ParameterMask found; (found = next());)
            finder_.remove(static_cast<std::size_t>(std::countr_zero(found)));
    }

private:
    /// The parameters to take out next, of which the first one counts.
    ParameterMask next() {
        const ParameterMask parameters = finder_.parameters();
        bool seen = seen_;
        if (!(finder_.present() & bitOf(AnyID))) {
            const ParameterMask session = parameters & bitOf(SessionOfTopic);
            if (isTopic_ && session && (finder_.present() & bitOf(PageOfTopic))) return session;
        } else if (const ParameterMask sessions = parameters & SessionRows) {
            seen_ = true;
            return sessions;
        } else if (const ParameterMask numbers = parameters & NumberRows) {
            if (hasLetterInValue(static_cast<std::size_t>(std::countr_zero(numbers))))
                return numbers;
        } else {
            seen = true;
        }
        const ParameterMask others = parameters & (rows_ | (seen ? SeenRows : 0));
        if (others) seen_ = seen;
        return others;
    }

    /// A number is no session. The value is looked for behind a name of three letters, so
    /// that the longer name has letters of its own there and always goes.
    bool hasLetterInValue(std::size_t row) {
        // A long number beside many other parameters is asked for with each of these.
        numbers_ &= ~finder_.takeChanged();
        if (numbers_ & bitOf(row)) return false;
        const std::size_t separator = finder_.separatorOf(row);
        const std::size_t end = endOfParameter(text_, separator);
        const CharacterSetRep& letters = alphaCharacterSetRep();
        for (std::size_t i = separator + 4; i < end; ++i)
            if (letters.contains(text_[i])) return true;
        numbers_ |= bitOf(row);
        return false;
    }

    GapText& text_;
    ParameterFinder finder_;
    ParameterMask rows_ = 0;
    ParameterMask numbers_ = 0;  ///< those whose value is known to be a number
    bool isTopic_ = false;
    bool seen_ = false;  ///< what may be an id of a session was there
};

/// What stands in front of the ? of a page that only asks for a login or shows a widget.
void cutAtForms(GapText& text) {
    constexpr Units Login = u"/login", Register = u"/register", Page = u".html",
                    Widget = u"widgetType=";
    const Units units = text.view();
    for (std::size_t i = indexOf(units, u'?'); i < units.size(); i = indexOf(units, u'?', i + 1)) {
        const Units page = units.substr(0, i);
        if (page.ends_with(Login) || page.ends_with(Register) ||
            (page.ends_with(Page) && units.substr(i + 1).starts_with(Widget)))
            return text.truncate(i);
    }
}

}  // namespace

void removeSessionIDs(GapText& text) {
    SessionRemover(text).run();
    cutAtForms(text);
}

}  // namespace velmo::detail
