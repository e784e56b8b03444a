// The parameters that a key may leave out: those that track, with the hosts on which they do, and
// those of sessions. They share one table, as most names are neither.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include <velmocore/url/TrackingParameters.h>

#include "platform/UnitHash.h"
#include "url/ParameterNames.h"
#include "url/SessionNames.h"

namespace velmo::detail {

class KnownParameters {
public:
    using Units = std::u16string_view;

    /// The built-in tables.
    KnownParameters();

    /// What stands behind a table of the public kind.
    static const KnownParameters& of(const TrackingParameters& parameters) noexcept {
        return *parameters.known_;
    }

    /// Adds a name that tracks, and its hosts. What is none is rejected.
    void add(Units line);
    std::size_t numberOfRejected() const noexcept { return rejected_; }

    /// The host is in lower case.
    bool isTracking(Units name, Units host) const {
        return names_.any(name, [&](std::size_t number) { return places_[number].contain(host); });
    }
    bool isSession(Units name, Units value) const {
        return names_.any(name, [&](std::size_t number) { return isSessionOf(number, value); });
    }
    /// Whether it is either of them.
    bool isAny(Units name, Units value, Units host) const {
        return names_.any(name, [&](std::size_t number) {
            return isSessionOf(number, value) || places_[number].contain(host);
        });
    }

private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(Units units) const noexcept {
            return hashOfUnits(units, hashSeed());
        }
    };

    /// Where a name tracks.
    struct Places {
        bool isEverywhere = false;
        std::unordered_set<std::u16string, Hash, std::equal_to<>> hosts;

        bool contain(Units host) const { return isEverywhere || (!hosts.empty() && have(host)); }
        bool have(Units host) const;
    };

    bool isSessionOf(std::size_t number, Units value) const {
        return number < numberOfSessions_ && isValueOfSession(number, value);
    }

    ParameterNames names_;        ///< those of sessionRows() first, by their numbers there
    std::vector<Places> places_;  ///< of each name; of one that is only a session's, none
    std::size_t numberOfSessions_, rejected_ = 0;
};

}  // namespace velmo::detail
