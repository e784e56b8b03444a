// The rewriting of queries written down as plainly as can be, on the trees of QueryReference.
#pragma once

#include <map>
#include <set>

#include "query/reference/QueryReference.h"

namespace velmo::test {

using RefDictionary = std::map<std::u16string, std::u16string>;

std::u16string refRender(const RefNode& top, std::uint64_t flags, const RefDictionary& dictionary);

/// The nodes of the positive words: 1 without, 2 with the mark for substrings, 3 both.
std::vector<const RefNode*> refPlusTerms(const RefNode& top, unsigned mask);

/// Sorted by length, then by units.
std::vector<std::u16string> refPlusWildcards(const RefNode& top, bool extended);

}  // namespace velmo::test
