// What a query means: its tree, and its other forms.
#include <velmocore/query/QueryDump.h>
#include <velmocore/query/QueryRewriting.h>

#include <memory>

#include "Commands.h"
#include "QueryOptions.h"

namespace velmo::tool {
namespace {

struct Options {
    std::string query;
    QueryParseOptions parse;
    bool withoutSite = false;
    bool tree = false;
};

Json list(const std::vector<String>& strings) {
    Json array = Json::array();
    for (const String& string : strings) array.push_back(text(string));
    return array;
}

/// What is told of a query, in the order of the output.
Json formsOf(const String& query, const QueryTerms& terms, const QueryOptions& options) {
    // Searches and excerpts take the words as wildcards, however the query is read otherwise.
    QueryOptions asWildcards = options;
    asWildcards.wildcard = true;
    const auto wildcards = QueryTerms(query, asWildcards).plusWildcards();
    return {{"valid", terms.isValid()},
            {"tree", dumpOfQueryTerms(terms)},
            {"standardized", text(terms.standardizedQueryTerm())},
            {"normalized", text(terms.normalizedQueryTerm())},
            {"description", text(terms.description())},
            {"plusWords", list(terms.plusWords())},
            {"wildcards", wildcards ? list(*wildcards) : Json(nullptr)},
            {"minTermLen", terms.minTermLen()}};
}

void printLines(Session& session, const Json& forms) {
    for (const auto& [name, value] : forms.items()) {
        if (name == "tree") continue;
        std::string line;
        if (value.is_array())
            for (const Json& word : value)
                line += (line.empty() ? "" : ", ") + word.get<std::string>();
        else
            line = value.is_string() ? value.get<std::string>() : value.dump();
        session.printLine(fmt::format("{:14}{}", name + ":", line));
    }
}

void run(Session& session, const Options& options) {
    String query = String::fromUTF8(options.query);
    if (options.withoutSite) query = queryTermWithoutSiteOperator(query);
    const QueryOptions parse = options.parse.read();
    const QueryTerms terms(query, parse);
    if (options.tree) {
        fmt::print("{}", dumpOfQueryTerms(terms));
        return;
    }
    const Json forms = formsOf(query, terms, parse);
    if (session.json)
        session.printObject(forms);
    else
        printLines(session, forms);
}

}  // namespace

void addQueryCommand(CLI::App& app, Session& session) {
    auto options = std::make_shared<Options>();
    CLI::App* command =
        app.add_subcommand("query",
                           "Example: velmo query --tree '(tea OR coffee) NEAR/5 cup -sugar'\n"
                           "Tell how a query is understood, and its other forms");
    command->add_option("QUERY", options->query, "see velmo match --help")->required();
    addQueryParseOptions(*command, options->parse);
    command->add_flag("--without-site", options->withoutSite, "leave out words such as site:host");
    CLI::Option* tree = command->add_flag("--tree", options->tree, "the tree, one line a node");
    command->add_flag("--json", session.json, "one JSON object")->excludes(tree);
    command->callback([&session, options] { run(session, *options); });
}

}  // namespace velmo::tool
