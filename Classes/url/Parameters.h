// Parameters taken out of a URL as text. A name, with its =, is a parameter if its first
// occurrence stands behind one of & ; ? and not at the start of the text.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>

#include "url/GapText.h"

namespace velmo::detail {

struct ParameterName {
    std::u16string_view text;  ///< in capitals if it is sought in any case
    bool anyCase = true;
};

constexpr bool isParameterSeparator(char16_t unit) noexcept {
    return unit == u'&' || unit == u';' || unit == u'?';
}

/// What stands in front of all parameters, and of all names of any: the first of their separators
/// or =. No removal of a parameter changes it. The size if there is none.
inline std::size_t startOfParameters(const GapText& text) noexcept {
    return text.find<u'=', u'&', u';', u'?'>(0);
}

/// Where the name first stands from a position on; NotThere if nowhere.
inline constexpr std::size_t NotThere = std::u16string_view::npos;
std::size_t findName(const GapText& text, const ParameterName& name, std::size_t from = 0);

/// Where the parameter behind a separator ends; the text's size if it is the last one.
std::size_t endOfParameter(const GapText& text, std::size_t separator);
/// Takes out the parameter and the separator behind it; of the last one, that in front.
/// Gives where what is left of the text was joined.
std::size_t removeParameter(GapText& text, std::size_t separator);

/// Some names of a list, as bits.
using ParameterMask = std::uint64_t;
inline constexpr std::size_t MostParameterNames = 64;

/// A list of names, each of which ends with =, and which of them may end where certain letters
/// stand. No name holds a separator, unless as its first unit.
class ParameterList {
public:
    constexpr explicit ParameterList(std::span<const ParameterName> list) : names(list) {
        for (std::size_t n = 0; n < names.size(); ++n) {
            const std::u16string_view text = names[n].text;
            note(last_, text, 2, n);
            note(third_, text, 4, n);
            if (isParameterSeparator(text[0])) crossing |= ParameterMask(1) << n;
        }
    }

    /// The names that may stand in front of a =, by its last letter and the third one from there.
    ParameterMask candidates(char16_t last, char16_t third) const {
        if (last >= 128) return 0;
        return third < 128 ? last_[last] & third_[third] : last_[last];
    }

    std::span<const ParameterName> names;
    ParameterMask crossing = 0;  ///< those that may come together where a text is joined

private:
    using Table = std::array<ParameterMask, 128>;

    /// Notes which unit the name has that far from its end; any, if it is shorter.
    constexpr void note(Table& table, std::u16string_view text, std::size_t fromEnd,
                        std::size_t n) {
        const ParameterMask bit = ParameterMask(1) << n;
        for (char16_t unit = 0; unit < 128; ++unit) {
            const bool isLower = unit >= u'a' && unit <= u'z';
            const char16_t folded = names[n].anyCase && isLower ? unit - 32 : unit;
            if (text.size() < fromEnd || text[text.size() - fromEnd] == folded) table[unit] |= bit;
        }
    }

    Table last_{}, third_{};
};

/// Where each name of a list first stands. One walk over the text finds all of them, and a
/// removal only moves them.
class ParameterFinder {
public:
    /// Looks for some names of the list.
    ParameterFinder(GapText& text, const ParameterList& list, ParameterMask sought);

    /// The names that stand somewhere, and those whose first occurrence is a parameter.
    ParameterMask present() const { return present_; }
    ParameterMask parameters() const { return parameters_; }

    /// Where the separator of a parameter stands, and where its value ends.
    std::size_t separatorOf(std::size_t name) const { return positions_[name] - 1; }
    std::size_t endOf(std::size_t name) const { return endOfParameter(text_, separatorOf(name)); }
    char16_t unitAt(std::size_t i) const { return text_[i]; }
    void remove(std::size_t name);

    /// The names that stand elsewhere than when this was last asked, or after another separator.
    /// The values of all others are what they were.
    ParameterMask takeChanged() { return std::exchange(changed_, 0); }

private:
    void locateFrom(std::size_t start, ParameterMask wanted);
    void locate(std::size_t equals, ParameterMask wanted);
    bool relocate(std::size_t name, std::size_t joint, std::size_t removed);
    void note(std::size_t name, std::size_t position);

    GapText& text_;
    const ParameterList& list_;
    const ParameterMask sought_;
    ParameterMask present_ = 0;
    ParameterMask parameters_ = 0;
    ParameterMask changed_ = 0;
    std::array<std::size_t, MostParameterNames> positions_;
};

}  // namespace velmo::detail
