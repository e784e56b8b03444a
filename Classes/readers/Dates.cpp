// A string of free form is counted once; its counts and its length then pick the few formats that
// it may be written in, so that what is no date is refused after that one look and a try or two.
// The formats are tried on views; only German abbreviations of months need a copy. The order of
// the steps decides what an ambiguous string means and is part of what date() promises.
#include <velmocore/readers/Dates.h>

#include <string>

#include <velmocore/platform/Log.h>
#include <velmocore/platform/String.h>
#include <velmocore/readers/CalendarFormat.h>
#include <velmocore/text/CharacterSets.h>
#include <velmocore/text/CharacterTests.h>

#include "platform/Unicode.h"
#include "readers/DateFields.h"
#include "readers/NaturalReading.h"
#include "text/LeadingInteger.h"
#include "text/Trim.h"

namespace velmo {

namespace {

namespace ascii = detail::ascii;
using View = std::u16string_view;
using Result = std::optional<Date>;

constexpr const char* MailFormat = "%a, %d %b %Y %H:%M:%S %Z";
constexpr const char* LongFormat = "%A, %d-%b-%y %H:%M:%S %Z";
constexpr const char* UnixFormat = "%a %b %d %H:%M:%S %Y";

/// What is looked at of a string: up to the first bracket or semicolon, without white space.
View partWithDate(View string) {
    string = string.substr(0, string.find_first_of(u";[]{}()"));
    return detail::trimmedView(string, detail::Ends::Both, detail::unicode::isWhiteSpaceOrNewline);
}

bool hasLetter(View text) {
    const CharacterSetRep& letters = alphaCharacterSetRep();
    for (const char16_t unit : text)
        if (letters.contains(unit)) return true;
    return false;
}

bool isAllDigits(View text) {
    for (const char16_t unit : text)
        if (!ascii::isDigit(unit)) return false;
    return true;
}

struct Counts {
    explicit Counts(View text) {
        for (const char16_t unit : text) {
            dots += unit == u'.';
            colons += unit == u':';
            dashes += unit == u'-';
            slashes += unit == u'/';
        }
    }
    bool any() const { return dots || colons || dashes || slashes; }

    std::size_t dots = 0, colons = 0, dashes = 0, slashes = 0;
};

/// Reads one string that is not empty.
class FreeDateReader {
public:
    FreeDateReader(View text, const DateOptions& options)
        : text_(text), options_(options), counts_(text) {}

    Result read() {
        const bool isInTable = readByTable();
        if (!isInTable) readByCounts();
        // The table decides; but what a zone behind its formats has refused, the last resort reads.
        if (!result_ && (!isInTable || options_.offsets)) result_ = lastResort();
        if (!result_ && !counts_.any()) result_ = readMonthAndComma();
        return result_;
    }

private:
    std::size_t length() const { return text_.size(); }
    /// In dates that are joined by dashes: whether the year comes first.
    bool isYearFirst() const { return text_.find(u'-') == 4; }

    // The last one that is tried leaves the result, or none.
    bool attempt(const char* format) { return attempt(text_, format); }
    bool attempt(View text, const char* format) {
        result_ = dateWithString(text, format, options_);
        return result_.has_value();
    }
    bool attemptEither(bool first, const char* one, const char* other) {
        return attempt(first ? one : other);
    }

    /// Whether the string has a shape of the table, whether or not it is a date.
    bool readByTable() {
        const char* const format = counts_.any() ? formatOfDotted() : formatOfNumber();
        const char* const timed = format ? nullptr : formatOfDottedTime();
        if (format) attempt(format);
        if (timed) attempt(counts_.colons ? withoutCommas() : text_, timed);
        return format || timed;
    }

    const char* formatOfNumber() const {
        if (length() == 15 && countNumbers(text_) == 2) return "%Y%m%dT%H%M%S";
        if (length() != 8 || !isAllDigits(text_)) return nullptr;
        if (text_[0] == u'2') return "%Y%m%d";
        return text_[4] == u'2' ? "%d%m%Y" : nullptr;
    }

    const char* formatOfDotted() const {
        if (counts_.dots != 2) return nullptr;
        if (length() == 10) return text_[4] == u'.' ? "%Y.%m.%d" : "%d.%m.%Y";
        return length() == 8 ? "%d.%m.%y" : nullptr;
    }

    const char* formatOfDottedTime() const {
        const auto& [dots, colons, dashes, slashes] = counts_;
        if (dashes || dots != 2) return nullptr;
        if (!slashes && colons == 2 && length() >= 19) return "%d.%m.%Y %H:%M:%S";
        if (!slashes && colons == 1 && length() > 15) return "%d.%m.%Y %H:%M";
        return slashes == 2 && !colons && length() >= 19 ? "%d/%m/%Y %H.%M.%S" : nullptr;
    }

    void readByCounts() {
        if (counts_.colons == 2)
            readTimed();
        else if (counts_.dashes == 2)
            readDashed();
        else if (!readSlashed())
            readOthers();
    }

