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
#include "url/PlainQuery.h"
#include "url/Reductions.h"
#include "url/RemovedParameters.h"

namespace velmo::detail {
namespace {

using Units = std::u16string_view;

/// The same for traits that are known only when a URL is read.
constexpr auto RowsOfTraits = [] {
    std::array<ParameterMask, 7> rows{};
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

/// Of a text with a gap, or of a plain query.
template <class Parameters>
class SessionRemover {
public:
    explicit SessionRemover(Parameters& parameters) : parameters_(parameters) {}

    void run(Units text) {
        const unsigned traits = traitsOf(text, parameters_.present());
        isTopic_ = traits & Topic;
        rows_ = rowsOfAll(traits);
        for (ParameterMask found; (found = next());)
            parameters_.remove(static_cast<std::size_t>(std::countr_zero(found)));
    }

private:
    /// The parameters to take out next, of which the first one counts.
    ParameterMask next() {
        const ParameterMask parameters = parameters_.parameters();
        bool seen = seen_;
        if (!(parameters_.present() & bitOf(AnyID))) {
            const ParameterMask session = parameters & bitOf(SessionOfTopic);
            if (isTopic_ && session && (parameters_.present() & bitOf(PageOfTopic))) return session;
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
        numbers_ &= ~parameters_.takeChanged();
        if (numbers_ & bitOf(row)) return false;
        const std::size_t end = parameters_.endOf(row);
        const CharacterSetRep& letters = alphaCharacterSetRep();
        for (std::size_t i = parameters_.separatorOf(row) + 4; i < end; ++i)
            if (letters.contains(parameters_.unitAt(i))) return true;
        numbers_ |= bitOf(row);
        return false;
    }

    Parameters& parameters_;
    ParameterMask rows_ = 0;
    ParameterMask numbers_ = 0;  ///< those whose value is known to be a number
    bool isTopic_ = false;
    bool seen_ = false;  ///< what may be an id of a session was there
};

constexpr ParameterMask AllSessionRows =
    ~(rowsOf(IsCampaign) | rowsOf(IsMark)) | bitOf(SessionOfTopic);
constexpr ParameterMask CampaignRows = rowsOf(IsCampaign);

/// Whether a page with something behind its ? only asks for a login or shows a widget.
bool isForm(Units page, Units behind) {
    return page.ends_with(u"/login") || page.ends_with(u"/register") ||
           (page.ends_with(u".html") && behind.starts_with(u"widgetType="));
}

void cutAtForms(GapText& text) {
    const Units units = text.view();
    for (std::size_t i = indexOf(units, u'?'); i < units.size(); i = indexOf(units, u'?', i + 1))
        if (isForm(units.substr(0, i), units.substr(i + 1))) return text.truncate(i);
}

template <class Parameters>
void removeCampaignsOf(Parameters& parameters) {
    while (const ParameterMask found = parameters.parameters() & CampaignRows)
        parameters.remove(static_cast<std::size_t>(std::countr_zero(found)));
}

}  // namespace

void removeSessionIDs(GapText& text) {
    ParameterFinder parameters(text, RemovedList, ~CampaignRows);
    if (parameters.parameters() & AllSessionRows) SessionRemover(parameters).run(text.view());
    cutAtForms(text);
}

void removeSessionIDs(PlainQuery& query) {
    if (query.parameters() & AllSessionRows) SessionRemover(query).run(query.text());
    if (query.hasMark() && isForm(query.page(), query.first())) query.removeAll();
}

void removeCampaigns(GapText& text) {
    ParameterFinder parameters(text, RemovedList, CampaignRows);
    removeCampaignsOf(parameters);
}

void removeCampaigns(PlainQuery& query) { removeCampaignsOf(query); }

}  // namespace velmo::detail
