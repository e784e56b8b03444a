// The query language written down as plainly as can be: recursive, without any index,
// memory or short cut. The tests compare the library with it on random queries and texts.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <velmocore/platform/Matching.h>

namespace velmo::test {

struct RefNode {
    bool isWord = false;
    std::u16string word;
    std::vector<std::unique_ptr<RefNode>> children;
    int op = 0;  // 0 AND, 1 OR, 2 XOR, 3 NEAR, 4 BEFORE, 5 AFTER, 6 NEXT, 7 OPT, 8 none
    int common = 8;
    std::uint64_t distance = 10;
    bool negated = false, substring = false, phrase = false;
};

/// What has been set for the next term.
struct RefState {
    int op;
    bool negated = false, substring = false;
    std::uint64_t distance;
};

struct RefDefaults {
    int op = 0;
    std::uint64_t distance = 10;
    bool wildcard = false;
};

/// Parses the text of a group into the children of the node.
void refParse(RefNode& group, std::u16string_view text, const RefDefaults& defaults);

/// The same text as dumpOfQueryTerms() gives.
std::string refDump(const RefNode& node, std::size_t depth = 0);

struct RefHit {
    std::size_t location, length;
    friend auto operator<=>(const RefHit&, const RefHit&) = default;
};
/// The first occurrence of a word node in a stretch of a text.
using RefFind = std::function<std::optional<RefHit>(const RefNode& word, std::size_t start, std::size_t end)>;

/// Finds words as they are written; term units are ASCII letters and digits, and case folding
/// is that of ASCII.
RefFind refPlainWords(std::u16string_view text, Case letterCase, bool withinRuns = false);

/// Evaluates a tree on a text whose words that function finds.
bool refMatches(const RefNode& top, std::u16string_view text, const RefFind& find, bool withinRuns = false);
/// The hits that made it true; those of words that are found everywhere do not count.
std::set<RefHit> refHits(const RefNode& top, std::u16string_view text, const RefFind& find,
                         const std::function<bool(const RefNode& word)>& isEverywhere, bool withinRuns = false);
bool refContains(const RefNode& top, std::u16string_view text, const RefFind& find);

}  // namespace velmo::test
