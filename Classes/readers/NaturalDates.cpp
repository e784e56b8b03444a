// A text in natural language is cut into a few tokens, and each is given to the first reader that
// knows what to do with it: times, days joined by marks, plain numbers, names, relative time,
// zones. They fill slots, in whatever order the parts come; a part whose slot is taken, or that no
// reader knows, ends it all, so that nothing is guessed and nothing is left over. ISO 8601 has a
// reader of its own, which is asked first.
#include <velmocore/readers/NaturalDates.h>

#include "platform/CalendarYears.h"
#include "readers/DateFields.h"
#include "readers/DateTokens.h"
#include "readers/NaturalReading.h"
#include "readers/RelativeTime.h"

namespace velmo {
namespace detail {
namespace {

class NaturalReader {
public:
    NaturalReader(std::u16string_view text, const DateOptions& options, NaturalReading reading)
        : text_(text), options_(options), reading_(reading) {}

    std::optional<Date> read() {
        if (!tokens_.cut(text_)) return {};
        while (next_ < tokens_.size())
            if (!readPart() || isRefused_) return {};
        if (hasWholeDay() && !relative_) return dateOf(fields_, zone());
        return isInCalendar(now()) ? dateFromPresent() : std::nullopt;
    }

private:
    // Tokens from the next one on.
    const DateToken& peek(std::size_t ahead = 0) const { return tokens_[next_ + ahead]; }
    const DateToken* before() const { return next_ > 0 ? &tokens_[next_ - 1] : nullptr; }
    bool take(std::size_t count) {
        next_ += count;
        return true;
    }
    /// For what is read in part and is not in order: no other reader may go on from there.
    bool refuse() {
        isRefused_ = true;
        return false;
    }
    bool isLast() const { return next_ + 1 >= tokens_.size(); }

    bool readPart() {
        switch (peek().kind) {
            case DateToken::Kind::Number:
                return readNamedPart() || readTime() || readHour() || readRelative() ||
                       readJoined() || readYearAndMonth() || readNumber();
            case DateToken::Kind::Word:
                return readRelative() || readName() || readZone();
            case DateToken::Kind::Mark:
                return readZone() || readMark();
        }
        return false;
    }

    // Times.

    /// 10:11, 10:11:12.5, 10h11, and 10.11 where a word tells that it is a time.
    bool readTime() {
        if (hasTime_ || !peek().isShort() || !peek(1).isGlued || !isMinute(2)) return false;
        const bool hasColon = peek(1).isMark(u':'), isLong = peek(2).digits == 2;
        if (!hasColon && !peek(1).as(Meaning::HourMark) && !isDottedTime()) return false;
        fields_.hour = peek().value;
        fields_.minute = peek(2).value;
        take(3);
        if (!(hasColon && readSeconds()) && !isLong) return refuse();
        return peek().isMark(u':') ? refuse() : setTime();
    }
    bool isDottedTime() const {
        const DateToken& behind = peek(3);
        return peek(1).isMark(u'.') &&
               (behind.as(Meaning::Meridiem) || behind.as(Meaning::HourMark));
    }
    bool isMinute(std::size_t ahead) const { return peek(ahead).isShort() && peek(ahead).isGlued; }

    bool readSeconds() {
        if (!peek().isMark(u':') || !isMinute(1)) return false;
        fields_.second = peek(1).value;
        take(2);
        if (peek().isMarkOf(u".,") && peek().isGlued && peek(1).isNumber() && peek(1).isGlued) {
            DateCursor digits(text_.substr(peek(1).begin));
            fields_.fraction = digits.fraction();
            take(2);
        }
        return true;
    }

    /// 10 pm, 12 noon, 10 Uhr, 10 GMT.
    bool readHour() {
        if (hasTime_ || !peek().isShort()) return false;
        const DateToken& behind = peek(1);
        if (const DateWord* const named = behind.as(Meaning::NamedHour))
            return peek().value == 12 && setNamedHour(named->value, 2);
        const bool isHour = behind.as(Meaning::Meridiem) || behind.as(Meaning::HourMark) ||
                            (hasWholeDay() && isZoneAt(1));
        if (!isHour) return false;
        fields_.hour = peek().value;
        return take(1) && setTime();
    }
    bool setNamedHour(int hour, std::size_t tokens) {
        fields_.hour = hour;
        return hasClearTime_ = hasTime_ = take(tokens);
    }

