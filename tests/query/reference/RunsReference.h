// Where words begin and end, with scripts without spaces or without, unit by unit. Of these
// scripts it knows the few characters that the tests use.
#pragma once

#include <random>
#include <string>
#include <string_view>

namespace velmo::test {

struct RefWords {
    std::u16string text;
    bool withinRuns = false;

    bool isTerm(std::size_t i) const;
    /// Whether a word can begin or end at a position, for what stands before and behind it.
    bool mayBegin(std::size_t i) const { return i == 0 || !goesOn(i, i - 1); }
    bool mayEnd(std::size_t i) const { return i >= text.size() || !goesOn(i, i); }
    /// Whether a new word begins there although both units are terms.
    bool isApart(std::size_t i) const;

private:
    bool goesOn(std::size_t i, std::size_t neighbour) const;
    bool isPair(std::size_t i) const;
};

/// Writes lower-case letters and a full stop as others, of scripts without spaces and not: the
/// same letter as the same in all that one of these is asked for.
class RefScripts {
public:
    explicit RefScripts(std::mt19937& random);
    std::u16string operator()(std::u16string_view text) const;

private:
    std::u16string_view letters_[4], stop_;
};

/// A wildcard in which no pair of these scripts separates words, as long as it was.
std::u16string refMasked(std::u16string_view wildcard);

}  // namespace velmo::test
