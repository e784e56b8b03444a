// A wildcard is classified before it is used: for a word with a star at one end, which is what
// people mostly write, a comparison of one edge is enough. The pass that counts the elements also
// drops what means nothing and would hide such a shape.
#include "query/WildcardShape.h"

#include <utility>

#include "query/WildcardMatch.h"

namespace velmo::detail {
namespace {

/// Whether all sets end and hold no other, and no ] stands outside.
bool isWellFormed(std::u16string_view wildcard) {
    bool inSet = false;
    for (char16_t unit : wildcard) {
        if (unit == (inSet ? u'[' : u']')) return false;
        if (unit == (inSet ? u']' : u'[')) inSet = !inSet;
    }
    return !inSet;
}

struct Counts {
    std::size_t literals = 0, sets = 0, marks = 0, stars = 0;
};

/// Copies a wildcard onto itself without what means nothing, and counts.
std::size_t compact(char16_t* wildcard, std::size_t length, Counts& counts) {
    char16_t* out = wildcard;
    char16_t* openedAt = nullptr;
    bool hasMember = false;
    char16_t previous = 0;
    for (std::size_t i = 0; i < length; ++i) {
        const char16_t before = std::exchange(previous, wildcard[i]);
        const char16_t unit = previous;
        if (openedAt) {
            // A | in a set means nothing, as every member is an alternative already.
            if (unit != u'|') *out++ = unit;
            hasMember |= unit != u'^' && unit != u'-' && unit != u'|' && unit != u']';
            if (unit != u']') continue;
            if (hasMember) {
                ++counts.literals;
                ++counts.sets;
            } else {
                // A set without a member means nothing, and goes as if it were not there.
                out = openedAt;
            }
            openedAt = nullptr;
        } else if (unit == u'*') {
            // A set that went stands between two stars all the same.
            if (before == u'*') continue;
            *out++ = unit;
            ++counts.stars;
        } else {
            if (unit == u'[') {
                openedAt = out;
                hasMember = false;
            } else {
                ++(unit == u'?' ? counts.marks : counts.literals);
            }
            *out++ = unit;
        }
    }
    return static_cast<std::size_t>(out - wildcard);
}

WildcardType typeOf(std::u16string_view wildcard, const Counts& counts,
                    std::uint64_t minCharacters) {
    using enum WildcardType;
    if (counts.literals == 0) return Unusable;
    if (counts.stars == 0) return counts.sets ? Sets : counts.marks ? Marks : Plain;
    // Asked of wildcards with a star only, which are those that could match nearly every word.
    if (counts.literals < minCharacters) return Unusable;
    const bool starFirst = wildcard.front() == u'*', starLast = wildcard.back() == u'*';
    if (counts.stars == 1 && (starFirst || starLast)) {
        if (counts.sets) return starFirst ? SuffixSets : PrefixSets;
        if (!counts.marks) return starFirst ? Suffix : Prefix;
    }
    if (counts.sets) return GeneralSets;
    return !counts.marks && counts.stars == 2 && starFirst && starLast ? Infix : General;
}

Range coreOf(WildcardType type, std::size_t length) {
    switch (type) {
        case WildcardType::Prefix:
        case WildcardType::PrefixSets:
            return {0, length - 1};
        case WildcardType::Suffix:
        case WildcardType::SuffixSets:
            return {1, length - 1};
        case WildcardType::Infix:
            return {1, length - 2};
        default:
            return {0, length};
    }
}

}  // namespace

WildcardShape shapeWildcard(char16_t* wildcard, std::size_t length, std::uint64_t minCharacters) {
    if (!isWellFormed({wildcard, length})) return {{}, length};
    Counts counts;
    length = compact(wildcard, length, counts);
    const WildcardType type = typeOf({wildcard, length}, counts, minCharacters);
    return {{type, coreOf(type, length)}, length};
}

std::size_t afterElement(std::u16string_view wildcard, std::size_t position) {
    return wildcard[position] == u'[' ? afterBracket(wildcard, position) : position + 1;
}

}  // namespace velmo::detail
