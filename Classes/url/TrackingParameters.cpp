// Names are looked up whole in a table, and then their beginnings of those lengths that rows with a
// * have, so that the number of rows costs nothing. A row with hosts is asked once for each label
// of the host.
#include <velmocore/url/TrackingParameters.h>

#include <algorithm>
#include <bitset>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include <velmocore/platform/String.h>

#include "platform/Ascii.h"
#include "platform/UnitHash.h"
#include "url/TrackingTables.h"

namespace velmo {
namespace {

using Units = std::u16string_view;

/// The longest name that a row may have, and the longest host that there can be.
constexpr std::size_t LongestName = 64, LongestHost = 253;

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

using Names = std::unordered_map<std::u16string, Places, Hash, std::equal_to<>>;

bool containsName(const Names& names, Units name, Units host) {
    const auto found = names.find(name);
    return found != names.end() && found->second.contain(host);
}

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
    Names whole, beginnings;
    std::vector<std::size_t> lengths;  ///< of the beginnings
    std::bitset<128> first;            ///< the units that a beginning may begin with
    std::size_t rejected = 0;

    /// Adds a line: a name and its hosts. False if it is none.
    bool add(Units line) {
        std::u16string name = lowered(takeWord(line));
        const bool isBeginning = name.ends_with(u'*');
        if (isBeginning) name.pop_back();
        if (name.empty() || name.size() > LongestName || name.find(u'*') != name.npos) return false;
        if (isBeginning) noteBeginning(name);
        Places& places = (isBeginning ? beginnings : whole)[std::move(name)];
        Units host = takeWord(line);
        if (host.empty()) places.isEverywhere = true;
        for (; !host.empty(); host = takeWord(line)) {
            if (host.ends_with(u".*")) host.remove_suffix(1);
            places.hosts.insert(lowered(host));
        }
        return true;
    }

    void noteBeginning(Units name) {
        if (std::find(lengths.begin(), lengths.end(), name.size()) == lengths.end())
            lengths.push_back(name.size());
        if (name[0] < first.size())
            first.set(name[0]);
        else
            first.set();  // too rare to be told apart
    }

    bool contain(Units name, Units host) const {
        if (containsName(whole, name, host)) return true;
        if (name[0] < first.size() && !first[name[0]]) return false;
        for (const std::size_t length : lengths)
            if (length <= name.size() && containsName(beginnings, name.substr(0, length), host))
                return true;
        return false;
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
    if (name.empty()) return false;
    // Of a longer name only the beginning can be in a row, and of that no more than this is.
    char16_t lower[LongestName + 1];
    const std::size_t length = std::min(name.size(), std::size(lower));
    std::transform(name.begin(), name.begin() + static_cast<std::ptrdiff_t>(length), lower,
                   detail::ascii::toLower<char16_t>);
    return rows_->contain({lower, length}, host);
}

std::size_t TrackingParameters::numberOfRejectedLines() const noexcept { return rows_->rejected; }

}  // namespace velmo
