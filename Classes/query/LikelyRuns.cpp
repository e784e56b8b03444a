#include "query/LikelyRuns.h"

#include <bit>

#include "text/UnitScan.h"
#include "text/WideUnits.h"

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
    __attribute__((always_inline)) void ofSieved(const Put& put) const {
        std::size_t starts = 0;
        for (std::size_t slot = 0; slot < own.slots_; ++slot) {
            const std::uint64_t members = own.members_[slot];
            const std::uint64_t begins = members & ~(members << 1 | isMemberBefore(slot));
            starts +=
                put(begins & own.passed_[slot], slot * UnitsInBlock, own.starts_.data() + starts);
        }
        for (std::size_t i = 0; i < starts; ++i) own.ends_[i] = endOf(own.starts_[i]);
        judge(starts, 0);
    }

    /// All runs but those that begin in the last slot, which is the block behind.
    template <class Put>
    __attribute__((always_inline)) void ofAll(const Put& put) const {
        const std::size_t last = own.slots_ - 1;
        std::size_t starts = 0, ends = 0;
        std::uint64_t before = isMemberBefore(0);
        // The first end is that of a run that has begun before.
        const std::size_t foreign = before & own.members_[0];
        for (std::size_t slot = 0; slot < last; ++slot) {
            const std::uint64_t members = own.members_[slot], next = own.members_[slot + 1];
            starts += put(members & ~(members << 1 | before), slot * UnitsInBlock,
                          own.starts_.data() + starts);
            ends += put(members & ~(members >> 1 | next << 63), slot * UnitsInBlock + 1,
                        own.ends_.data() + ends);
            before = members >> 63;
        }
        own.ends_[ends] = endOf(static_cast<std::uint16_t>(last * UnitsInBlock));
        judge(starts, foreign);
    }

private:
    __attribute__((always_inline)) std::uint64_t isMemberBefore(std::size_t slot) const {
        const std::size_t base = own.bases_[slot];
        return base > 0 && text.termCharacters.contains(text.units[base - 1]);
    }

    /// Behind the members in a row from a place on, but not behind the next slot.
    __attribute__((always_inline)) std::uint16_t endOf(std::uint16_t place) const {
        const std::uint64_t* slot = own.members_.data() + place / UnitsInBlock;
        const unsigned start = place % UnitsInBlock;
        const std::uint64_t members = slot[0] >> start | slot[1] << 1 << (63 - start);
        constexpr std::uint64_t Limit = std::uint64_t{1} << 63;
        return static_cast<std::uint16_t>(
            place + static_cast<unsigned>(std::countr_zero(~members | Limit)));
    }

    /// Without a store that waits for what the run before came to.
    __attribute__((always_inline)) void judge(std::size_t count, std::size_t firstEnd) const {
        own.count_ = count;
        own.firstEnd_ = firstEnd;
        const KeyFilter::View filter = table.filter().view();
        const std::uint8_t* bytes = own.bytes_.data() + RunKey::Units;
        for (std::size_t base = 0; base < count; base += 64) {
            const std::uint16_t *starts = own.starts_.data() + base,
                                *ends = own.ends_.data() + firstEnd + base;
            const std::size_t some = std::min<std::size_t>(count - base, 64);
            std::uint64_t likely = 0;
            for (std::size_t i = 0; i < some; ++i) {
                const std::size_t length =
                    std::min<std::size_t>(ends[i] - starts[i], RunKey::Longest);
                const RunKey key = RunKey::of(bytes + starts[i], length);
                likely |= static_cast<std::uint64_t>(filter.mayHave(key)) << i;
            }
            own.likely_[base / 64] = likely;
        }
    }
};

namespace {

template <class Steps, class Put>
__attribute__((always_inline)) inline void take(const Steps& steps, bool isSieved, const Put& put) {
    isSieved ? steps.ofSieved(put) : steps.ofAll(put);
}

#if defined(__SSE2__)

template <class Steps>
__attribute__((target("avx2,bmi,bmi2,popcnt"))) void takeWide(const Steps& steps, bool isSieved) {
    take(steps, isSieved, PutPlaces{});
}
template <class Steps>
__attribute__((target("avx512bw,avx512vbmi2,bmi,bmi2,popcnt"))) void takeWidest(const Steps& steps,
                                                                                bool isSieved) {
    take(steps, isSieved, PutPlacesInOneStep());
}

#endif

}  // namespace

void LikelyRuns::judge(const WordText& text, const WordTable& table, bool isSieved) {
    putUnitBlocks(text.units, std::span(bases_).first(slots_), text.termCharacters,
                  table.letterCase(), {members_.data(), bytes_.data() + RunKey::Units});
    members_[slots_] = 0;
    const Steps steps{*this, text, table};
#if defined(__SSE2__)
    if (scan::hasAvx512()) return takeWidest(steps, isSieved);
    if (scan::hasAvx2()) return takeWide(steps, isSieved);
#endif
    take(steps, isSieved, PutPlaces{});
}

void LikelyRuns::list(const WordText& text, std::span<const SievedBlock> blocks,
                      const WordTable& table) {
    slots_ = count_ = 0;
    if (blocks.empty()) return;
    const auto add = [&](std::size_t base, std::uint64_t passed) {
        bases_[slots_] = base;
        passed_[slots_++] = passed;
    };
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        const std::size_t behind = blocks[i].base + UnitsInBlock;
        add(blocks[i].base, blocks[i].places);
        const bool isNext = i + 1 < blocks.size() && blocks[i + 1].base == behind;
        if (!isNext && behind < text.units.size()) add(behind, 0);
    }
    judge(text, table, true);
}

void LikelyRuns::list(const WordText& text, Range range, const WordTable& table) {
    const std::size_t end = std::min<std::size_t>(range.end(), text.units.size());
    slots_ = 0;
    for (std::size_t base = range.location; base < end; base += UnitsInBlock)
        bases_[slots_++] = base;
    bases_[slots_++] = std::min(range.end(), text.units.size());
    judge(text, table, false);
}

}  // namespace velmo::detail
