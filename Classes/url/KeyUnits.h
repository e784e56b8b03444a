// What the key of a page is written into, and how its escapes are written.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/Ascii.h"
#include "text/SmallBuffer.h"
#include "text/UnitCopies.h"
#include "url/Escapes.h"

namespace velmo::detail {

/// What may stand for itself in a path, and in a query besides: escaped or not it says the same.
constexpr std::array<bool, 128> plainUnitsOf(std::string_view others) {
    std::array<bool, 128> table{};
    for (char16_t unit = 0; unit < 128; ++unit)
        table[unit] = ascii::isLetterOrDigit(unit) ||
                      others.find(static_cast<char>(unit)) != std::string_view::npos;
    return table;
}
inline constexpr auto PlainInPath = plainUnitsOf("-._~!$'()*,:@+&");
inline constexpr auto PlainInQuery = plainUnitsOf("-._~!$'()*,:@/?");

/// Writes units with their escapes decoded where these need not be, and in capitals elsewhere; there
/// is room for CopySlack units more. Gives the end.
inline char16_t* writeDecoded(char16_t* to, std::u16string_view units,
                              const std::array<bool, 128>& plain) {
    const bool isQuery = &plain == &PlainInQuery;
    const auto replace = [&](int value, const char16_t*& read, char16_t*& write) {
        if (value < 128 && plain[static_cast<std::size_t>(value)]) {
            *write++ = static_cast<char16_t>(value);
        } else if (value == ' ' && isQuery) {
            *write++ = u'+';
        } else {
            *write++ = u'%';
            *write++ = ascii::toUpper(read[1]);
            *write++ = ascii::toUpper(read[2]);
        }
        read += 3;
        return true;
    };
    return escapes::copyReplacing(units, to, replace);
}

/// What is written of a key, in room whose length is known before: on the stack as a rule.
class KeyUnits {
public:
    explicit KeyUnits(std::size_t room) : units_(room) {}

    std::size_t length() const { return length_; }
    char16_t* data() { return units_.data(); }
    char16_t* end() { return data() + length_; }
    std::u16string_view view() const { return {units_.data(), length_}; }
    std::u16string_view from(std::size_t start) const { return view().substr(start); }

    void append(char16_t unit) { units_[length_++] = unit; }
    void append(std::u16string_view units) {
        copyFew(end(), units.data(), units.size());
        length_ += units.size();
    }
    void appendLower(std::u16string_view units) {
        copyLower(end(), units.data(), units.size());
        length_ += units.size();
    }
    void appendDecoded(std::u16string_view units, const std::array<bool, 128>& plain) {
        length_ = static_cast<std::size_t>(writeDecoded(end(), units, plain) - data());
    }
    /// A slash and units, which may stand where both are written.
    void appendComponent(const char16_t* units, std::size_t count) {
        std::char_traits<char16_t>::move(end() + 1, units, count);
        *end() = u'/';
        length_ += count + 1;
    }
    void truncate(std::size_t length) { length_ = length; }

private:
    SmallBuffer<char16_t, 512> units_;
    std::size_t length_ = 0;
};

}  // namespace velmo::detail
