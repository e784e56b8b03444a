#include "url/KnownParameters.h"

#include <algorithm>

#include <velmocore/platform/String.h>

#include "platform/Ascii.h"
#include "url/TrackingTables.h"

namespace velmo::detail {
namespace {

using Units = std::u16string_view;

/// The longest name that a row may have, and the longest host that there can be.
constexpr std::size_t LongestName = ParameterNames::Longest, LongestHost = 253;

/// What stands in front of white space; the rest of the line is left.
Units takeWord(Units& line) {
    constexpr Units White = u" \t\r";
    line.remove_prefix(std::min(line.find_first_not_of(White), line.size()));
    const Units word = line.substr(0, line.find_first_of(White));
    line.remove_prefix(word.size());
    return word;
}

std::u16string lowered(Units units) {
    std::u16string copy(units);
    for (char16_t& unit : copy) unit = ascii::toLower(unit);
    return copy;
}

}  // namespace

/// A row with hosts is asked once for each label of the host.
bool KnownParameters::Places::have(Units host) const {
    if (host.size() > LongestHost) return false;
    for (std::size_t start = 0;; ++start) {
        if (hosts.contains(host.substr(start))) return true;
        const std::size_t dot = host.find(u'.', start);
        if (dot == Units::npos) return false;
        // "name.*" stands in the table as "name.".
        if (hosts.contains(host.substr(start, dot + 1 - start))) return true;
        start = dot;
    }
}

KnownParameters::KnownParameters() : numberOfSessions_(sessionRows().size()) {
    for (const SessionRow& row : sessionRows()) {
        const bool isBeginning = row.name.ends_with('*');
        const std::string_view name = row.name.substr(0, row.name.size() - isBeginning);
        names_.add(std::u16string(name.begin(), name.end()), isBeginning);
    }
    places_.resize(numberOfSessions_);
    for (const TrackingRow& row : trackingRows())
        add(String::fromUTF8(std::string(row.name) + ' ' + std::string(row.hosts)));
}

void KnownParameters::add(Units line) {
    std::u16string name = lowered(takeWord(line));
    const bool isBeginning = name.ends_with(u'*');
    if (isBeginning) name.pop_back();
    if (name.empty() || name.size() > LongestName || name.find(u'*') != name.npos) {
        ++rejected_;
        return;
    }
    const std::size_t number = names_.add(name, isBeginning);
    if (number == places_.size()) places_.emplace_back();
    Units host = takeWord(line);
    if (host.empty()) places_[number].isEverywhere = true;
    for (; !host.empty(); host = takeWord(line)) {
        if (host.ends_with(u".*")) host.remove_suffix(1);
        places_[number].hosts.insert(lowered(host));
    }
}

}  // namespace velmo::detail
