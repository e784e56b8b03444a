// Lists of blockers have ten thousands of rules, and a page hundreds of links. So no rule is looked
// for: each host of a rule is asked for by the ends of the link's host, a path by its beginnings of
// those lengths that rules of the host have, and of every text that may stand anywhere four units
// are picked, those that fewest other rules have, by which a walk over the link finds the few rules
// that are worth a comparison.
#include <velmocore/url/AdvertisementFilter.h>

#include <algorithm>
#include <array>
#include <bitset>
#include <functional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/Ascii.h"
#include "platform/UnitHash.h"

namespace velmo {
namespace {

using namespace detail;
using Units = std::u16string_view;

/// A name of a host is no longer, and what is compared of a path neither.
constexpr std::size_t LongestHost = 253, LongestPath = 255;

struct Hash {
    using is_transparent = void;
    std::size_t operator()(Units units) const noexcept { return hashOfUnits(units, hashSeed()); }
};
std::u16string lowered(Units units) {
    std::u16string copy(units);
    for (char16_t& unit : copy) unit = ascii::toLower(unit);
    return copy;
}

/// What rules say of one host.
struct HostRules {
    bool isWhole = false;
    std::bitset<LongestPath + 1> lengths;  ///< of the paths
};

/// Texts that may stand anywhere, by four units of each.
class Fragments {
public:
    void add(std::u16string text) { texts_.push_back(std::move(text)); }

    /// Is called once, behind the last text.
    void close() {
        std::unordered_map<std::uint64_t, std::size_t> uses;
        for (const std::u16string& text : texts_)
            for (std::size_t i = 0; i + Width <= text.size(); ++i) ++uses[windowAt(text, i)];
        for (std::size_t n = 0; n < texts_.size(); ++n) {
            const std::u16string& text = texts_[n];
            std::size_t best = 0;
            for (std::size_t i = 1; i + Width <= text.size(); ++i)
                if (uses[windowAt(text, i)] < uses[windowAt(text, best)]) best = i;
            const std::uint64_t window = windowAt(text, best);
            seen_.set(slotOf(window));
            places_[window].push_back({n, best});
        }
    }

    bool areIn(Units text) const {
        for (std::size_t i = 0; i + Width <= text.size(); ++i) {
            const std::uint64_t window = windowAt(text, i);
            if (seen_[slotOf(window)] && isHit(text, i, window)) return true;
        }
        return false;
    }

    static constexpr std::size_t Width = 4;

private:
    struct Place {
        std::size_t text, offset;
    };
    static constexpr std::size_t Slots = std::size_t{1} << 16;

    static std::uint64_t windowAt(Units text, std::size_t i) {
        return text[i] | std::uint64_t{text[i + 1]} << 16 | std::uint64_t{text[i + 2]} << 32 |
               std::uint64_t{text[i + 3]} << 48;
    }
    static std::size_t slotOf(std::uint64_t window) {
        return static_cast<std::size_t>(mixedHash(window, 0x9E3779B97F4A7C15) % Slots);
    }

    bool isHit(Units text, std::size_t at, std::uint64_t window) const {
        const auto found = places_.find(window);
        if (found == places_.end()) return false;
        return std::any_of(found->second.begin(), found->second.end(), [&](const Place& place) {
            return place.offset <= at &&
                   text.substr(at - place.offset).starts_with(texts_[place.text]);
        });
    }

    std::vector<std::u16string> texts_;
    std::bitset<Slots> seen_;
    std::unordered_map<std::uint64_t, std::vector<Place>> places_;
};

/// The rules of one kind: those that name advertisements, or those that take it back.
class RuleSet {
public:
    void addHost(Units host) { hosts_[std::u16string(host)].isWhole = true; }
    void addPath(Units host, Units path) {
        hosts_[std::u16string(host)].lengths.set(path.size());
        paths_.insert(std::u16string(host) + std::u16string(path));
    }
    void addFragment(Units text) { fragments_.add(std::u16string(text)); }
    void close() { fragments_.close(); }

    /// All in lower case; the path with all that follows it.
    bool match(Units whole, Units host, Units path) const {
        return hostMatches(host, path) || fragments_.areIn(whole);
    }

private:
    bool hostMatches(Units host, Units path) const {
        if (host.size() > LongestHost) return false;
        for (Units end = host;;) {
            if (const auto found = hosts_.find(end); found != hosts_.end())
                if (found->second.isWhole || pathMatches(end, path, found->second)) return true;
            const std::size_t dot = end.find(u'.');
            if (dot == Units::npos) return false;
            end.remove_prefix(dot + 1);
        }
    }

    bool pathMatches(Units host, Units path, const HostRules& rules) const {
        if (rules.lengths.none()) return false;
        std::u16string key(host);
        for (std::size_t length = 1; length <= std::min(path.size(), LongestPath); ++length) {
            key += path[length - 1];
            if (rules.lengths[length] && paths_.contains(key)) return true;
        }
        return false;
    }

