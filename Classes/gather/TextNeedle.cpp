// The letters of ASCII whose only other form is their other case differ from it in one bit. So with
// that bit set in both, a text is compared many bytes at a time, in plain loops that compilers turn
// into such of vectors. Three letters have a third form, outside of ASCII, which hardly any text has:
// that is looked for where they were not found.
#include "gather/TextNeedle.h"

#include <algorithm>
#include <bitset>

#include "platform/Ascii.h"
#include "text/PatternScan.h"

namespace velmo::detail {
namespace {

constexpr std::uint8_t CaseBit = 0x20;
constexpr unsigned DotlessI = 0x131, LongS = 0x17F, KelvinSign = 0x212A;
constexpr std::size_t Shortest = 2;
/// So that what is compared at each place stays little.
constexpr std::size_t Longest = 16;
constexpr std::size_t BlockSize = 256;

/// Enough to be rare; what would be longer, but has to be looked for twice, is not better.
constexpr std::size_t Enough = 4;

/// The longest run of units that can be told so far.
std::u16string_view longestRun(std::u16string_view units, const TellableUnits& tellable,
                               Tellable least) {
    std::size_t start = 0;
    std::u16string_view longest;
    for (std::size_t i = 0; i < units.size(); ++i) {
        if (units[i] >= 128 || tellable[units[i]] < least) start = i + 1;
        if (i + 1 - start > longest.size()) longest = units.substr(start, i + 1 - start);
    }
    return longest.substr(0, Longest);
}

/// Whether difference(i) may be 0 for an i below the count, which is that of a whole block.
template <class Difference>
bool anyIsZero(std::size_t count, Difference difference) {
    std::uint8_t least = 0xFF;
    for (std::size_t i = 0; i < count; ++i) least = std::min(least, difference(i));
    return least == 0;
}

TellableUnits makeTellableUnits(WildcardComparison comparison) {
    const ConversionTable* table = unicharTableForWildcardComparison(comparison);
    const auto folded = [&](unsigned unit) {
        const auto own = static_cast<char16_t>(unit);
        return table ? (*table)[own] : own;
    };
    std::bitset<65536> hasOthers;
    for (unsigned unit = 128; unit < 65536; ++unit)
        if (unit != DotlessI && unit != LongS && unit != KelvinSign) hasOthers.set(folded(unit));
    std::bitset<65536> hasKnown;
    for (const unsigned unit : {DotlessI, LongS, KelvinSign}) hasKnown.set(folded(unit));
    TellableUnits tellable = {};
    for (unsigned unit = 0; unit < 128; ++unit)
        if (ascii::isLetterOrDigit(unit) && !hasOthers[folded(unit)])
            tellable[unit] = hasKnown[folded(unit)] ? Tellable::IfNoOthers : Tellable::Always;
    return tellable;
}

}  // namespace

const TellableUnits& tellableUnits(WildcardComparison comparison) {
    using enum WildcardComparison;
    static const std::array<TellableUnits, 4> made = {
        makeTellableUnits(Exact), makeTellableUnits(CaseInsensitive),
        makeTellableUnits(DiacriticsInsensitive), makeTellableUnits(Insensitive)};
    return made[static_cast<std::size_t>(comparison & Insensitive)];
}

bool hasOtherCases(std::string_view utf8) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(utf8.data());
    // U+0131 and U+017F are C4 B1 and C5 BF; U+212A is E2 84 AA.
    const auto difference = [&](std::size_t i) {
        const std::uint8_t a = bytes[i], b = bytes[i + 1], c = bytes[i + 2];
        const auto dotlessI = static_cast<std::uint8_t>((a ^ 0xC4) | (b ^ 0xB1));
        const auto longS = static_cast<std::uint8_t>((a ^ 0xC5) | (b ^ 0xBF));
        const auto kelvin = static_cast<std::uint8_t>((a ^ 0xE2) | (b ^ 0x84) | (c ^ 0xAA));
        return std::min(std::min(dotlessI, longS), kelvin);
    };
    std::size_t base = 0;
    for (; base + BlockSize + 2 <= utf8.size(); base += BlockSize)
        if (anyIsZero(BlockSize, [&](std::size_t i) { return difference(base + i); })) return true;
    const std::string_view rest = utf8.substr(base);
    return rest.find("\xC4\xB1") != rest.npos || rest.find("\xC5\xBF") != rest.npos ||
           rest.find("\xE2\x84\xAA") != rest.npos;
}

std::optional<TextNeedle> TextNeedle::ofStretch(std::u16string_view units,
                                                const TellableUnits& tellable) {
    std::u16string_view run = longestRun(units, tellable, Tellable::Always);
    if (run.size() < Enough) run = longestRun(units, tellable, Tellable::IfNoOthers);
    if (run.size() < Shortest) return std::nullopt;
    std::string bytes;
    for (const char16_t unit : run) bytes += static_cast<char>(unit | CaseBit);
    return TextNeedle(std::move(bytes), std::ranges::any_of(run, [&](char16_t unit) {
                          return tellable[unit] == Tellable::IfNoOthers;
                      }));
}

TextNeedle::TextNeedle(std::string bytes, bool needsNoOthers)
    : bytes_(std::move(bytes)), needsNoOthers_(needsNoOthers), second_(1) {
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
    const auto* text = reinterpret_cast<const std::uint8_t*>(utf8.data());
    const std::uint8_t *first = text + first_, *second = text + second_;
    const auto one = static_cast<std::uint8_t>(bytes_[first_]);
    const auto other = static_cast<std::uint8_t>(bytes_[second_]);
    const auto difference = [&](std::size_t i) {
        return static_cast<std::uint8_t>(((first[i] | CaseBit) ^ one) |
                                         ((second[i] | CaseBit) ^ other));
    };
    const auto standsAt = [&](std::size_t start) {
        return std::ranges::equal(bytes_, utf8.substr(start, bytes_.size()), {}, {},
                                  [](char byte) { return static_cast<char>(byte | CaseBit); });
    };
    for (std::size_t base = 0; base < starts; base += BlockSize) {
        const std::size_t end = std::min(base + BlockSize, starts);
        const bool isWhole = end - base == BlockSize;
        if (isWhole && !anyIsZero(BlockSize, [&](std::size_t i) { return difference(base + i); }))
            continue;
        for (std::size_t i = base; i < end; ++i)
            if (difference(i) == 0 && standsAt(i)) return true;
    }
    return false;
}

}  // namespace velmo::detail
