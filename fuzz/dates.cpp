// The first line is a calendar format, the rest a date: read by the format and in all other ways.
// What is read must be a date that can be written, and reading it back must give it again.
#include <velmocore/platform/DateFormat.h>
#include <velmocore/platform/Log.h>
#include <velmocore/readers/CalendarFormat.h>
#include <velmocore/readers/Dates.h>
#include <velmocore/readers/DocumentDates.h>
#include <velmocore/readers/NaturalDates.h>

#include <algorithm>

#include "Input.h"

using namespace velmo;

namespace {

using fuzz::require;

const DateOptions Options[] = {
    {.zone = {}, .now = Date{}},
    {.zone = {}, .now = Date{}, .offsets = true},
    {.zone = *TimeZone::named(u"Europe/Berlin"), .now = Date{}, .offsets = true},
};

void checkDate(const std::optional<Date>& read) {
    if (!read) return;
    const String written = stringInISO8601(*read);
    // An offset may lead out of the years that can be written.
    if (written.isAbsent()) return;
    const auto again = date(written, {.zone = {}, .offsets = true});
    require(again && stringInISO8601(*again) == written);
}

/// Blanks at the ends change nothing.
void checkBlanks(const String& text, const DateOptions& options) {
    const bool hasEnd = text.view().find_first_of(u";[]{}()") != std::u16string_view::npos;
    require(date(String(u" \n") + text, options) == date(text, options));
    require(hasEnd || date(text + u" ", options) == date(text, options));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool isQuiet = (setLogHandler([](std::string_view) {}), true);
    require(isQuiet);
    const String units = fuzz::unitsOf(data, size);
    const std::size_t line = std::min(units.view().find(u'\n'), units.length());
    const std::string format = utf8(units.view().substr(0, line));
    const String text = units.view().substr(std::min(line + 1, units.length()));
    for (const DateOptions& options : Options) {
        checkDate(dateWithString(text, format, options));
        checkDate(date(text, options));
        checkDate(dateFromHTTPHeaderValue(text, options));
        checkDate(dateFromOPF(text, options));
        checkDate(dateWithNaturalLanguageString(text, options));
        for (const bool validate : {true, false})
            checkDate(documentDateByValidatingSeparation(text, validate, options));
        checkBlanks(text, options);
    }
    static_cast<void>(TimeZone::named(text));
    return 0;
}