    /// The hour is read; takes what may follow it.
    bool setTime() {
        if (peek().as(Meaning::HourMark)) take(1);
        hasTime_ = true;
        if (const DateWord* const named = peek().as(Meaning::NamedHour))
            return fields_.hour == 12 ? setNamedHour(named->value, 1) : refuse();
        const DateWord* const half = peek().as(Meaning::Meridiem);
        if (!half) return true;
        return setHalf(half->value) && (hasClearTime_ = take(1));
    }
    bool setHalf(int half) {
        if (fields_.hour < 1 || fields_.hour > 12) return refuse();
        fields_.hour = fields_.hour % 12 + half;
        return true;
    }

    /// A time behind the half of the day.
    bool readTimeOf(int half) {
        take(1);
        return readTime() && setHalf(half);
    }

    // Days.

    bool hasWholeDay() const { return fields_.year && hasMonth_ && hasDayOfMonth_; }
    bool hasDay() const { return fields_.year || hasMonth_ || hasDayOfMonth_; }

    /// Whether a number follows behind one of the marks.
    bool isJoined(std::size_t ahead, std::u16string_view marks) const {
        return peek(ahead).isGlued && peek(ahead).isMarkOf(marks) && peek(ahead + 1).isNumber() &&
               (peek(ahead + 1).isGlued || peek(ahead).isMark(u'.'));
    }

    /// 3/2/2001, 2001-02-03, 3.2.2001: two equal marks and nothing joined to them.
    bool readJoined() {
        if (!isJoined(1, u"/-.") || !isJoined(3, u"/-.") || peek(1).mark != peek(3).mark)
            return false;
        if (hasDay() || isJoined(5, u"/-.")) return false;
        const DateToken &a = peek(), &b = peek(2), &c = peek(4);
        if (!b.isShort()) return false;
        const bool isRead = a.digits == 4 && c.isShort()   ? setDay(a.value, b.value, c.value)
                            : a.isShort() && c.digits == 4 ? setDayFirst(c.value, a.value, b.value)
                                                           : setShortYear(a, b, c);
        return isRead && take(5);
    }
    bool setDay(int year, int month, int day) {
        fields_.year = year;
        fields_.month = month;
        fields_.day = day;
        return hasMonth_ = hasDayOfMonth_ = true;
    }
    /// The day comes first wherever it can.
    bool setDayFirst(int year, int a, int b) {
        return b <= 12 ? setDay(year, b, a) : setDay(year, a, b);
    }
    /// Three numbers of two digits: the year is last, behind dashes first. Behind slashes the
    /// others may be shorter.
    bool setShortYear(const DateToken& a, const DateToken& b, const DateToken& c) {
        const std::size_t least = peek(1).isMark(u'/') ? 1 : 2;
        if (!a.isShort() || a.digits < least || b.digits < least || c.digits != 2) return false;
        return peek(1).isMark(u'-') ? setDay(yearOfTwoDigits(a.value), b.value, c.value)
                                    : setDayFirst(yearOfTwoDigits(c.value), a.value, b.value);
    }

    /// 2/2001 and 2001/2.
    bool readYearAndMonth() {
        if (hasDay() || !isJoined(1, u"/") || isJoined(3, u"/-.")) return false;
        const bool isYearFirst = peek().digits == 4;
        const DateToken &year = peek(isYearFirst ? 0 : 2), &month = peek(isYearFirst ? 2 : 0);
        if (year.digits != 4 || !month.isShort() || !isYearOfOurs(year.value)) return false;
        setDay(year.value, month.value, 1);
        return take(3);
    }
    static bool isYearOfOurs(int year) { return year >= 1900 && year < 2100; }

    /// A number whose word tells what it is: 2001\u5e74.
    bool readNamedPart() {
        const DateWord* const part = peek(1).isGlued ? peek(1).as(Meaning::DatePart) : nullptr;
        if (!part) return false;
        const int number = peek().value;
        if (part->value == 0) return peek().digits == 4 && !fields_.year && setYear(number, 2);
        if (part->value == 2) return !hasDayOfMonth_ && setDayOfMonth(number, 2);
        return setMonth(number) && take(1);
    }

