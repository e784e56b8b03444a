// The operator words of the query language.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include <velmocore/query/QueryTerms.h>

namespace velmo::detail {

/// A word, in upper case, that is an operator and no term.
struct OperatorWord {
    std::string_view word;
    QueryOperator op;            // None for NOT, which negates the next term
    std::uint64_t distance = 0;  // that the bare word sets; 0 leaves it as it is
    bool takesDistance = false;  // "/5" may follow
};

std::span<const OperatorWord> operatorWords();

/// The operator that a part of a query is, without regard to case, or null. The part may
/// hold a distance after the word.
const OperatorWord* operatorWordOf(std::u16string_view part);

}  // namespace velmo::detail
