#include <velmocore/text/Dumping.h>

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string>

#include <velmocore/platform/Log.h>
#include <velmocore/platform/String.h>

namespace velmo {
namespace {

constexpr std::size_t RowUnits = 12;

}  // namespace

void dump(std::u16string_view string) {
    if (string.empty()) return;
    const char* const frame = string.size() > RowUnits ? "\n" : "";
    std::string out = frame;
    for (; !string.empty(); string.remove_prefix(std::min(RowUnits, string.size()))) {
        const std::u16string_view row = string.substr(0, RowUnits);
        std::string values;
        for (const char16_t unit : row)
            fmt::format_to(std::back_inserter(values), "{:04x} ", unsigned{unit});
        out +=
            fmt::format("{}{}: {}\n", utf8(row), std::string(RowUnits - row.size(), ' '), values);
    }
    // One call for all, so that the rows of two threads do not mix.
    log(out + frame);
}

void dumpAsArray(std::u16string_view string) {
    if (string.empty()) return;
    std::string out = "unichar string[] = {\n\t";
    for (std::size_t i = 0; i < string.size(); ++i) {
        const char* const separator = i + 1 == string.size() ? "\n};\n "
                                      : i % 8 == 7           ? ",\n\t"
                                                             : ", ";
        fmt::format_to(std::back_inserter(out), "{:#06x}{}", unsigned{string[i]}, separator);
    }
    log(fmt::format("\n{}:\n{}", utf8(string), out));
}

}  // namespace velmo
