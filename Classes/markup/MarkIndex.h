// Where the five units that matter to a tag scan stand. The text, of 16-bit units or of bytes of
// UTF-8, which never hides one of the five in a longer sequence, is looked at 64 units at a time, and each of the five has a bit set over these. A search in the current 64 is then
// a shift and a count of zeros: tags are short, so a loop over units would mostly spend its
// time on mispredicting its own end.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "text/ByteScan.h"
#include "text/WideUnits.h"

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
        const std::uint64_t quotes = marks_.doubleQuote >> offset & inTag;
        // From each opening quote up to its twin.
        std::uint64_t inValue = quotes;
        for (int shift = 1; shift < BlockUnits; shift *= 2) inValue ^= inValue << shift;
        const bool isClosed = !(std::popcount(quotes) & 1);
        const bool isPlain = (quotes & inValue) == (equal & ~inValue) << 1 &&
                             !(marks_.singleQuote >> offset & inTag & ~inValue);
        return isClosed && isPlain ? last : nullptr;
    }

private:
    static constexpr std::ptrdiff_t BlockUnits = 64;

    /// Bit i stands for unit i of the block.
    struct Marks {
        std::uint64_t less = 0, greater = 0, equal = 0, doubleQuote = 0, singleQuote = 0;
    };

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
            mark(from);
        } else {
            // A copy, as the kernels read 64 units whatever there are.
            Unit tail[BlockUnits] = {};
            std::memcpy(tail, from, static_cast<std::size_t>(end_ - from) * sizeof(Unit));
            mark(tail);
        }
    }

#if defined(__SSE2__)
    void mark(const Unit* units) {
        if (scan::hasAvx512())
            markAvx512(units);
        else if (scan::hasAvx2())
            markAvx2(units);
        else
            markSse2(units);
    }

    // Units are packed to bytes first: those above 255 become 255 or 0, which no mark is.

    static __m128i bytes16(const char16_t* units) {
        return _mm_packus_epi16(scan::loadBlock(units), scan::loadBlock(units + 8));
    }
    static __m128i bytes16(const char* bytes) { return scan::loadBlock(bytes); }

    __attribute__((target("avx2"))) static __m256i bytes32(const char16_t* units) {
        const auto* block = reinterpret_cast<const __m256i*>(units);
        // The pack works on each half of the register; the permutation mends the order.
        return _mm256_permute4x64_epi64(
            _mm256_packus_epi16(_mm256_loadu_si256(block), _mm256_loadu_si256(block + 1)), 0xD8);
    }
    __attribute__((target("avx2"))) static __m256i bytes32(const char* bytes) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
    }

    void markSse2(const Unit* units) {
        marks_ = {};
        for (int shift = 0; shift < BlockUnits; shift += 16) {
            const __m128i bytes = bytes16(units + shift);
            const auto add = [&](std::uint64_t& bits, char mark) {
                const int hits = _mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(mark)));
                bits |= static_cast<std::uint64_t>(hits) << shift;
            };
            add(marks_.less, '<');
            add(marks_.greater, '>');
            add(marks_.equal, '=');
            add(marks_.doubleQuote, '"');
            add(marks_.singleQuote, '\'');
        }
    }

    __attribute__((target("avx2"))) void markAvx2(const Unit* units) {
        const __m256i low = bytes32(units), high = bytes32(units + 32);
        // Each set goes to its place at once: copied as a whole, they would wait for each other.
        marks_.less = bitsOf(low, high, '<');
        marks_.greater = bitsOf(low, high, '>');
        marks_.equal = bitsOf(low, high, '=');
        marks_.doubleQuote = bitsOf(low, high, '"');
        marks_.singleQuote = bitsOf(low, high, '\'');
    }
    __attribute__((target("avx512bw"))) void markAvx512(const Unit* units) {
        marks_.less = bitsOf64(units, '<');
        marks_.greater = bitsOf64(units, '>');
        marks_.equal = bitsOf64(units, '=');
        marks_.doubleQuote = bitsOf64(units, '"');
        marks_.singleQuote = bitsOf64(units, '\'');
    }
    __attribute__((target("avx512bw"))) static std::uint64_t bitsOf64(const char16_t* units,
                                                                      char mark) {
        const __m512i marks = _mm512_set1_epi16(mark);
        const std::uint64_t low = _mm512_cmpeq_epi16_mask(_mm512_loadu_si512(units), marks);
        const std::uint64_t high = _mm512_cmpeq_epi16_mask(_mm512_loadu_si512(units + 32), marks);
        return low | high << 32;
    }
    __attribute__((target("avx512bw"))) static std::uint64_t bitsOf64(const char* bytes,
                                                                      char mark) {
        return _mm512_cmpeq_epi8_mask(_mm512_loadu_si512(bytes), _mm512_set1_epi8(mark));
    }

    __attribute__((target("avx2"))) static std::uint64_t bitsOf(__m256i low, __m256i high,
                                                                char mark) {
        const __m256i marks = _mm256_set1_epi8(mark);
        const auto lowBits =
            static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(low, marks)));
        const auto highBits =
            static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(high, marks)));
        return lowBits | static_cast<std::uint64_t>(highBits) << 32;
    }
#else
    void mark(const Unit* units) {
        marks_ = {};
        for (int i = 0; i < BlockUnits; ++i) {
            const std::uint64_t bit = std::uint64_t{1} << i;
            switch (units[i]) {
                case u'<':
                    marks_.less |= bit;
                    break;
                case u'>':
                    marks_.greater |= bit;
                    break;
                case u'=':
                    marks_.equal |= bit;
                    break;
                case u'"':
                    marks_.doubleQuote |= bit;
                    break;
                case u'\'':
                    marks_.singleQuote |= bit;
                    break;
                default:
                    break;
            }
        }
    }
#endif

    const Unit* const end_;
    const Unit* block_;
    Marks marks_;
};

}  // namespace velmo::detail
