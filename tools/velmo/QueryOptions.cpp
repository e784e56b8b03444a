#include "QueryOptions.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <vector>

namespace velmo::tool {
namespace {

constexpr std::string_view OperatorNames[] = {"and",    "or",    "xor",  "near",
                                              "before", "after", "next", "opt"};

}  // namespace

QueryOptions QueryParseOptions::read() const {
    const auto name = std::ranges::find(OperatorNames, defaultOperator);
    return {.defaultOperator = static_cast<QueryOperator>(name - std::begin(OperatorNames)),
            .defaultDistance = defaultDistance,
            .wildcard = wildcard};
}

void addQueryParseOptions(CLI::App& command, QueryParseOptions& options) {
    command.add_flag("--wildcard", options.wildcard, "words are patterns with * ? and [sets]");
    command
        .add_option("--default-operator", options.defaultOperator,
                    "what joins words that nothing else joins: and, or, xor, near, ...")
        ->check(CLI::IsMember(
            std::vector<std::string>(std::begin(OperatorNames), std::end(OperatorNames))));
    command.add_option("--default-distance", options.defaultDistance,
                       "of NEAR without a number, in words");
}

}  // namespace velmo::tool
