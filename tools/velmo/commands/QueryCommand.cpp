// What a query means: its tree, and its other forms.
#include <fmt/core.h>

#include <memory>

#include <velmocore/query/QueryDump.h>
#include <velmocore/query/QueryRewriting.h>

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

/// A query in one of the library's forms, where an unbounded distance is written as -1: as
/// people write it, BEFORE or AFTER alone. What stands in quotes stays.
/// The library's form is for programs and is kept as it is; but people would give what they read
/// here back to the tool.
std::string withPlainDistances(const String& form) {
    constexpr std::string_view Unbounded = "/-1";
    std::string out;
    bool isQuoted = false;
    const std::string text = form.utf8();
    // The operator is looked for in what was written so far, which ends with it where a distance
    // begins.
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"') isQuoted = !isQuoted;
        const bool isDistance = (out.ends_with("BEFORE") || out.ends_with("AFTER")) &&
                                text.compare(i, Unbounded.size(), Unbounded) == 0;
        if (isDistance && !isQuoted)
            i += Unbounded.size() - 1;
        else
            out += text[i];
    }
    return out;
}

/// What is told of a query, in the order of the output.
JsonObject formsOf(const Query& query, const QueryOptions& options) {
    // Searches and excerpts take the words as wildcards, however the query is read otherwise.
    QueryOptions asWildcards = options;
    asWildcards.wildcard = true;
    const auto wildcards = QueryTerms(query.text, asWildcards).plusWildcards();
    const QueryTerms& terms = query.terms;
    return {{"valid", terms.isValid()},
            {"tree", dumpOfQueryTerms(terms)},
            {"standardized", terms.standardizedQueryTerm()},
            {"normalized", withPlainDistances(terms.normalizedQueryTerm())},
            {"description", withPlainDistances(terms.description())},
            {"plusWords", jsonArray(terms.plusWords())},
            {"wildcards", wildcards ? Json(jsonArray(*wildcards)) : Json()},
            {"minTermLen", terms.minTermLen()}};
}

void printLines(const JsonObject& forms, Report& report) {
    for (const auto& [name, value] : forms) {
        // Of many lines; it has a flag of its own.
        if (name.plain() == "tree") continue;
        std::string line;
        if (const JsonArray* words = value.values())
            for (const Json& word : *words) line += (line.empty() ? "" : ", ") + word.plain();
        else
            line = value.plain();
        report.printLine(fmt::format("{:14}{}", name.plain() + ":", line));
    }
}

void run(Report& report, const Options& options) {
    std::string text = options.query;
    if (options.withoutSite) text = queryTermWithoutSiteOperator(String::fromUTF8(text)).utf8();
    const Query query = readQuery(report, text, options.parse, WildcardComparison::CaseInsensitive);
    if (options.tree) {
        std::string tree = dumpOfQueryTerms(query.terms);
        // The line end is the report's.
        if (tree.ends_with('\n')) tree.pop_back();
        return report.printLine(tree);
    }
    const JsonObject forms = formsOf(query, options.parse.read());
    if (report.json())
        report.printObject(forms);
    else
        printLines(forms, report);
}

}  // namespace

Command makeQueryCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Tell how a query is understood, and its other forms",
        .examples = {"velmo query --tree '(tea OR coffee) NEAR/5 cup -sugar'"},
        .arguments = {required("QUERY", options->query, "see velmo help queries")},
        .run = [options](Report& report) { run(report, *options); },
    };
    command.add(queryParseOptions(options->parse));
    command.add({flag("--without-site", options->withoutSite, "leave out words such as site:host"),
                 flag("--tree", options->tree, "the tree, one line a node")});
    command.options.back().excludes = "--json";
    command.add({jsonFlag(session, "one JSON object")});
    return command;
}

}  // namespace velmo::tool
