// Most names are none of the table's, which one look tells (see ParameterNames.h), so that the number
// of rows costs nothing. A row with hosts is asked once for each label of the host.
#include <velmocore/url/TrackingParameters.h>

#include <algorithm>
#include <string>
#include <unordered_set>
#include <vector>

#include <velmocore/platform/String.h>

#include "platform/Ascii.h"
#include "platform/UnitHash.h"
#include "url/ParameterNames.h"
#include "url/TrackingTables.h"

namespace velmo {
namespace {

using Units = std::u16string_view;

/// The longest name that a row may have, and the longest host that there can be.
constexpr std::size_t LongestName = detail::ParameterNames::Longest, LongestHost = 253;

struct Hash {
    using is_transparent = void;
    std::size_t operator()(Units units) const noexcept {
        return detail::hashOfUnits(units, detail::hashSeed());
    }
};

/// Where a name counts.
struct Places {
    bool isEverywhere = false;
    std::unordered_set<std::u16string, Hash, std::equal_to<>> hosts;

    bool contain(Units host) const {
        if (isEverywhere || hosts.empty() || host.size() > LongestHost) return isEverywhere;
        for (std::size_t start = 0;; ++start) {
            if (hosts.contains(host.substr(start))) return true;
            const std::size_t dot = host.find(u'.', start);
            if (dot == Units::npos) return false;
            // "name.*" stands in the table as "name.".
            if (hosts.contains(host.substr(start, dot + 1 - start))) return true;
            start = dot;
        }
    }
};

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
    for (char16_t& unit : copy) unit = detail::ascii::toLower(unit);
    return copy;
}

}  // namespace

struct TrackingParameters::Rows {
    detail::ParameterNames names;
    std::vector<Places> places;  ///< of each name
    std::size_t rejected = 0;

    /// Adds a line: a name and its hosts. False if it is none.
    bool add(Units line) {
        std::u16string name = lowered(takeWord(line));
        const bool isBeginning = name.ends_with(u'*');
        if (isBeginning) name.pop_back();
        if (name.empty() || name.size() > LongestName || name.find(u'*') != name.npos) return false;
        const std::size_t number = names.add(name, isBeginning);
        if (number == places.size()) places.emplace_back();
        Units host = takeWord(line);
        if (host.empty()) places[number].isEverywhere = true;
        for (; !host.empty(); host = takeWord(line)) {
            if (host.ends_with(u".*")) host.remove_suffix(1);
            places[number].hosts.insert(lowered(host));
        }
        return true;
    }

    static Rows common() {
        Rows rows;
        for (const detail::TrackingRow& row : detail::trackingRows())
            rows.add(String::fromUTF8(std::string(row.name) + ' ' + std::string(row.hosts)));
        return rows;
    }
};

const TrackingParameters& TrackingParameters::common() {
    static const TrackingParameters& parameters = *new TrackingParameters(Units());
    return parameters;
}

TrackingParameters::TrackingParameters(Units text) {
    auto rows = std::make_shared<Rows>(Rows::common());
    while (!text.empty()) {
        const Units line = text.substr(0, text.find(u'\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        Units rest = line;
        const Units word = takeWord(rest);
        if (!word.empty() && word[0] != u'#' && !rows->add(line)) ++rows->rejected;
    }
    rows_ = std::move(rows);
}

bool TrackingParameters::contains(Units name, Units host) const {
    return rows_->names.any(
        name, [&](std::size_t number) { return rows_->places[number].contain(host); });
}

std::size_t TrackingParameters::numberOfRejectedLines() const noexcept { return rows_->rejected; }

}  // namespace velmo
