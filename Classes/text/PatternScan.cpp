// The kernels of the search by two units: eight or thirty-two starts a step, each with a plain loop
// beside it; and the units that a fold makes equal, from which anchors outside ASCII are made.
//
// Each kernel hands what is left over to the next narrower one, so that none reads behind the last
// start.
#include "text/PatternScan.h"
#include "platform/Machine.h"

#include <algorithm>
#include <bit>
#include <span>
#include <vector>

#include "text/UnitScan.h"

namespace velmo::detail {
namespace {

template <int Variants>
bool matches(char16_t unit, const Anchor& anchor) noexcept {
    bool hit = unit == anchor.variants[0];
    for (int i = 1; i < Variants; ++i) hit |= unit == anchor.variants[i];
    return hit;
}

/// One start after the other: the reference for the others, and what they leave over.
template <int Variants>
std::size_t nextScalar(const char16_t* text, std::size_t start, std::size_t starts,
                       const Anchor& first, const Anchor& second) noexcept {
    for (; start < starts; ++start)
        if (matches<Variants>(text[start + first.offset], first) &&
            matches<Variants>(text[start + second.offset], second))
            return start;
    return starts;
}

#if defined(__SSE2__)

template <int Variants>
struct Needle8 {
    explicit Needle8(const Anchor& anchor) noexcept {
        for (int i = 0; i < Variants; ++i)
            variants[i] = _mm_set1_epi16(static_cast<short>(anchor.variants[i]));
    }
    /// All bits of the units that match are set.
    __m128i hits(const char16_t* units) const noexcept {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
        __m128i result = _mm_cmpeq_epi16(block, variants[0]);
        for (int i = 1; i < Variants; ++i)
            result = _mm_or_si128(result, _mm_cmpeq_epi16(block, variants[i]));
        return result;
    }
    __m128i variants[Variants];
};

/// Eight starts in one step.
template <int Variants>
std::size_t nextSse2(const char16_t* text, std::size_t start, std::size_t starts,
                     const Anchor& first, const Anchor& second) noexcept {
    const Needle8<Variants> a(first), b(second);
    for (; starts - start >= 8; start += 8) {
        const __m128i both = _mm_and_si128(a.hits(text + start + first.offset),
                                           b.hits(text + start + second.offset));
        if (const auto mask = static_cast<unsigned>(_mm_movemask_epi8(both)))
            return start + static_cast<unsigned>(std::countr_zero(mask)) / 2;
    }
    return nextScalar<Variants>(text, start, starts, first, second);
}

/// Thirty-two starts in one step, on machines that have AVX2.
template <int Variants>
__attribute__((target("avx2"))) std::size_t nextAvx2(const char16_t* text, std::size_t start,
                                                     std::size_t starts, const Anchor& first,
                                                     const Anchor& second) noexcept {
    __m256i a[Variants], b[Variants];
    for (int i = 0; i < Variants; ++i) {
        a[i] = _mm256_set1_epi16(static_cast<short>(first.variants[i]));
        b[i] = _mm256_set1_epi16(static_cast<short>(second.variants[i]));
    }
    for (; starts - start >= 32; start += 32) {
        __m256i both[2];
        for (int half = 0; half < 2; ++half) {
            const char16_t* units = text + start + 16 * half;
            const __m256i x =
                _mm256_loadu_si256(reinterpret_cast<const __m256i*>(units + first.offset));
            const __m256i y =
                _mm256_loadu_si256(reinterpret_cast<const __m256i*>(units + second.offset));
            __m256i hitX = _mm256_cmpeq_epi16(x, a[0]), hitY = _mm256_cmpeq_epi16(y, b[0]);
            for (int i = 1; i < Variants; ++i) {
                hitX = _mm256_or_si256(hitX, _mm256_cmpeq_epi16(x, a[i]));
                hitY = _mm256_or_si256(hitY, _mm256_cmpeq_epi16(y, b[i]));
            }
            both[half] = _mm256_and_si256(hitX, hitY);
        }
        // One test for both halves, as most steps find nothing.
        if (_mm256_testz_si256(_mm256_or_si256(both[0], both[1]),
                               _mm256_or_si256(both[0], both[1])))
            continue;
        if (const auto mask = static_cast<unsigned>(_mm256_movemask_epi8(both[0])))
            return start + static_cast<unsigned>(std::countr_zero(mask)) / 2;
        const auto mask = static_cast<unsigned>(_mm256_movemask_epi8(both[1]));
        return start + 16 + static_cast<unsigned>(std::countr_zero(mask)) / 2;
    }
    return nextSse2<Variants>(text, start, starts, first, second);
}

template <int Variants>
std::size_t next(const char16_t* text, std::size_t start, std::size_t starts, const Anchor& first,
                 const Anchor& second) noexcept {
    return machine::hasAvx2() ? nextAvx2<Variants>(text, start, starts, first, second)
                              : nextSse2<Variants>(text, start, starts, first, second);
}

#else

template <int Variants>
std::size_t next(const char16_t* text, std::size_t start, std::size_t starts, const Anchor& first,
                 const Anchor& second) noexcept {
    return nextScalar<Variants>(text, start, starts, first, second);
}

#endif

/// The units that fold to one and the same, for each one that several fold to.
class FoldClasses {
public:
    FoldClasses() {
        const CaseFold fold;
        std::vector<Member> all;
        for (unsigned unit = 0; unit < 65536; ++unit)
            all.push_back({fold(static_cast<char16_t>(unit)), static_cast<char16_t>(unit)});
        std::ranges::stable_sort(all, {}, &Member::key);
        for (auto first = all.begin(); first != all.end();) {
            const auto last = std::ranges::find_if(
                first, all.end(), [&](const Member& member) { return member.key != first->key; });
            if (last - first > 1) members_.insert(members_.end(), first, last);
            first = last;
        }
    }

