// Options that the commands with queries share.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

#include <velmocore/query/QueryTerms.h>
#include <velmocore/query/Wildcards.h>

namespace velmo::tool {

/// How a query is read.
struct QueryParseOptions {
    bool wildcard = false;
    std::string defaultOperator = "and";
    std::uint64_t defaultDistance = QueryOptions().defaultDistance;

    QueryOptions read() const;
};

/// --wildcard, --default-operator and --default-distance.
void addQueryParseOptions(CLI::App& command, QueryParseOptions& options);

}  // namespace velmo::tool
