// The words of the query language that are no terms. A part is compared with each: there are
// fourteen, and most parts differ from all of them in length.
#include "query/QueryOperators.h"

#include <velmocore/text/FastCompare.h>

namespace velmo::detail {
namespace {

constexpr OperatorWord OperatorWords[] = {
    {"|", QueryOperator::Or},
    {"^", QueryOperator::Xor},
    {"&", QueryOperator::And},
    {"OR", QueryOperator::Or},
    {"AND", QueryOperator::And},
    {"BUT", QueryOperator::And},
    {"XOR", QueryOperator::Xor},
    {"EOR", QueryOperator::Xor},
    {"OPT", QueryOperator::Opt},
    {"NOT", QueryOperator::None},
    {"NEAR", QueryOperator::Near, 0, true},
    {"NEXT", QueryOperator::Next, 1, true},
    {"AFTER", QueryOperator::After, UnboundedDistance, true},
    {"BEFORE", QueryOperator::Before, UnboundedDistance, true},
};

bool is(std::u16string_view part, const OperatorWord& row) {
    const std::size_t length = row.word.size();
    if (part.size() != length) {
        // A distance needs the / and at least one unit after it.
        if (!row.takesDistance || part.size() < length + 2 || part[length] != u'/') return false;
        part = part.substr(0, length);
    }
    return fastCaseInsensitiveCompareUnicharsWithChars(part, row.word) == 0;
}

}  // namespace

std::span<const OperatorWord> operatorWords() { return OperatorWords; }

const OperatorWord* operatorWordOf(std::u16string_view part) {
    for (const OperatorWord& row : OperatorWords)
        if (is(part, row)) return &row;
    return nullptr;
}

}  // namespace velmo::detail