    std::unordered_map<std::u16string, HostRules, Hash, std::equal_to<>> hosts_;
    std::unordered_set<std::u16string, Hash, std::equal_to<>> paths_;  ///< behind their hosts
    Fragments fragments_;
};

/// Whether the options of a rule ask for nothing that an address does not tell.
bool areOptionsKnown(Units options) {
    constexpr Units Known[] = {u"third-party", u"3p",  u"popup",    u"document",
                               u"doc",         u"all", u"important"};
    while (!options.empty()) {
        const Units option = options.substr(0, options.find(u','));
        if (std::find(std::begin(Known), std::end(Known), option) == std::end(Known)) return false;
        options.remove_prefix(std::min(option.size() + 1, options.size()));
    }
    return true;
}

bool isHostName(Units host) {
    return !host.empty() && host.size() <= LongestHost && host.find(u'.') != Units::npos &&
           host.front() != u'.' && host.back() != u'.' &&
           std::all_of(host.begin(), host.end(), [](char16_t unit) {
               return ascii::isLetterOrDigit(unit) || unit == u'.' || unit == u'-' || unit == u'_';
           });
}

Units trimmed(Units line) {
    while (!line.empty() && line.back() <= u' ') line.remove_suffix(1);
    while (!line.empty() && line.front() <= u' ') line.remove_prefix(1);
    return line;
}

}  // namespace

struct AdvertisementFilter::Rules {
    RuleSet named, exempted;
    std::size_t count = 0, skipped = 0;

    explicit Rules(Units text) {
        while (!text.empty()) {
            const Units line = text.substr(0, text.find(u'\n'));
            text.remove_prefix(std::min(line.size() + 1, text.size()));
            const Units rule = trimmed(line);
            if (rule.empty() || rule[0] == u'!' || rule[0] == u'[') continue;
            ++(add(lowered(rule)) ? count : skipped);
        }
        named.close();
        exempted.close();
    }

    bool add(Units rule) {
        const bool isExemption = rule.starts_with(u"@@");
        if (isExemption) rule.remove_prefix(2);
        if (const std::size_t options = rule.rfind(u'$'); options != Units::npos) {
            if (!areOptionsKnown(rule.substr(options + 1))) return false;
            rule = rule.substr(0, options);
        }
        return addPattern(isExemption ? exempted : named, rule);
    }

    static bool addPattern(RuleSet& set, Units pattern) {
        while (pattern.ends_with(u'*')) pattern.remove_suffix(1);
        if (pattern.starts_with(u"||")) return addHostPattern(set, pattern.substr(2));
        while (pattern.starts_with(u'*')) pattern.remove_prefix(1);
        // "##" and its like begin rules for the parts of pages; two slashes hold an expression.
        const bool isExpression = pattern.size() > 1 && pattern.front() == u'/' &&
                                  pattern.back() == u'/' &&
                                  pattern.find_first_of(u"\\()[]{}+") != Units::npos;
        if (pattern.size() < Fragments::Width || isExpression ||
            pattern.find_first_of(u"*^|# ") != Units::npos)
            return false;
        set.addFragment(pattern);
        return true;
    }

    static bool addHostPattern(RuleSet& set, Units pattern) {
        const std::size_t end = std::min(pattern.find_first_of(u"/^"), pattern.size());
        const Units host = pattern.substr(0, end), rest = pattern.substr(end);
        if (!isHostName(host)) return false;
        if (rest.empty() || rest == u"^" || rest == u"/" || rest == u"^|") {
            set.addHost(host);
            return true;
        }
        if (rest[0] != u'/' || rest.size() > LongestPath ||
            rest.find_first_of(u"*^|") != Units::npos)
            return false;
        set.addPath(host, rest);
        return true;
    }
};

AdvertisementFilter::AdvertisementFilter(Units rules)
    : rules_(std::make_shared<const Rules>(rules)) {}

bool AdvertisementFilter::matches(const URL& url) const {
    const Units host = url.part(URLPart::Host);
    if (host.empty()) return false;
    const std::u16string whole = lowered(url.absoluteString());
    const auto partFrom = [&](Units part) {
        return Units(whole).substr(
            static_cast<std::size_t>(part.data() - url.absoluteString().characters()));
    };
    const Units lowerHost = partFrom(host).substr(0, host.size());
    const Units path = partFrom(url.part(URLPart::Path));
    return rules_->named.match(whole, lowerHost, path) &&
           !rules_->exempted.match(whole, lowerHost, path);
}

std::size_t AdvertisementFilter::numberOfRules() const noexcept { return rules_->count; }
std::size_t AdvertisementFilter::numberOfSkippedLines() const noexcept { return rules_->skipped; }

}  // namespace velmo