    bool readNumber() {
        const DateToken& number = peek();
        if (number.digits == 4 && !fields_.year) return setYear(number.value, 1);
        if (!number.isShort()) return false;
        const bool isOrdinal = peek(1).isGlued && peek(1).as(Meaning::Suffix);
        if (!hasDayOfMonth_ && number.value >= 1 && number.value <= 31)
            return setDayOfMonth(number.value, isOrdinal ? 2 : 1);
        if (isOrdinal || number.digits != 2 || fields_.year || !hasMonth_ || !hasDayOfMonth_)
            return false;
        return setYear(yearOfTwoDigits(number.value), 1);
    }
    bool setYear(int year, std::size_t tokens) {
        fields_.year = year;
        return year > 0 && take(tokens);
    }
    bool setDayOfMonth(int day, std::size_t tokens) {
        fields_.day = day;
        hasDayOfMonth_ = true;
        return take(tokens);
    }
    bool setMonth(int month) {
        if (hasMonth_) return false;
        fields_.month = month;
        return hasMonth_ = take(1);
    }

    static const DateWord* monthOf(const DateToken& token) {
        const DateWord* const month = token.as(Meaning::Month);
        return month ? month : token.as(Meaning::WeakMonth);
    }

    /// A word that has a meaning by itself.
    bool readName() {
        const DateToken& word = peek();
        if (const DateWord* const month = monthOf(word); month && setMonth(month->value)) {
            isWeakMonth_ = month->meaning == Meaning::WeakMonth;
            return true;
        }
        if (const DateWord* const hour = word.as(Meaning::NamedHour); hour && !hasTime_)
            return setNamedHour(hour->value, 1);
        if (const DateWord* const half = word.as(Meaning::EarlyMeridiem))
            return readTimeOf(half->value);
        if (word.as(Meaning::Weekday) && !hasWeekday_) return hasWeekday_ = take(1);
        if (const DateWord* const day = word.as(Meaning::Ordinal); day && !hasDayOfMonth_)
            return setDayOfMonth(day->value, 1);
        return readFiller();
    }

    /// Words without weight stand before something. A zone may be spelt like one (AT).
    bool readFiller() {
        if (fields_.year && peek().as(Meaning::Era)) return take(1);
        if (isLast() || peek(1).kind == DateToken::Kind::Mark) return false;
        const bool joinsTime =
            peek().as(Meaning::TimeMark) && peek().isGlued && peek(1).isShort() && peek(1).isGlued;
        return (joinsTime || peek().as(Meaning::Filler)) && take(1);
    }

    bool readMark() {
        const DateToken& mark = peek();
        if (!before()) return false;
        const bool isInside = mark.isGlued && peek(1).isGlued;
        if (mark.isMark(u',')) return take(1);
        if (isInside && mark.isMarkOf(u"-/.") && joinsMonth()) return take(1);
        if (!mark.isGlued && mark.isMark(u'-') && hasDay()) return take(1) && readTime();
        if (!mark.isGlued && mark.isMark(u'@') && hasDay() && !isLast()) return take(1);
        if (mark.isMark(u'.')) return mark.isGlued && isAbbreviated(*before()) && take(1);
        return mark.isMarkOf(u"'\u2019") && readApostrophe();
    }
    /// Names are, and days: 3. Februar.
    bool isAbbreviated(const DateToken& token) const {
        return token.isWord() || (token.isShort() && !peek(1).isNumber());
    }
    /// 3-Feb-2001, Feb-3-2001
    bool joinsMonth() const {
        if (monthOf(*before()) || monthOf(peek(1))) return true;
        return next_ >= 3 && tokens_[next_ - 2].isMark(peek().mark) && monthOf(tokens_[next_ - 3]);
    }
    /// '01
    bool readApostrophe() {
        const DateToken& year = peek(1);
        if (fields_.year || !hasMonth_ || !year.isGlued || year.digits != 2) return false;
        return setYear(yearOfTwoDigits(year.value), 2);
    }

    // Zones.

