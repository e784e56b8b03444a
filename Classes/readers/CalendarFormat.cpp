// A format is walked beside the text, once and without looking back: no conversion can end in more
// than one place, so that there is nothing to try twice. Names are compared by their letters folded
// into one number.
#include <velmocore/readers/CalendarFormat.h>

#include <array>
#include <cstdint>

#include "readers/DateFields.h"

namespace velmo {

namespace {

namespace ascii = detail::ascii;
using detail::DateCursor;
using detail::DateFields;

constexpr std::array<std::string_view, 7> Weekdays = {
    "sunday", "monday", "tuesday", "wednesday", "thursday", "friday", "saturday",
};
constexpr std::array<std::string_view, 12> Months = {
    "january", "february", "march",     "april",   "may",      "june",
    "july",    "august",   "september", "october", "november", "december",
};

// Three letters tell all months apart, and all weekdays, so that a full name is found by them too.
constexpr std::size_t Abbreviation = 3;

template <class Unit>
constexpr std::uint32_t keyOf(const Unit* letters) noexcept {
    // Bit 5 is what the cases of a letter differ in; all else that it changes is no letter.
    const auto low = [](Unit unit) { return static_cast<std::uint32_t>(unit) | 0x20; };
    return low(letters[0]) ^ low(letters[1]) << 10 ^ low(letters[2]) << 20;
}

/// Where a name stands in a list by the first three letters, from 1; 0 if it does not.
template <std::size_t Size>
int indexOfAbbreviation(std::u16string_view text,
                        const std::array<std::string_view, Size>& names) noexcept {
    if (text.size() < Abbreviation) return 0;
    for (std::size_t i = 0; i < Abbreviation; ++i)
        if (!ascii::isLetter(text[i])) return 0;
    const std::uint32_t key = keyOf(text.data());
    for (std::size_t i = 0; i < Size; ++i)
        if (keyOf(names[i].data()) == key) return static_cast<int>(i + 1);
    return 0;
}

bool beginsWith(std::u16string_view text, std::string_view lower) noexcept {
    if (text.size() < lower.size()) return false;
    for (std::size_t i = 0; i < lower.size(); ++i)
        if (ascii::toLower(text[i]) != static_cast<char16_t>(lower[i])) return false;
    return true;
}

/// Takes a name of the list; 0 if there is none.
template <std::size_t Size>
int takeName(DateCursor& cursor, const std::array<std::string_view, Size>& names, bool isFull) {
    const int index = indexOfAbbreviation(cursor.rest(), names);
    if (index == 0) return 0;
    const std::string_view name = names[static_cast<std::size_t>(index - 1)];
    if (isFull && !beginsWith(cursor.rest(), name)) return 0;
    cursor.advance(isFull ? name.size() : Abbreviation);
    return index;
}

/// Reads a text by a format.
class FormatReader {
public:
    FormatReader(std::u16string_view text, const DateOptions& options)
        : cursor_(text), options_(options) {}

    std::optional<Date> read(std::string_view format) {
        for (std::size_t i = 0; i < format.size(); ++i) {
            if (format[i] == ' ')
                cursor_.skipBlanks();
            else if (format[i] != '%' ? !cursor_.take(static_cast<char16_t>(format[i]))
                                      : ++i == format.size() || !convert(format[i]))
                return {};
        }
        if (!isRestInOrder()) return {};
        return detail::dateOf(fields_, options_.zone);
    }

private:
    bool convert(char conversion) {
        endsWithNumber_ = false;
        hasSeconds_ = conversion == 'S';
        switch (conversion) {
            case 'a':
            case 'A':
                return takeName(cursor_, Weekdays, conversion == 'A') != 0;
            case 'b':
            case 'B':
                return (fields_.month = takeName(cursor_, Months, conversion == 'B')) != 0;
            case 'Z':
                return (fields_.zone = cursor_.zone()).has_value();
            default:
                return convertNumber(conversion);
        }
    }

    bool convertNumber(char conversion) {
        endsWithNumber_ = true;
        cursor_.skipBlanks();
        switch (conversion) {
            case 'd':
                return takeNumber(fields_.day);
            case 'm':
                return takeNumber(fields_.month);
            case 'H':
                return takeNumber(fields_.hour) && fields_.hour < 24;
            case 'M':
                return takeNumber(fields_.minute);
            case 'S':
                return takeNumber(fields_.second);
            case 'Y':
                return takeNumber(fields_.year, 4, 4);
            case 'y':
                if (!takeNumber(fields_.year, 2, 2)) return false;
                fields_.year = detail::yearOfTwoDigits(fields_.year);
                return true;
            default:
                return false;
        }
    }

    bool takeNumber(int& field, std::size_t least = 1, std::size_t most = 2) noexcept {
        return (field = cursor_.number(least, most)) >= 0;
    }

    /// Looks at what the format has left. A year of two digits must not be the half of one of four.
    bool isRestInOrder() {
        if (endsWithNumber_ && ascii::isDigit(cursor_.peek())) return false;
        return !options_.offsets || fields_.zone || readRest();
    }

    /// Fraction and zone, up to the end.
    bool readRest() {
        if (hasSeconds_ && cursor_.takeOneOf(u".,") && (fields_.fraction = cursor_.fraction()) < 0)
            return false;
        cursor_.skipBlanks();
        if (!cursor_.isAtEnd() && !(fields_.zone = cursor_.zone())) return false;
        cursor_.skipBlanks();
        return cursor_.isAtEnd();
    }

    DateCursor cursor_;
    const DateOptions& options_;
    DateFields fields_;
    bool endsWithNumber_ = false, hasSeconds_ = false;
};

}  // namespace

std::optional<Date> dateWithString(std::u16string_view text, std::string_view calendarFormat,
                                   const DateOptions& options) {
    return FormatReader(text, options).read(calendarFormat);
}

}  // namespace velmo
