#pragma once

#include <cstdint>
#include <string_view>

namespace velmo::detail {

struct WordCount {
    std::uint64_t words = 0;
    std::uint64_t units = 0;

    void add(std::u16string_view word) { addIf(true, word.size()); }
    /// Without a jump.
    void addIf(bool is, std::uint64_t size) {
        words += is;
        units += size & (0 - std::uint64_t{is});
    }
    void add(const WordCount& others) {
        words += others.words;
        units += others.units;
    }
    WordCount without(const WordCount& others) const {
        return {words - others.words, units - others.units};
    }
    /// Whether it holds at least half of the words or of the units, both rounded down.
    bool isHalfOf(const WordCount& all) const {
        return units >= all.units / 2 || words >= all.words / 2;
    }
};

}  // namespace velmo::detail