    bool isZoneAt(std::size_t ahead) const {
        const DateToken& token = peek(ahead);
        return token.end != 0 && DateCursor(text_.substr(token.begin)).zone().has_value();
    }

    /// Behind a time; behind all that a day has, if it is a name or a full offset. A shorter one
    /// may be the end of a span.
    bool readZone() {
        const bool isMark = peek().kind == DateToken::Kind::Mark;
        if (!hasTime_ && !(hasWholeDay() && (!isMark || peek(1).digits == 4))) return false;
        DateCursor cursor(text_.substr(peek().begin));
        const auto zone = cursor.zone();
        if (!zone || !canBeZone(*zone)) return false;
        fields_.zone = zone;
        const std::size_t end = text_.size() - cursor.left();
        while (next_ < tokens_.size() && tokens_[next_].begin < end) ++next_;
        return true;
    }
    /// A second one may only make the first more exact: GMT +0100, +0000 UTC.
    bool canBeZone(const TimeZone& zone) const {
        return !fields_.zone || *fields_.zone == zone || *fields_.zone == TimeZone();
    }

    // Relative time.

    bool readRelative() {
        if (relative_) return false;
        const auto phrase = relativePhraseAt(tokens_, next_);
        if (!phrase) return false;
        relative_ = phrase->time;
        return take(phrase->tokens);
    }

    // What the slots come to.

    Date now() const { return options_.now ? *options_.now : std::chrono::system_clock::now(); }
    LocalTime here() const { return options_.zone.localTimeOf(now()); }

    /// All of Korea has one zone.
    TimeZone zone() const {
        const bool isThere = options_.offsets && tokens_.isKorean();
        return isThere ? TimeZone::named(u"Asia/Seoul").value_or(options_.zone) : options_.zone;
    }

    /// What lacks something is filled from the present.
    std::optional<Date> dateFromPresent() {
        if (relative_) return relativeDate();
        return hasDay() ? dayOfYear() : timeOfToday();
    }

    std::optional<Date> relativeDate() {
        if (hasDay() || hasWeekday_ || (hasTime_ && relative_->seconds)) return {};
        if (hasTime_) return atTimeOn(relative_->dayFrom(here()));
        const Date date = relative_->from(now(), options_.zone);
        return isInCalendar(date) ? std::optional(date) : std::nullopt;
    }

    std::optional<Date> timeOfToday() {
        if (!hasClearTime_ || hasWeekday_) return {};
        return atTimeOn(std::chrono::floor<std::chrono::days>(here()));
    }

    std::optional<Date> atTimeOn(std::chrono::local_days day) {
        fields_.setDay(std::chrono::year_month_day(day));
        return dateOf(fields_, options_.zone);
    }

    /// A year alone is no date, nor is a day; a month is one with either.
    std::optional<Date> dayOfYear() {
        if (!hasMonth_ || isWeakMonth_ || !(fields_.year || hasDayOfMonth_ || reading_.monthAlone))
            return {};
        if (!fields_.year) {
            const auto today = std::chrono::floor<std::chrono::days>(here());
            fields_.year = static_cast<int>(std::chrono::year_month_day(today).year());
        }
        return dateOf(fields_, zone());
    }

    std::u16string_view text_;
    const DateOptions& options_;
    const NaturalReading reading_;
    DateTokens tokens_;
    std::size_t next_ = 0;
    bool isRefused_ = false;
    DateFields fields_;
    bool hasMonth_ = false, hasDayOfMonth_ = false, hasWeekday_ = false;
    bool isWeakMonth_ = false;
    bool hasTime_ = false;
    bool hasClearTime_ = false;  // one that is nothing but a time: 10 pm, noon
    std::optional<RelativeTime> relative_;
};

}  // namespace

std::optional<Date> readNaturalDate(std::u16string_view text, const DateOptions& options,
                                    NaturalReading reading) {
    if (text.size() > DateTokens::LongestText) return {};
    if (const auto date = readISODate(text, options.zone)) return date;
    return NaturalReader(text, options, reading).read();
}

}  // namespace detail

std::optional<Date> dateWithNaturalLanguageString(std::u16string_view string,
                                                  const DateOptions& options) {
    return detail::readNaturalDate(string, options);
}

}  // namespace velmo
