// A few bytes that must stand in the UTF-8 of a text for a word to be found in it, whatever the case
// of its letters. To look for them is several times cheaper than to decode the text.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/query/Wildcards.h>

namespace velmo::detail {

/// By ASCII unit whether all that a comparison takes for it is itself, or its other case.
using TellableUnits = std::array<bool, 128>;
VELMO_API TellableUnits tellableUnits(WildcardComparison comparison);

class VELMO_API TextNeedle {
public:
    /// Of units that stand in a row in the text; none if no two of them can be told by their bytes.
    static std::optional<TextNeedle> ofStretch(std::u16string_view units,
                                               const TellableUnits& tellable);
    /// Never false for a text in which such units stand in a row.
    bool mayStandIn(std::string_view utf8) const;

private:
    explicit TextNeedle(std::string bytes);

    std::string bytes_;                   // with bit 5 set
    std::size_t first_ = 0, second_ = 0;  // the places of the two rarest
};

}  // namespace velmo::detail
