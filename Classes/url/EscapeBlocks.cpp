// What a hexadecimal digit is worth is looked up for all bytes of a block at once. Moved by one and by
// two places, these are the digits behind each byte: where a % has two of them stands an escape,
// and its value takes the place of the %. The digits are then left out by a compression, so that
// nothing depends on where escapes stand, which no machine foretells.
//
// A block is taken up to the last two bytes, as an escape that begins there may end in the next one.
#include "url/EscapeBlocks.h"

#if defined(__SSE2__)

#include <immintrin.h>

#include <algorithm>
#include <array>
#include <bit>

#include "platform/Machine.h"
#include "url/Grammar.h"

#define VELMO_ESCAPE_BLOCKS __attribute__((target("avx512f,avx512bw,avx512vbmi,avx512vbmi2")))

namespace velmo::detail::escapes {
namespace {

using Mask = std::uint64_t;

constexpr int Block = 64;
constexpr int Resolved = Block - 2;  ///< what stands there is an escape or not

constexpr Mask lowBits(std::size_t count) {
    return count >= 64 ? ~Mask(0) : (Mask(1) << count) - 1;
}

/// Which byte comes to which place when those of a block are moved down.
using Places = std::array<std::uint8_t, Block>;
constexpr Places placesBehind(int by) {
    Places places{};
    for (int i = 0; i < Block; ++i)
        places[static_cast<std::size_t>(i)] =
            static_cast<std::uint8_t>(std::min(i + by, Block - 1));
    return places;
}
constexpr Places ByOne = placesBehind(1), ByTwo = placesBehind(2);

/// The values of digits; those of other units have the highest bit.
constexpr std::array<std::uint8_t, 128> DigitValues = [] {
    std::array<std::uint8_t, 128> values{};
    for (std::size_t unit = 0; unit < values.size(); ++unit)
        values[unit] = static_cast<std::uint8_t>(grammar::HexDigitValues[unit]);
    return values;
}();

VELMO_ESCAPE_BLOCKS inline __m512i each(int byte) noexcept {
    return _mm512_set1_epi8(static_cast<char>(byte));
}

/// Up to 64 units as bytes; what is not there counts as 0. False if a unit is not ASCII.
VELMO_ESCAPE_BLOCKS inline bool take(const char16_t* units, std::size_t count,
                                     __m512i& bytes) noexcept {
    const Mask present = lowBits(count);
    const __m512i low = _mm512_maskz_loadu_epi16(static_cast<__mmask32>(present), units);
    const __m512i high =
        _mm512_maskz_loadu_epi16(static_cast<__mmask32>(present >> 32), units + 32);
    const __m512i shuffled = _mm512_packus_epi16(low, high);
    bytes = _mm512_maskz_permutexvar_epi64(~0, _mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), shuffled);
    return !_mm512_test_epi16_mask(_mm512_or_si512(low, high), _mm512_set1_epi16(~0x7F));
}

/// What there is of escapes in a block: where they stand, and what byte would begin at each place.
struct Escapes {
    Mask places;
    __m512i values;
};

class DigitReader {
public:
    VELMO_ESCAPE_BLOCKS DigitReader() noexcept
        : lowDigits_(_mm512_loadu_si512(DigitValues.data())),
          highDigits_(_mm512_loadu_si512(DigitValues.data() + Block)),
          byOne_(_mm512_loadu_si512(ByOne.data())),
          byTwo_(_mm512_loadu_si512(ByTwo.data())) {}

    VELMO_ESCAPE_BLOCKS Escapes read(__m512i bytes, Mask percents) const noexcept {
        const __m512i digits = _mm512_permutex2var_epi8(lowDigits_, bytes, highDigits_);
        const Mask others = _mm512_movepi8_mask(digits);
        const __m512i first = _mm512_maskz_permutexvar_epi8(~Mask(0), byOne_, digits);
        const __m512i second = _mm512_maskz_permutexvar_epi8(~Mask(0), byTwo_, digits);
        const __m512i upper = _mm512_and_si512(_mm512_slli_epi16(first, 4), each(0xF0));
        return {percents & ~(others >> 1) & ~(others >> 2) & lowBits(Resolved),
                _mm512_or_si512(upper, second)};
    }

private:
    __m512i lowDigits_, highDigits_, byOne_, byTwo_;
};

}  // namespace

bool canDecodeEscapeBlocks() noexcept { return machine::hasAvx512(); }

VELMO_ESCAPE_BLOCKS std::uint8_t* bytesOfAsciiByBlocks(std::u16string_view text,
                                                       std::uint8_t* write) noexcept {
    const DigitReader reader;
    const char16_t* read = text.data();
    const char16_t* const end = read + text.size();
    while (read < end) {
        const auto left = static_cast<std::size_t>(end - read);
        __m512i bytes;
        if (!take(read, left, bytes)) return nullptr;
        const Mask percents = _mm512_cmpeq_epi8_mask(bytes, each('%'));
        if (percents == 0) {
            _mm512_storeu_si512(write, bytes);
            const std::size_t taken = std::min<std::size_t>(left, Block);
            read += taken;
            write += taken;
            continue;
        }
        const Escapes escapes = reader.read(bytes, percents);
        // One that ends in the last two bytes takes them along.
        const Mask digits = escapes.places << 1 | escapes.places << 2;
        const int whole = Resolved + std::popcount(digits >> Resolved);
        const std::size_t taken = std::min<std::size_t>(left, static_cast<unsigned>(whole));
        const Mask kept = ~digits & lowBits(taken);
        const __m512i decoded = _mm512_mask_mov_epi8(bytes, escapes.places, escapes.values);
        _mm512_storeu_si512(write, _mm512_maskz_compress_epi8(kept, decoded));
        read += taken;
        write += std::popcount(kept);
    }
    return write;
}

}  // namespace velmo::detail::escapes

#else

namespace velmo::detail::escapes {

bool canDecodeEscapeBlocks() noexcept { return false; }
std::uint8_t* bytesOfAsciiByBlocks(std::u16string_view, std::uint8_t*) noexcept { return nullptr; }

}  // namespace velmo::detail::escapes

#endif
