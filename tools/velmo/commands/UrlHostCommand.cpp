// Hosts in ASCII and in the letters of people. For people only what cannot deceive is shown; programs
// get both.
#include <fmt/core.h>

#include <velmocore/url/DomainNames.h>

#include <memory>

#include "UrlCommands.h"

namespace velmo::tool {
namespace {

/// Whoever writes an IPv6 address leaves its brackets out.
String withBrackets(const String& host) {
    const String inBrackets = u"[" + host + u"]";
    return domainToASCII(inBrackets).isAbsent() ? host : inBrackets;
}

void print(Report& report, const String& given) {
    const String host = withBrackets(given);
    const String ascii = domainToASCII(host), display = displayDomain(host);
    if (report.json())
        return report.printObject({{"host", given},
                                   {"ascii", ascii},
                                   {"unicode", domainToUnicode(host)},
                                   {"display", display}});
    if (ascii.isAbsent()) return report.fail(given.utf8(), "not a host");
    report.printLine(ascii == display ? ascii.utf8()
                                      : fmt::format("{} ({})", ascii.utf8(), display.utf8()));
}

}  // namespace

Command makeUrlHostCommand(Session& session) {
    auto options = std::make_shared<std::vector<std::string>>();
    Command command = {
        .summary = "Give hosts in ASCII and in the letters of people",
        .examples = {"velmo url host xn--bcher-kva.example 0x7f.1"},
        .run =
            [options](Report& report) {
                forEachUrl(report, *options,
                           [&report](const String& host) { print(report, host); });
            },
    };
    addUrlArguments(command, *options, "HOST");
    command.add({jsonFlag(session, "one JSON object a host, null for what is none")});
    return command;
}

}  // namespace velmo::tool
