// A query whose parameters are parted by & alone, which most queries are: cut into its parameters
// once, each of which is left out or kept as it stands, so that nothing is moved before the end.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "url/Parameters.h"
#include "url/URLMarks.h"

namespace velmo::detail {

/// Whether what stands behind a ? is such a query, and nothing in front of it is a parameter: there
/// is one ?, no semicolon, and neither parameter is empty. A text without a ? is plain if it has
/// no parameters. The text is in ASCII.
struct PlainQueryMarks {
    UnitBits equals, ampersands;  ///< of the query
    std::uint32_t size;           ///< of the whole text
    std::uint32_t query;          ///< where the ? stands; else the size

    PlainQueryMarks(const URLMarks& marks, std::size_t size) noexcept;

    bool arePlain = false;
    /// Whether one has a = and no value.
    bool hasEmptyValue() const noexcept {
        return equals.before(ampersands) || (size && equals[size - 1]);
    }
};

/// The parameters of such a query, and which of RemovedList stand there. Does with them what a
/// ParameterFinder does.
class PlainQuery {
public:
    /// The marks are plain and have a ?.
    PlainQuery(std::u16string_view text, const PlainQueryMarks& marks) noexcept;

    ParameterMask present() const noexcept { return present_; }
    ParameterMask parameters() const noexcept { return parameters_; }

    std::size_t separatorOf(std::size_t name) const noexcept {
        return starts_[partOf(name)] - std::size_t{1};
    }
    std::size_t endOf(std::size_t name) const noexcept { return endOfPart(partOf(name)); }
    char16_t unitAt(std::size_t i) const noexcept { return text_[i]; }
    void remove(std::size_t name) noexcept;
    void removeAll() noexcept;
    /// Nothing is said of what did not change.
    ParameterMask takeChanged() const noexcept { return ~ParameterMask{0}; }

    /// As it was, with all that has been removed.
    std::u16string_view text() const noexcept { return text_; }
    /// What stands in front of the ?, and whether that is still there: it goes with the last parameter.
    std::u16string_view page() const noexcept { return text_.substr(0, starts_[0] - 1u); }
    bool hasMark() const noexcept { return kept_ != 0; }
    /// The first parameter that is left; there is one.
    std::u16string_view first() const noexcept { return part(lowest(kept_)); }

    /// Writes what is left of the text, which is no longer than it was. Gives its end.
    char16_t* write(char16_t* to) const noexcept;

private:
    using Parts = std::uint64_t;  ///< a bit for each, the lowest one for the first
    // No parameter is shorter than a unit and its separator.
    static constexpr std::size_t MostParts = UnitBits::MostUnits / 2;

    static std::size_t lowest(Parts parts) noexcept;
    std::size_t endOfPart(std::size_t part) const noexcept { return starts_[part + 1] - 1u; }
    std::u16string_view part(std::size_t i) const noexcept {
        return text_.substr(starts_[i], endOfPart(i) - starts_[i]);
    }
    void cut(const PlainQueryMarks& marks) noexcept;
    void find(const UnitBits& equals, std::size_t part) noexcept;
    void gather() noexcept;
    std::size_t partOf(std::size_t name) const noexcept;

    std::u16string_view text_;
    std::size_t count_ = 0;
    Parts kept_ = 0;
    ParameterMask present_ = 0, parameters_ = 0;
    std::array<std::uint8_t, MostParts + 1> starts_;  ///< and one behind the last separator
    /// The names that end at a = of each, and those that are all that stands in front of the first.
    std::array<ParameterMask, MostParts> names_, whole_;
};

}  // namespace velmo::detail
