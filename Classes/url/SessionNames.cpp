#include "url/SessionNames.h"

#include <algorithm>

#include "platform/Ascii.h"
#include "url/TrackingTables.h"

namespace velmo::detail {
namespace {

using Units = std::u16string_view;

/// How often letters and digits take turns; 0 if there is anything else.
std::size_t numberOfTurns(Units value) {
    if (!std::all_of(value.begin(), value.end(), ascii::isLetterOrDigit<char16_t>)) return 0;
    std::size_t turns = 0;
    for (std::size_t i = 1; i < value.size(); ++i)
        turns += ascii::isDigit(value[i]) != ascii::isDigit(value[i - 1]);
    return turns;
}

/// Sixteen units of ids or more, some of them digits; or ten that take turns as in no word.
bool looksLikeId(Units value) {
    const auto isOfId = [](char16_t unit) {
        return ascii::isLetterOrDigit(unit) || unit == u'-' || unit == u'_' || unit == u'.';
    };
    if (value.size() < 16) return value.size() >= 10 && numberOfTurns(value) >= 3;
    return std::all_of(value.begin(), value.end(), isOfId) &&
           std::any_of(value.begin(), value.end(), ascii::isDigit<char16_t>);
}

bool looksLikeHexId(Units value) {
    return looksLikeId(value) && value.size() >= 16 &&
           std::all_of(value.begin(), value.end(),
                       [](char16_t unit) { return ascii::hexValue(unit) < 16; });
}

/// "(24 lower letters and digits)", as servers wrote sessions at first.
bool isPlainSession(Units inner) {
    return inner.size() == 24 && std::all_of(inner.begin(), inner.end(), [](char16_t unit) {
               return ascii::isLower(unit) || ascii::isDigit(unit);
           });
}

}  // namespace

bool isValueOfSession(std::size_t row, Units value) {
    const SessionValue kind = sessionRows()[row].value;
    return kind == SessionValue::Any ||
           (kind == SessionValue::Id ? looksLikeId(value) : looksLikeHexId(value));
}

bool isSessionComponent(Units component) {
    if (component.size() < 4 || component.front() != u'(' || component.back() != u')') return false;
    Units inner = component.substr(1, component.size() - 2);
    if (isPlainSession(inner)) return true;
    // A letter for what it is of, and its value in parentheses, once or more often.
    bool hasSession = false;
    while (inner.size() >= 3 && inner[1] == u'(' && Units(u"ASFX").find(inner[0]) != Units::npos) {
        const std::size_t end = inner.find(u')');
        if (end == Units::npos) return false;
        hasSession = hasSession || inner[0] != u'X';
        inner.remove_prefix(end + 1);
    }
    return inner.empty() && hasSession;
}

}  // namespace velmo::detail