    /// Two colons. Letters tell the long form with a weekday from plain numbers.
    void readTimed() {
        useEnglishMonths();
        if (attempt(MailFormat)) return;
        if (counts_.dashes == 2) {
            if (hasLetter(text_))
                attempt(LongFormat);
            else
                attemptEither(isYearFirst(), "%Y-%m-%d %H:%M:%S", "%d-%m-%Y %H:%M:%S");
        } else if (counts_.slashes == 2) {
            attempt("%d/%m/%Y %H:%M:%S %Z") || attempt("%d/%m/%Y %H:%M:%S");
        } else {
            attempt(UnixFormat);
        }
    }

    /// Two dashes, and not two colons.
    void readDashed() {
        const auto& [dots, colons, dashes, slashes] = counts_;
        if (length() >= 12 && dots <= 1 && colons >= 2)
            attemptEither(isYearFirst(), "%Y-%m-%dT%H:%M:%S", "%d-%m-%YT%H:%M:%S");
        else if (colons == 1 && !hasLetter(text_))
            attempt("%d-%m-%Y %H:%M");
        else if (length() >= 8 && length() <= 10 && !dots && !colons)
            attemptEither(isYearFirst(), "%Y-%m-%d", "%d-%m-%Y");
    }

    /// Two slashes and nothing else. The day comes first wherever it can.
    bool readSlashed() {
        const auto& [dots, colons, dashes, slashes] = counts_;
        if (length() < 8 || length() > 10 || dots || colons || dashes || slashes != 2) return false;
        const std::size_t slash = text_.find(u'/');
        const bool canBeMonth = detail::leadingInteger(text_.substr(slash + 1)) < 13;
        if (slash == 4 || detail::leadingInteger(text_) >= 32)
            attemptEither(canBeMonth, "%Y/%m/%d", "%Y/%d/%m");
        else if (!canBeMonth || !attempt("%d/%m/%Y"))
            attempt("%m/%d/%Y");
        return true;
    }

    void readOthers() {
        const auto& [dots, colons, dashes, slashes] = counts_;
        if (!slashes && !dashes && colons == 1 && dots == 2 && !hasLetter(text_))
            attempt("%d.%m.%Y %H:%M");
        else if (colons >= 2 && dashes >= 3)
            readWithOffset();
        else
            result_ = dateFromHTTPHeaderValue(text_, options_);
    }

    void readWithOffset() {
        if (text_.find(u'T') != View::npos && text_.find(u' ') == View::npos)
            attemptEither(isYearFirst(), "%Y-%m-%dT%H:%M:%S", "%d-%m-%YT%H:%M:%S");
        else
            attemptEither(isYearFirst(), "%Y-%m-%d %H:%M:%S", "%d-%m-%Y %H:%M:%S");
    }

    /// A string that does not end with a digit lacks a day or time: a month is its first day.
    /// Dashes need no replacing, as the reader takes them for slashes.
    Result lastResort() const {
        return detail::readNaturalDate(text_, options_,
                                       {.monthAlone = !ascii::isDigit(text_.back())});
    }

    Result readMonthAndComma() {
        if (!alphaCharacterSetRep().contains(text_[0]) || countNumbers(text_) != 2) return {};
        const std::size_t comma = text_.find(u',');
        if (comma == View::npos || text_.find(u',', comma + 1) != View::npos) return {};
        attempt("%B %d, %Y") || attempt("%b %d, %Y");
        return result_;
    }

    View withoutCommas() {
        copy_ = text_;
        for (char16_t& unit : copy_)
            if (unit == u',') unit = u' ';
        return copy_;
    }

    /// What the abbreviations of other languages become; in this order.
    void useEnglishMonths() {
        static constexpr struct {
            View from, to;
        } Replacements[] = {
            {u"Mrz", u"Mar"}, {u"Mai", u"May"}, {u"Mart", u"Mar"},
            {u"Okt", u"Oct"}, {u"Dez", u"Dec"},
        };
        for (const auto& [from, to] : Replacements) {
            if (text_.find(from) == View::npos) continue;
            copy_ = stringByReplacing(from, to);
            text_ = copy_;
        }
    }

    std::u16string stringByReplacing(View from, View to) const {
        std::u16string replaced;
        std::size_t start = 0;
        for (std::size_t at; (at = text_.find(from, start)) != View::npos; start = at + from.size())
            replaced.append(text_.substr(start, at - start)).append(to);
        return replaced.append(text_.substr(start));
    }

    View text_;
    const DateOptions& options_;
    const Counts counts_;
    std::u16string copy_;
    Result result_;
};

void logUnknown(View string) { log("Unknown date: " + utf8(string)); }

}  // namespace

std::optional<Date> date(std::u16string_view string, const DateOptions& options) {
    const View text = partWithDate(string);
    if (text.empty()) return {};
    const Result result = FreeDateReader(text, options).read();
    if (!result) logUnknown(string);
    return result;
}

std::optional<Date> dateFromHTTPHeaderValue(std::u16string_view value, const DateOptions& options) {
    for (const char* const format : {MailFormat, LongFormat, UnixFormat})
        if (const Result result = dateWithString(value, format, options)) return result;
    return {};
}

}  // namespace velmo
