#include "query/LikelyRuns.h"

#include <bit>

#include "platform/Machine.h"
#include "text/UnitScan.h"

namespace velmo::detail {
namespace {

/// Puts down the places of bits, counted from a base on, and gives behind the last one. More may be
/// written than there are, which costs less than to ask after each.
struct PutPlaces {
    static constexpr std::size_t AStep = 12;

    __attribute__((always_inline)) std::size_t operator()(std::uint64_t bits, std::size_t base,
                                                          std::uint16_t* places) const noexcept {
        const auto count = static_cast<std::size_t>(std::popcount(bits));
        for (std::size_t i = 0; i < count; i += AStep)
            for (std::size_t j = 0; j < AStep; ++j, bits &= bits - 1)
                places[i + j] = static_cast<std::uint16_t>(
                    base | static_cast<unsigned>(std::countr_zero(bits)));
        return count;
    }
};

#if defined(__SSE2__)

/// By byte of bits the places in it; the rest is of no matter.
constexpr auto PlacesInByte = [] {
    std::array<std::uint64_t, 256> places = {};
    for (unsigned byte = 0; byte < 256; ++byte)
        for (unsigned bit = 0, count = 0; bit < 8; ++bit)
            if (byte >> bit & 1) places[byte] |= std::uint64_t{bit} << 8 * count++;
    return places;
}();

/// The same by bytes, with no branch that is hard to foretell.
struct PutPlacesByBytes {
    __attribute__((target("avx2,bmi,bmi2,popcnt"))) std::size_t operator()(
        std::uint64_t bits, std::size_t base, std::uint16_t* places) const noexcept {
        std::size_t count = 0;
        __m128i bases = _mm_set1_epi16(static_cast<short>(base));
        for (unsigned i = 0; i < 8;
             ++i, bits >>= 8, bases = _mm_add_epi16(bases, _mm_set1_epi16(8))) {
            const __m128i set = _mm_cvtepu8_epi16(
                _mm_cvtsi64_si128(static_cast<long long>(PlacesInByte[bits & 0xFF])));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(places + count), _mm_add_epi16(set, bases));
            count += static_cast<std::size_t>(std::popcount(bits & 0xFF));
        }
        return count;
    }
};

/// The same in one step, as no more than half of the units begin or end a run.
class PutPlacesInOneStep {
public:
    __attribute__((target("avx512bw,avx512vbmi2"))) PutPlacesInOneStep() noexcept {
        alignas(64) std::uint8_t bytes[64];
        for (unsigned i = 0; i < 64; ++i) bytes[i] = static_cast<std::uint8_t>(i);
        counted_ = _mm512_load_si512(bytes);
    }
    __attribute__((target("avx512bw,avx512vbmi2,popcnt"))) std::size_t operator()(
        std::uint64_t bits, std::size_t base, std::uint16_t* places) const noexcept {
        const __m256i set =
            _mm512_maskz_extracti64x4_epi64(0xFF, _mm512_maskz_compress_epi8(bits, counted_), 0);
        _mm512_storeu_si512(places, _mm512_add_epi16(_mm512_cvtepu8_epi16(set),
                                                     _mm512_set1_epi16(static_cast<short>(base))));
        return static_cast<std::size_t>(std::popcount(bits));
    }

private:
    __m512i counted_;
};

#endif

}  // namespace

/// What is compiled for several machines.
struct LikelyRuns::Steps {
    LikelyRuns& own;
    const WordText& text;
    const WordTable& table;

    template <class Put>
    __attribute__((always_inline)) void operator()(const Put& put) const {
        own.count_ = 0;
        for (std::size_t slot = 0; slot < own.slots_; ++slot) {
            const std::uint64_t members = own.members_[slot];
            const std::uint64_t begins = members & ~(members << 1 | isMemberBefore(slot));
            own.count_ += put(begins & own.passed_[slot], slot * UnitsInBlock,
                              own.starts_.data() + own.count_);
        }
        judge();
    }

private:
    __attribute__((always_inline)) std::uint64_t isMemberBefore(std::size_t slot) const {
        const std::size_t base = own.bases_[slot];
        return base > 0 && text.termCharacters.contains(text.units[base - 1]);
    }

    /// Without a store that waits for what the run before came to.
    __attribute__((always_inline)) void judge() const {
        const BeginningFilter::View filter = table.filter().view();
        const std::uint8_t* bytes = own.bytes_.data() + RunKey::Units;
        for (std::size_t base = 0; base < own.count_; base += 64) {
            const std::uint16_t* starts = own.starts_.data() + base;
            const std::size_t some = std::min<std::size_t>(own.count_ - base, 64);
            std::uint64_t likely = 0;
            for (std::size_t i = 0; i < some; ++i) {
                const std::uint64_t beginning = RunKey::beginningOf(bytes + starts[i]);
                likely |= static_cast<std::uint64_t>(filter.mayHave(beginning)) << i;
            }
            own.likely_[base / 64] = likely;
        }
    }
};

namespace {

#if defined(__SSE2__)

bool hasBitOperations() noexcept {
    static const bool has = __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2");
    return has;
}

template <class Steps>
__attribute__((target("avx2,bmi,bmi2,popcnt"))) void takeWide(const Steps& steps) {
    steps(PutPlacesByBytes{});
}
template <class Steps>
__attribute__((target("avx512bw,avx512vbmi2,bmi,bmi2,popcnt"))) void takeWidest(
    const Steps& steps) {
    steps(PutPlacesInOneStep());
}

#endif

}  // namespace

void LikelyRuns::judge(const WordText& text, const WordTable& table) {
    putUnitBlocks(text.units, std::span(bases_).first(slots_), text.termCharacters,
                  table.letterCase(), {members_.data(), bytes_.data() + RunKey::Units});
    members_[slots_] = 0;
    std::fill_n(bytes_.data() + RunKey::Units + slots_ * UnitsInBlock, RunKey::Units,
                std::uint8_t{0});
    const Steps steps{*this, text, table};
#if defined(__SSE2__)
    if (machine::hasAvx512()) return takeWidest(steps);
    if (machine::hasAvx2() && hasBitOperations()) return takeWide(steps);
#endif
    steps(PutPlaces{});
}

void LikelyRuns::list(const WordText& text, std::span<const SievedBlock> blocks,
                      const WordTable& table) {
    slots_ = count_ = 0;
    if (blocks.empty()) return;
    // From other places on, what reaches the end of the block is longer than all words.
    const std::uint64_t late = ~std::uint64_t{0}
                               << (63 - std::min<std::size_t>(table.longest(), 63));
    const auto add = [&](std::size_t base, std::uint64_t passed) {
        bases_[slots_] = base;
        passed_[slots_++] = passed;
    };
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        const std::size_t behind = blocks[i].base + UnitsInBlock;
        add(blocks[i].base, blocks[i].places);
        const bool isNext = i + 1 < blocks.size() && blocks[i + 1].base == behind;
        if (blocks[i].places & late && !isNext && behind < text.units.size()) add(behind, 0);
    }
    judge(text, table);
}

}  // namespace velmo::detail
