// One walk over the words of a text with a few numbers of state. A word that cannot belong to a
// date clears the state and is not looked at again, so that the walk never goes back. Ordinals are
// read behind the same repair of 0 for O that the names of months get: 10th counts as 1. This is
// kept as it has always been, since stored dates were found so.
#include <velmocore/readers/DocumentDates.h>

#include <velmocore/text/CharacterTests.h>
#include <velmocore/words/Words.h>

#include "readers/DateFields.h"
#include "readers/DocumentMonths.h"
#include "text/Keyword.h"
#include "text/LeadingInteger.h"

namespace velmo {

namespace {

using View = std::u16string_view;

constexpr std::size_t LongestMonth = 9, LongestOrdinal = 4;
constexpr int FirstYear = 1950, LastYear = 2050;

bool isMonth(int number) { return number < 13; }

/// A word with every 0 made an O, which scanned texts confuse. Only the units that are looked at
/// are held.
class RepairedWord {
public:
    explicit RepairedWord(View word) : length_(word.size()) {
        for (std::size_t i = 0; i < std::min(length_, LongestMonth); ++i)
            units_[i] = word[i] == u'0' ? u'O' : word[i];
    }

    /// 0 if it is none.
    int month() const {
        if (length_ > LongestMonth) return 0;
        for (const detail::DocumentMonth& row : detail::documentMonths())
            if (length_ <= row.name.size() &&
                detail::keyword::equalNoCase(row.name.substr(0, length_), view()))
                return row.month;
        return 0;
    }

    /// 0 if it is none.
    int ordinal() const {
        if (length_ > LongestOrdinal || !hasOrdinalEnd()) return 0;
        const auto value = detail::leadingInteger(view());
        return value >= 1 && value <= 31 ? static_cast<int>(value) : 0;
    }

private:
    View view() const { return {units_, length_}; }
    bool hasOrdinalEnd() const {
        for (const std::string_view end : {"ND", "RD", "ST", "TH"})
            if (detail::keyword::equals(view().substr(length_ - end.size()), end)) return true;
        return false;
    }

    std::size_t length_;
    char16_t units_[LongestMonth];
};

/// What has been seen of a date.
struct Seen {
    int parts = 0;  ///< day and month
    int first = 0, second = 0;
    int month = 0;  ///< by name
    int years = 0, year = 0;
    bool isYearFirst = false;
    char16_t separator = 0;
    bool isSameSeparator = false;

    bool isComplete() const { return years == 1 && parts == 2; }
};

class DocumentDateReader {
public:
    DocumentDateReader(bool validate, const DateOptions& options)
        : validate_(validate), options_(options) {}

    /// Takes the next word; the date if it is the last one of it.
    std::optional<Date> take(View word) {
        if (!accept(word)) seen_ = {};
        if (!seen_.isComplete()) return {};
        const auto date = isSeparatedWell() ? found() : std::nullopt;
        if (!date) seen_ = {};
        return date;
    }

private:
    /// False if the word cannot belong to the date.
    bool accept(View word) {
        if (isDigitString(word)) return acceptDigits(word);
        if (word.size() < 3 || !isAlphaNumString(word)) return acceptSeparator(word);
        const RepairedWord repaired(word);
        if (const int month = repaired.month()) return acceptMonth(month);
        const int day = repaired.ordinal();
        return day ? acceptNumber(day) : acceptSeparator(word);
    }

    bool acceptDigits(View word) {
        const auto value = static_cast<int>(word.size() <= 4 ? detail::leadingInteger(word) : 0);
        if (word.size() == 4) return acceptYear(value);
        const bool isShort = word.size() == 2 || (word.size() == 1 && validate_);
        return isShort && value >= 1 && value <= 31 && acceptNumber(value);
    }

    bool acceptYear(int year) {
        if (year < FirstYear || year > LastYear || seen_.parts == 1) return false;
        seen_.isYearFirst = seen_.parts == 0;
        seen_.year = year;
        return ++seen_.years == 1;
    }

    bool acceptNumber(int number) {
        if (seen_.parts == 2) return false;
        const bool isSecond = seen_.parts == 1 && !seen_.month;
        (isSecond ? seen_.second : seen_.first) = number;
        ++seen_.parts;
        return !isSecond || isMonth(seen_.first) || isMonth(seen_.second);
    }

    bool acceptMonth(int month) {
        if (seen_.parts == 2) return false;
        seen_.month = month;
        ++seen_.parts;
        return true;
    }

    bool acceptSeparator(View word) {
        if (!validate_ || (seen_.parts == 0 && seen_.years == 0)) return false;
        if (isAlphaNumString(word.substr(0, 1))) return false;
        if (seen_.separator == 0) {
            seen_.separator = word[0];
            seen_.isSameSeparator = true;
        }
        seen_.isSameSeparator &= seen_.separator == word[0];
        return true;
    }

    bool isSeparatedWell() const {
        if (!validate_ || seen_.month) return true;
        const char16_t unit = seen_.separator;
        return seen_.isSameSeparator && (unit == u'-' || unit == u'.' || unit == u'/');
    }

    std::optional<Date> found() const {
        const int a = seen_.first, b = seen_.second;
        detail::DateFields fields;
        fields.year = seen_.year;
        if (seen_.month) {
            fields.month = seen_.month;
            fields.day = a;
        } else {
            const bool isDayFirst = isMonth(b) && !(seen_.isYearFirst && isMonth(a));
            fields.month = isDayFirst ? b : a;
            fields.day = isDayFirst ? a : b;
        }
        return detail::dateOf(fields, options_.zone);
    }

    const bool validate_;
    const DateOptions& options_;
    Seen seen_;
};

}  // namespace

std::optional<Date> documentDateByValidatingSeparation(std::u16string_view text, bool validate,
                                                       const DateOptions& options) {
    DocumentDateReader reader(validate, options);
    for (const Range entry : wordsOfCharacters(text, {.withSeparators = validate})) {
        const Range word = withoutSeparatorMark(entry);
        if (const auto date = reader.take(text.substr(word.location, word.length))) return date;
    }
    return {};
}

}  // namespace velmo
