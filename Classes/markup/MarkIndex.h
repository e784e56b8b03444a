// Where the five units that matter to a tag scan stand. The text, of 16-bit units or of bytes of
// UTF-8, which never hides one of the five in a longer sequence, is looked at 64 units at a time, and
// each of the five has a bit set over these. A search in the current 64 is then a shift and a count
// of zeros: tags are short, so a loop over units would mostly spend its time on mispredicting its own
// end.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "markup/MarkKernels.h"

namespace velmo::detail {

template <class Unit>
class MarkIndex {
public:
    explicit MarkIndex(std::basic_string_view<Unit> text)
        : end_(text.data() + text.size()), block_(end_) {}

    // The first of the units at or behind a position; the end of the text if there is none.

    const Unit* less(const Unit* from) {
        return find(from, [](const Marks& m) { return m.less; });
    }
    const Unit* greater(const Unit* from) {
        return find(from, [](const Marks& m) { return m.greater; });
    }
    const Unit* equalOrGreater(const Unit* from) {
        return find(from, [](const Marks& m) { return m.equal | m.greater; });
    }
    const Unit* quoteOrGreater(const Unit* from) {
        return find(from, [](const Marks& m) { return m.doubleQuote | m.singleQuote | m.greater; });
    }
    const Unit* doubleQuote(const Unit* from) {
        return find(from, [](const Marks& m) { return m.doubleQuote; });
    }
    const Unit* singleQuote(const Unit* from) {
        return find(from, [](const Marks& m) { return m.singleQuote; });
    }

    /// The > of the tag in which a position is if one look at 64 units tells: where each value has
    /// double quotes, right behind its =, or none. Else null.
    const Unit* endOfPlainTag(const Unit* from) {
        if (end_ - from < BlockUnits) return nullptr;
        auto offset = static_cast<std::size_t>(from - block_);
        if (offset >= BlockUnits || !(marks_.greater >> offset)) {
            load(from);
            offset = 0;
        }
        const std::uint64_t greater = marks_.greater >> offset;
        if (!greater) return nullptr;
        const Unit* const last = from + std::countr_zero(greater);
        // What stands in front of the >.
        const std::uint64_t inTag = (greater & -greater) - 1;
        const std::uint64_t equal = marks_.equal >> offset & inTag;
        if (!equal) return last;
        // A quote mark opens a value right behind an =, and its twin closes it. The difference of
        // both has the bits from each opening one up to its twin, if they take turns.
        const std::uint64_t quotes = marks_.doubleQuote >> offset & inTag;
        const std::uint64_t opening = quotes & equal << 1, closing = quotes & ~opening;
        const std::uint64_t inValue = closing - opening;
        const bool isClosed = (quotes & inValue) == opening && !(inValue & greater & -greater);
        const bool isPlain = opening == (equal & ~inValue) << 1 &&
                             !(marks_.singleQuote >> offset & inTag & ~inValue);
        return isClosed && isPlain ? last : nullptr;
    }

private:
    static constexpr std::ptrdiff_t BlockUnits = markKernels::BlockUnits;

    template <class Select>
    const Unit* find(const Unit* from, Select select) {
        // A position in front of the block wraps around to a large offset.
        std::uint64_t hits = 0;
        if (const auto offset = static_cast<std::size_t>(from - block_); offset < BlockUnits) {
            hits = select(marks_) >> offset;
        } else {
            if (from >= end_) return end_;
            load(from);
            hits = select(marks_);
        }
        while (!hits) {
            from = block_ + BlockUnits;
            if (from >= end_) return end_;
            load(from);
            hits = select(marks_);
        }
        return from + std::countr_zero(hits);
    }

    /// Makes the block that starts at the position the current one. Behind the end of the
    /// text stand zeros.
    [[gnu::noinline]] void load(const Unit* from) {
        // The block begins where the search does, and not at a multiple of 64: nothing in front of
        // the position is looked at again.
        block_ = from;
        if (end_ - from >= BlockUnits) {
            mark_(from, marks_);
        } else {
            // A copy, as the kernels read 64 units whatever there are.
            Unit tail[BlockUnits] = {};
            std::memcpy(tail, from, static_cast<std::size_t>(end_ - from) * sizeof(Unit));
            mark_(tail, marks_);
        }
    }

    const Unit* const end_;
    const Unit* block_;
    const MarkKernel<Unit> mark_ = markKernel<Unit>();
    Marks marks_;
};

}  // namespace velmo::detail
