// What a date consists of before it is known to be one, and the cursor that its parts are read
// with.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string_view>

#include <velmocore/platform/Date.h>
#include <velmocore/platform/TimeZone.h>

#include "platform/Ascii.h"

namespace velmo::detail {

/// As they were read; nothing says that they are in range.
struct DateFields {
    int year = 0;  ///< 0 is none
    int month = 1, day = 1;
    int hour = 0, minute = 0, second = 0;
    double fraction = 0;           ///< of a second
    std::optional<TimeZone> zone;  ///< absent where the text names none

    void setDay(std::chrono::year_month_day date) noexcept {
        year = static_cast<int>(date.year());
        month = static_cast<int>(static_cast<unsigned>(date.month()));
        day = static_cast<int>(static_cast<unsigned>(date.day()));
    }
};

/// The instant; absent if a field is out of range. Hour 24 is the end of a day. Second 60 is let
/// pass in the minutes in which some zone's clocks have shown leap seconds.
std::optional<Date> dateOf(const DateFields& fields, const TimeZone& zone) noexcept;

/// The year that two digits stand for.
constexpr int yearOfTwoDigits(int digits) noexcept { return digits + (digits < 70 ? 2000 : 1900); }

constexpr bool isBlank(char16_t unit) noexcept {
    return unit == u' ' || (unit >= 9 && unit <= 13) || unit == 0xA0;
}

/// A place in a text that readers of parts move on. What is not there is left alone.
class DateCursor {
public:
    explicit constexpr DateCursor(std::u16string_view text) noexcept
        : at_(text.data()), end_(text.data() + text.size()) {}

    bool isAtEnd() const noexcept { return at_ == end_; }
    std::size_t left() const noexcept { return static_cast<std::size_t>(end_ - at_); }
    std::u16string_view rest() const noexcept { return {at_, left()}; }
    /// The unit here; 0 at the end.
    char16_t peek() const noexcept { return at_ == end_ ? u'\0' : *at_; }
    void advance(std::size_t count = 1) noexcept { at_ += count; }

    bool take(char16_t unit) noexcept {
        if (at_ == end_ || *at_ != unit) return false;
        ++at_;
        return true;
    }
    /// Takes one of these units; 0 if none is here.
    char16_t takeOneOf(std::u16string_view units) noexcept {
        const char16_t unit = peek();
        return unit != 0 && units.find(unit) != units.npos ? *at_++ : u'\0';
    }
    void skipBlanks() noexcept {
        while (at_ != end_ && isBlank(*at_)) ++at_;
    }

    /// A number of that many digits; -1 if there are fewer. It may go on with more digits.
    int number(std::size_t least, std::size_t most) noexcept {
        int value = 0;
        std::size_t count = 0;
        for (; count < most && at_ + count != end_ && ascii::isDigit(at_[count]); ++count)
            value = value * 10 + (at_[count] - u'0');
        if (count < least) return -1;
        at_ += count;
        return value;
    }
    std::size_t digitsHere() const noexcept {
        std::size_t count = 0;
        while (at_ + count != end_ && ascii::isDigit(at_[count])) ++count;
        return count;
    }

    /// Digits as a fraction of one; -1 if there are none.
    double fraction() noexcept;
    /// A zone by name or offset.
    std::optional<TimeZone> zone();

private:
    const char16_t* at_;
    const char16_t* end_;
};

}  // namespace velmo::detail
