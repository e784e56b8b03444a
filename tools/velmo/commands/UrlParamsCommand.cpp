// The parameters as the library reads them: values as they stand, escapes and all, and each name
// once. The count is of all pairs of the query, and may be larger, as names may come again and
// values be empty.
#include <fmt/core.h>

#include <velmocore/url/QueryParameters.h>

#include <memory>

#include "UrlCommands.h"

namespace velmo::tool {
namespace {

void print(Report& report, const String& url) {
    // A URL without a query and one with an empty one print alike: both have nothing to tell.
    const QueryParams params = queryParams(url).value_or(QueryParams());
    if (!report.json()) {
        report.printLine(url.utf8());
        for (const auto& [name, value] : params)
            report.printLine(fmt::format("  {}={}", name.utf8(), value.utf8()));
        return;
    }
    JsonObject object;
    for (const auto& [name, value] : params) object.push_back({name, value});
    report.printObject({{"url", url}, {"params", object}, {"count", numberOfQueryParams(url)}});
}

}  // namespace

Command makeUrlParamsCommand(Session& session) {
    auto options = std::make_shared<std::vector<std::string>>();
    Command command = {
        .summary = "Tell the parameters of the queries of URLs",
        .examples = {"velmo url params 'https://example.org/?q=a&n=5'"},
        .run =
            [options](Report& report) {
                forEachUrl(report, *options, [&report](const String& url) { print(report, url); });
            },
    };
    addUrlArguments(command, *options);
    command.add(
        {jsonFlag(session, "one JSON object a URL; the count takes in those without a value")});
    return command;
}

}  // namespace velmo::tool
