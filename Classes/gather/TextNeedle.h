// A few bytes that must stand in the UTF-8 of a text for a word to be found in it, whatever the case
// of its letters. To look for them is several times cheaper than to decode the text.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/query/Wildcards.h>

namespace velmo::detail {

/// How far units of ASCII can be told by their bytes.
enum class Tellable : std::uint8_t {
    Never,
    IfNoOthers,  ///< in a text without the letters outside of ASCII that have this other case
    Always,      ///< nothing but itself, or its other case, is taken for it
};
using TellableUnits = std::array<Tellable, 128>;
/// Made at first use, on whatever thread.
VELMO_API const TellableUnits& tellableUnits(WildcardComparison comparison);

/// Whether a text has one of the three letters outside of ASCII whose other case is an ASCII letter.
VELMO_API bool hasOtherCases(std::string_view utf8);

class VELMO_API TextNeedle {
public:
    /// Of units that stand in a row in the text; none if no two of them can be told by their bytes.
    static std::optional<TextNeedle> ofStretch(std::u16string_view units,
                                               const TellableUnits& tellable);
    /// Never false for a text in which such units stand in a row, unless needsNoOthers() and the
    /// text hasOtherCases().
    bool mayStandIn(std::string_view utf8) const;
    bool needsNoOthers() const { return needsNoOthers_; }
    std::size_t length() const { return bytes_.size(); }

private:
    TextNeedle(std::string bytes, bool needsNoOthers);

    std::string bytes_;  // with bit 5 set
    bool needsNoOthers_;
    std::size_t first_ = 0, second_ = 0;  // the places of the two rarest
};

}  // namespace velmo::detail
