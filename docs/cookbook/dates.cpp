// Dates as people and programs write them, in one form.
//
//     dates < LINES
#include <velmocore/platform/DateFormat.h>
#include <velmocore/platform/Log.h>
#include <velmocore/readers/Dates.h>

#include <iostream>
#include <string>

using namespace velmo;

int main() {
    setLogHandler([](std::string_view) {});  // what is no date is told here, not in the log
    for (std::string line; std::getline(std::cin, line);) {
        const auto when = date(String::fromUTF8(line), {.zone = {}, .offsets = true});
        std::cout << (when ? stringInISO8601(*when) : String(u"no date")) << '\t' << line << '\n';
    }
}
