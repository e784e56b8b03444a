// Parameters taken out of a URL as text. A name, with its =, is a parameter if its first
// occurrence stands behind one of & ; ? and not at the start of the text.
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "url/GapText.h"

namespace velmo::detail {

struct ParameterName {
    std::u16string_view text;  ///< in capitals if it is sought in any case
    bool anyCase = true;
};

inline bool isParameterSeparator(char16_t unit) noexcept {
    return unit == u'&' || unit == u';' || unit == u'?';
}

/// Where the name first stands from a position on; NotThere if nowhere.
inline constexpr std::size_t NotThere = std::u16string_view::npos;
std::size_t findName(const GapText& text, const ParameterName& name, std::size_t from = 0);

/// Where the parameter behind a separator ends; the text's size if it is the last one.
std::size_t endOfParameter(const GapText& text, std::size_t separator);
/// Takes out the parameter and the separator behind it; of the last one, that in front.
/// Gives where what is left of the text was joined.
std::size_t removeParameter(GapText& text, std::size_t separator);

/// The names of a list, each of which ends with =, and where each first stands. A walk over
/// the text finds all of them, and a removal only moves them.
class ParameterFinder {
public:
    static constexpr std::size_t MostNames = 32;

    ParameterFinder(GapText& text, std::span<const ParameterName> names);

    bool contains(std::size_t name) const { return positions_[name] != NotThere; }
    /// Whether the first occurrence of the name is a parameter.
    bool isParameter(std::size_t name) const {
        const std::size_t position = positions_[name];
        return position != NotThere && position > 0 && isParameterSeparator(text_[position - 1]);
    }
    std::size_t separatorOf(std::size_t name) const { return positions_[name] - 1; }
    void remove(std::size_t name);

private:
    void locate();
    std::size_t moved(std::size_t name, std::size_t joint, std::size_t removed) const;

    GapText& text_;
    std::span<const ParameterName> names_;
    std::array<std::size_t, MostNames> positions_;
};

}  // namespace velmo::detail
