#include <velmocore/url/QueryParameters.h>

#include <memory>

#include "UrlCommands.h"

namespace velmo::tool {
namespace {

void print(Session& session, const String& url) {
    const QueryParams params = queryParams(url).value_or(QueryParams());
    if (!session.json) {
        session.printLine(url.utf8());
        for (const auto& [name, value] : params)
            session.printLine(fmt::format("  {}={}", name.utf8(), value.utf8()));
        return;
    }
    Json object = Json::object();
    for (const auto& [name, value] : params) object[text(name).get<std::string>()] = text(value);
    session.printObject(
        {{"url", text(url)}, {"params", object}, {"count", numberOfQueryParams(url)}});
}

}  // namespace

void addUrlParamsCommand(CLI::App& url, Session& session) {
    auto urls = std::make_shared<std::vector<std::string>>();
    CLI::App* command =
        url.add_subcommand("params",
                           "Example: velmo url params 'https://example.org/?q=a&n=5'\n"
                           "Tell the parameters of the queries of URLs");
    addUrlArguments(*command, *urls);
    command->add_flag("--json", session.json,
                      "one JSON object a URL; the count takes in those without a value");
    command->callback([&session, urls] {
        forEachUrl(*urls, [&session](const String& string) { print(session, string); });
    });
}

}  // namespace velmo::tool
