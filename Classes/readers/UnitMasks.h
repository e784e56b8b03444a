// Texts in blocks of 64 units, and which of a block are what is looked for, as a mask. Fields are
// short: a search from each to the next pays for a wrong guess of where it ends, and a mask for
// none.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "text/UnitScan.h"

namespace velmo::detail {

inline constexpr std::ptrdiff_t BlockOfMask = 64;

/// The mask of the units that Test finds; Mark does it for eight at once.
template <class Mark, class Test>
std::uint64_t maskWhere(const char16_t* units, [[maybe_unused]] Mark mark,
                        [[maybe_unused]] Test test) {
    std::uint64_t mask = 0;
#if defined(__SSE2__)
    for (unsigned i = 0; i < BlockOfMask; i += 16) {
        const __m128i low = mark(scan::loadBlock(units + i));
        const __m128i high = mark(scan::loadBlock(units + i + scan::BlockUnits));
        const int bits = _mm_movemask_epi8(_mm_packs_epi16(low, high));
        mask |= static_cast<std::uint64_t>(bits) << i;
    }
#else
    for (unsigned i = 0; i < BlockOfMask; ++i)
        mask |= static_cast<std::uint64_t>(test(units[i])) << i;
#endif
    return mask;
}

/// A block whose units are asked for several times. Only units of ASCII but NUL may be.
class AsciiBlock {
public:
#if defined(__SSE2__)
    /// Units outside Latin 1 become bytes that are never asked for.
    explicit AsciiBlock(const char16_t* units) {
        for (unsigned i = 0; i < 4; ++i)
            bytes_[i] = _mm_packus_epi16(scan::loadBlock(units + 16 * i),
                                         scan::loadBlock(units + 16 * i + scan::BlockUnits));
    }
    std::uint64_t maskOf(char unit) const {
        std::uint64_t mask = 0;
        for (unsigned i = 0; i < 4; ++i) {
            const int bits = _mm_movemask_epi8(_mm_cmpeq_epi8(bytes_[i], _mm_set1_epi8(unit)));
            mask |= static_cast<std::uint64_t>(bits) << 16 * i;
        }
        return mask;
    }

private:
    __m128i bytes_[4];
#else
    explicit AsciiBlock(const char16_t* units) : units_(units) {}
    std::uint64_t maskOf(char unit) const {
        std::uint64_t mask = 0;
        for (unsigned i = 0; i < BlockOfMask; ++i)
            mask |= static_cast<std::uint64_t>(units_[i] == static_cast<char16_t>(unit)) << i;
        return mask;
    }

private:
    const char16_t* units_;
#endif
};

/// The last units of a text as a block, with blanks behind them.
struct LastBlock {
    LastBlock(const char16_t* from, const char16_t* to) {
        std::fill(std::copy(from, to, units), units + BlockOfMask, u' ');
    }
    char16_t units[BlockOfMask];
};

/// Finds one place after the other in a text, from the left. MaskOf gives the mask of a block.
template <class MaskOf>
class MaskCursor {
public:
    MaskCursor(const char16_t* to, MaskOf maskOf) : to_(to), maskOf_(maskOf) {}

    /// The first place from the given one on, which must not be before that of the last call; the
    /// end of the text if there is none.
    const char16_t* next(const char16_t* from) {
        while (from < to_) {
            if (from >= blockEnd_) load(from);
            const std::uint64_t mask = mask_ >> (BlockOfMask - (blockEnd_ - from));
            if (mask) return from + std::countr_zero(mask);
            from = blockEnd_;
        }
        return to_;
    }

private:
    void load(const char16_t* from) {
        const bool isWhole = to_ - from >= BlockOfMask;
        mask_ = isWhole ? maskOf_(from) : maskOf_(LastBlock(from, to_).units);
        if (!isWhole) mask_ <<= BlockOfMask - (to_ - from);
        blockEnd_ = isWhole ? from + BlockOfMask : to_;
    }

    const char16_t* const to_;
    MaskOf maskOf_;
    const char16_t* blockEnd_ = nullptr;
    std::uint64_t mask_ = 0;
};

}  // namespace velmo::detail
