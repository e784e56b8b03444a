// The patterns of ebook packages. They are so few and so much alike that one walk reads them all:
// each longer one goes on where a shorter one may end.
#include <velmocore/readers/Dates.h>

#include "readers/DateFields.h"

namespace velmo {

namespace {

using detail::DateCursor;
using detail::DateFields;

/// Reads the year, the month and the day, as far as they are there. Gives how many they are.
int readDay(DateCursor& text, DateFields& fields) {
    fields.year = text.number(4, 4);
    if (!text.take(u'-')) return 1;
    fields.month = text.number(1, 2);
    if (!text.take(u'-')) return 2;
    fields.day = text.number(1, 2);
    return 3;
}

bool readClock(DateCursor& text, DateFields& fields) {
    if ((fields.hour = text.number(1, 2)) < 0 || fields.hour > 23) return false;
    if (!text.take(u':') || (fields.minute = text.number(1, 2)) < 0) return false;
    return !text.take(u':') || (fields.second = text.number(1, 2)) >= 0;
}

bool readZone(DateCursor& text, DateFields& fields, bool isZUniversal) {
    if (text.rest() != u"Z") return (fields.zone = text.zone()).has_value();
    text.advance();
    if (isZUniversal) fields.zone = TimeZone();
    return true;
}

}  // namespace

std::optional<Date> dateFromOPF(std::u16string_view string, const DateOptions& options) {
    DateCursor text(string);
    DateFields fields;
    if (readDay(text, fields) == 3 && text.take(u'T') &&
        !(readClock(text, fields) && readZone(text, fields, options.offsets)))
        return {};
    return text.isAtEnd() ? detail::dateOf(fields, options.zone) : std::nullopt;
}

}  // namespace velmo