    std::optional<Anchor> anchor(std::size_t offset, char16_t unit) const {
        const auto first = std::ranges::lower_bound(members_, fold_(unit), {}, &Member::key);
        const auto last = std::ranges::upper_bound(members_, fold_(unit), {}, &Member::key);
        const std::span<const Member> members(first, last);
        // Few units have so many forms; the search then does without an anchor here.
        if (members.size() > 3) return std::nullopt;
        if (members.empty()) return exactAnchor(offset, unit);
        const auto variant = [&](std::size_t i) {
            return members[std::min(i, members.size() - 1)].unit;
        };
        return Anchor{offset, {variant(0), variant(1), variant(2)}};
    }

private:
    struct Member {
        char16_t key, unit;
    };

    const CaseFold fold_;
    std::vector<Member> members_;  // in the order of the keys
};

/// Equal variants fill up those that are missing, so that kernels for more never match too much.
int variantsOf(const Anchor& anchor) noexcept {
    const auto& v = anchor.variants;
    if (v[2] != v[0] && v[2] != v[1]) return 3;
    return v[1] != v[0] ? 2 : 1;
}

}  // namespace

std::size_t nextCandidate(const char16_t* text, std::size_t start, std::size_t starts,
                          const Anchor& first, const Anchor& second) noexcept {
    // The number of variants is a template argument, so that the kernels' inner loops are
    // unrolled.
    switch (std::max(variantsOf(first), variantsOf(second))) {
        case 1:
            return next<1>(text, start, starts, first, second);
        case 2:
            return next<2>(text, start, starts, first, second);
        default:
            return next<3>(text, start, starts, first, second);
    }
}

std::optional<Anchor> anyCaseAnchor(std::size_t offset, char16_t unit) {
    if (unit <= 127) return caseAnchor(offset, unit);
    // Made when the first pattern outside ASCII is sought: it walks the whole plane once.
    static const auto& classes = *new FoldClasses;
    return classes.anchor(offset, unit);
}

}  // namespace velmo::detail
