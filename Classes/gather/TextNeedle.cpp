// The letters of ASCII whose only other form is their other case differ from it in one bit. So with
// that bit set in both, a text is compared many bytes at a time, in plain loops that compilers turn
// into such of vectors.
#include "gather/TextNeedle.h"

#include <algorithm>
#include <bitset>

#include "platform/Ascii.h"
#include "text/PatternScan.h"

namespace velmo::detail {
namespace {

constexpr char CaseBit = 0x20;
constexpr std::size_t Shortest = 2;
/// So that what is compared at each place stays little.
constexpr std::size_t Longest = 16;
constexpr std::size_t BlockSize = 64;

/// The longest run of units that can be told.
std::string longestRun(std::u16string_view units, const TellableUnits& tellable) {
    std::string longest, run;
    for (const char16_t unit : units) {
        if (unit < 128 && tellable[unit])
            run += static_cast<char>(unit | CaseBit);
        else
            run.clear();
        if (run.size() > longest.size()) longest = run;
        if (longest.size() == Longest) break;
    }
    return longest;
}

}  // namespace

TellableUnits tellableUnits(WildcardComparison comparison) {
    const ConversionTable* table = unicharTableForWildcardComparison(comparison);
    const auto folded = [&](unsigned unit) {
        const auto own = static_cast<char16_t>(unit);
        return table ? (*table)[own] : own;
    };
    std::bitset<65536> hasOthers;
    for (unsigned unit = 128; unit < 65536; ++unit) hasOthers.set(folded(unit));
    TellableUnits tellable = {};
    for (unsigned unit = 0; unit < 128; ++unit)
        tellable[unit] = ascii::isLetterOrDigit(unit) && !hasOthers[folded(unit)];
    return tellable;
}

std::optional<TextNeedle> TextNeedle::ofStretch(std::u16string_view units,
                                                const TellableUnits& tellable) {
    std::string bytes = longestRun(units, tellable);
    if (bytes.size() < Shortest) return std::nullopt;
    return TextNeedle(std::move(bytes));
}

TextNeedle::TextNeedle(std::string bytes) : bytes_(std::move(bytes)), second_(1) {
    const auto rarity = [&](std::size_t place) {
        return rarityOf(static_cast<unsigned char>(bytes_[place]));
    };
    if (rarity(second_) > rarity(first_)) std::swap(first_, second_);
    for (std::size_t i = 2; i < bytes_.size(); ++i) {
        if (rarity(i) <= rarity(second_)) continue;
        second_ = i;
        if (rarity(second_) > rarity(first_)) std::swap(first_, second_);
    }
}

bool TextNeedle::mayStandIn(std::string_view utf8) const {
    if (utf8.size() < bytes_.size()) return false;
    const std::size_t starts = utf8.size() - bytes_.size() + 1;
    const char *first = utf8.data() + first_, *second = utf8.data() + second_;
    const char one = bytes_[first_], other = bytes_[second_];
    const auto isCandidate = [&](std::size_t i) {
        return ((first[i] | CaseBit) == one) & ((second[i] | CaseBit) == other);
    };
    const auto standsAt = [&](std::size_t start) {
        return std::ranges::equal(bytes_, utf8.substr(start, bytes_.size()), {}, {},
                                  [](char byte) { return static_cast<char>(byte | CaseBit); });
    };
    for (std::size_t base = 0; base < starts; base += BlockSize) {
        const std::size_t count = std::min(BlockSize, starts - base);
        unsigned char any = count < BlockSize;
        if (!any)
            for (std::size_t i = 0; i < BlockSize; ++i)
                any = static_cast<unsigned char>(any | isCandidate(base + i));
        if (!any) continue;
        for (std::size_t i = base; i < base + count; ++i)
            if (isCandidate(i) && standsAt(i)) return true;
    }
    return false;
}

}  // namespace velmo::detail
