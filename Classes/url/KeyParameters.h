// The query of a page's key: what tells pages apart of the parameters of a URL, in the order of their
// names. The texts stay where they are until the key is written.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include <velmocore/url/PageKey.h>

#include "text/SmallBuffer.h"
#include "url/KeyUnits.h"
#include "url/KnownParameters.h"
#include "url/URLMarks.h"

namespace velmo::detail {

class KeyParameters {
public:
    using Units = std::u16string_view;

    /// Of a query of that many units, on a host in lower case.
    KeyParameters(const PageKeyOptions& options, const KnownParameters& known, Units host,
                  std::size_t units)
        : options_(options),
          known_(known),
          host_(host),
          kept_(units / 2 + 1) {}  // between two of them stands a separator

    /// Takes the next one if it counts, the name of which ends at a place, or with it all.
    void add(Units text, std::size_t nameLength);

    /// Writes those that were taken. All of the query may tell what a client's number is.
    void write(KeyUnits& out, Units query);

private:
    /// Not initialised, so that arrays of them cost nothing.
    struct Parameter {
        const char16_t* units;
        std::uint32_t length, nameLength;
        std::uint64_t order;  ///< the beginning of the name as a number

        Units text() const { return {units, length}; }
        Units name() const { return {units, nameLength}; }
    };

    static bool isBefore(const Parameter& a, const Parameter& b) {
        return a.order != b.order ? a.order < b.order : a.name() < b.name();
    }
    static void sortByName(std::span<Parameter> parameters);
    bool isKnown(Units name, Units value) const {
        if (options_.tracking && options_.sessionIDs) return known_.isAny(name, value, host_);
        return (options_.sessionIDs && known_.isSession(name, value)) ||
               (options_.tracking && known_.isTracking(name, host_));
    }
    void removeColdFusionIds(Units query);

    const PageKeyOptions& options_;
    const KnownParameters& known_;
    const Units host_;
    SmallBuffer<Parameter, UnitBits::MostUnits / 2 + 1> kept_;
    std::size_t count_ = 0;
    bool hasClient_ = false;  ///< whether one may be the number of a client
};

}  // namespace velmo::detail
