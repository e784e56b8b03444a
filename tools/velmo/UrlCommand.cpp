#include <iostream>

#include <velmocore/text/Trimming.h>

#include "Commands.h"
#include "UrlCommands.h"

namespace velmo::tool {

void addUrlArguments(CLI::App& command, std::vector<std::string>& urls, const std::string& name) {
    command.add_option(name, urls, "without any, a line each from standard input");
}

void forEachUrl(const std::vector<std::string>& urls,
                const std::function<void(const String& url)>& work) {
    for (const std::string& url : urls) work(String::fromUTF8(url));
    if (!urls.empty()) return;
    for (std::string line; std::getline(std::cin, line);)
        if (const String url = stringByTrimmingWhiteSpaces(String::fromUTF8(line)); !url.isEmpty())
            work(url);
}

void addUrlCommand(CLI::App& app, Session& session) {
    CLI::App* command =
        app.add_subcommand("url",
                           "Example: velmo url classify --json https://example.org/ads/x.gif\n"
                           "         velmo links page.html | velmo url accept --base URL\n"
                           "Repair, resolve, simplify and judge URLs");
    command->require_subcommand(1);
    for (const auto add : UrlCommands) add(*command, session);
}

}  // namespace velmo::tool
