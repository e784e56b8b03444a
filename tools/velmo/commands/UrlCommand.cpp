// How the actions on URLs get their input: from arguments for people, from lines for programs.
// Lines are worked on as they come, not gathered first, so that the tool can be kept open as a
// partner on a pipe, and memory does not grow with their number.
#include <iostream>

#include <velmocore/text/Trimming.h>
#include <velmocore/url/RelativeURLs.h>

#include "Commands.h"
#include "UrlCommands.h"

namespace velmo::tool {

void addUrlArguments(Command& command, std::vector<std::string>& urls, std::string_view name) {
    command.arguments.push_back(list(name, urls, "without any, a line each from standard input"));
}

Option webFlag(WebRules& web, std::string help) {
    return {.names = "--web", .value = {}, .help = std::move(help), .take = [&web](const auto&) {
                web = WebRules::today();
            }};
}

URL readURL(const String& text, WebRules web) {
    return URLWithStringRelativeTo(text, URL(), {.trimAnchor = false, .web = web});
}

String readText(const String& text, WebRules web) {
    if (!web.resolution) return text;
    const URL url = readURL(text, web);
    return url.isAbsent() ? text : url.absoluteString();
}

void forEachUrl(Report& report, const std::vector<std::string>& urls,
                const std::function<void(const String& url)>& work) {
    // An argument is taken as it is, with its white space: who quotes it means it.
    for (const std::string& url : urls) work(String::fromUTF8(url));
    if (!urls.empty()) return;
    for (std::string line; std::getline(std::cin, line);) {
        const String url = stringByTrimmingWhiteSpaces(String::fromUTF8(line));
        if (!url.isEmpty()) work(url);
        // A program that asks line by line waits for each answer.
        if (std::cin.rdbuf()->in_avail() <= 0) report.flush();
    }
    if (std::cin.bad()) report.fail("-", "cannot be read");
}

std::span<const CommandEntry> urlActions() {
    // In the order of the help.
    static const CommandEntry actions[] = {
        {"resolve", makeUrlResolveCommand}, {"simplify", makeUrlSimplifyCommand},
        {"key", makeUrlKeyCommand},         {"parse", makeUrlParseCommand},
        {"host", makeUrlHostCommand},       {"path", makeUrlPathCommand},
        {"params", makeUrlParamsCommand},   {"accept", makeUrlAcceptCommand},
        {"unwrap", makeUrlUnwrapCommand},   {"classify", makeUrlClassifyCommand},
        {"repair", makeUrlRepairCommand},
    };
    return actions;
}

}  // namespace velmo::tool
