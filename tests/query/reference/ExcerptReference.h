// Excerpts written down as plainly as can be. Term units are ASCII letters and digits.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "query/reference/QueryReference.h"

namespace velmo::test {

/// The next hit from a position on.
using RefNextHit = std::function<std::optional<RefHit>(std::size_t from)>;

RefNextHit refNextString(const std::u16string& text, std::u16string_view sought, Case letterCase);

struct RefAssembly {
    bool singleWords, paragraphs;
    std::u16string separator;
    std::size_t limit;
    bool withinRuns = false;
};
/// Nothing if no hit went into the summary.
std::optional<std::u16string> refAssemble(const std::u16string& text, const RefNextHit& next, const RefAssembly& how);

struct RefRecord {
    std::size_t location, length, line;
    std::u16string string;
    friend bool operator==(const RefRecord&, const RefRecord&) = default;
};
std::vector<RefRecord> refOccurrences(const std::u16string& text, const RefNextHit& next, bool paragraphs,
                                      std::size_t minWords, bool withinRuns = false);

}  // namespace velmo::test
