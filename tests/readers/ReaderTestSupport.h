// What the tests of the readers share: dates as text.
#pragma once

#include <velmocore/platform/DateFormat.h>
#include <velmocore/platform/Log.h>
#include <velmocore/readers/DateOptions.h>

#include "TestSupport.h"

namespace velmo::test {

inline std::string iso(const std::optional<Date>& date) { return date ? stringInISO8601(*date).utf8() : "none"; }

/// Saturday, the 3rd of February 2001, 10:00 UTC.
inline const Date Present{std::chrono::duration<double>(981194400)};

/// What is logged goes into a list meanwhile.
class LogCapture {
public:
    LogCapture() {
        lines().clear();
        setLogHandler([](std::string_view line) { lines().emplace_back(line); });
    }
    ~LogCapture() { setLogHandler(nullptr); }
    static std::vector<std::string>& lines() {
        static std::vector<std::string> all;
        return all;
    }
};

}  // namespace velmo::test
