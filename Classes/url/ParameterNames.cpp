#include "url/ParameterNames.h"

#include <cstring>

#include "text/UnitScan.h"

namespace velmo::detail {
namespace {

using Units = std::u16string_view;

/// Four units with the bit set in which letters of both cases differ. Other units that become alike
/// only share a slot.
std::uint64_t fourUnits(const char16_t* units) noexcept {
    std::uint64_t word;
    std::memcpy(&word, units, sizeof word);
    return word | 0x0020'0020'0020'0020;
}

/// The same of up to three, of which none is left out.
std::uint64_t fewUnits(std::u16string_view units) noexcept {
    const char16_t all[] = {units.front(), units[units.size() / 2], units.back(), u'\0'};
    return fourUnits(all);
}

#if defined(__SSE2__)

/// Whether four units are the given ones but for their case in ASCII.
bool areFour(const char16_t* units, const char16_t* lower) noexcept {
    const auto load = [](const char16_t* from) {
        return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from));
    };
    const __m128i found = load(units);
    const __m128i bit = _mm_and_si128(scan::inRange(found, u'A', u'Z'), _mm_set1_epi16(0x20));
    return _mm_movemask_epi8(_mm_cmpeq_epi16(_mm_or_si128(found, bit), load(lower))) == 0xFFFF;
}

#endif

/// Whether a text is a name but for its case in ASCII; both have the same length.
bool isName(Units name, const char16_t* lower) noexcept {
    std::size_t i = 0;
#if defined(__SSE2__)
    constexpr std::size_t Step = 4;
    if (name.size() >= Step) {
        for (; i + Step < name.size(); i += Step)
            if (!areFour(name.data() + i, lower + i)) return false;
        i = name.size() - Step;
        return areFour(name.data() + i, lower + i);
    }
#endif
    for (; i < name.size(); ++i)
        if (ascii::toLower(name[i]) != lower[i]) return false;
    return true;
}

}  // namespace

std::uint64_t ParameterNames::hashOf(Units name) const noexcept {
    constexpr std::uint64_t Odd = 0x9E3779B97F4A7C15;
    const std::uint64_t size = seed_ ^ Odd * name.size();
    if (name.size() < 4) return mixedHash(fewUnits(name) ^ size, Odd);
    const char16_t* units = name.data();
    const char16_t* const end = units + name.size();
    std::uint64_t hash = seed_;
    for (; end - units > 8; units += 8)
        hash = mixedHash(hash ^ fourUnits(units), fourUnits(units + 4) ^ size);
    // What is left is one to eight units; of a longer name some of those before are taken again.
    const char16_t* const first = name.size() < 8 ? units : end - 8;
    return mixedHash(hash ^ fourUnits(first), fourUnits(end - 4) ^ size);
}

std::size_t ParameterNames::find(Units name, bool isBeginning) const noexcept {
    const std::uint64_t hash = hashOf(name);
    for (std::size_t i = hash;; ++i) {
        const Slot& slot = slots_[i & (slots_.size() - 1)];
        if (slot.name == 0) return NotThere;
        if (slot.hash != static_cast<std::uint32_t>(hash >> 32)) continue;
        const Name& known = names_[slot.name - 1];
        if (known.isBeginning == isBeginning && known.text.size() == name.size() &&
            isName(name, known.text.data()))
            return slot.name - 1;
    }
}

std::size_t ParameterNames::add(Units name, bool isBeginning) {
    const std::size_t known = find(name, isBeginning);
    if (known != NotThere) return known;
    names_.push_back({std::u16string(name), isBeginning, hashOf(name)});
    if (4 * names_.size() > slots_.size())
        growTo(2 * slots_.size());
    else
        place(names_.size() - 1);
    lengthsOfEnds_[slotOfEnds(name, isBeginning)] |= bitOf(name.size());
    if (isBeginning) lengths_[slotOfFirst(name)] |= bitOf(name.size());
    return names_.size() - 1;
}

void ParameterNames::place(std::size_t number) {
    std::size_t i = names_[number].hash;
    while (slots_[i & (slots_.size() - 1)].name) ++i;
    slots_[i & (slots_.size() - 1)] = {static_cast<std::uint32_t>(names_[number].hash >> 32),
                                       static_cast<std::uint32_t>(number + 1)};
}

void ParameterNames::growTo(std::size_t slots) {
    slots_.assign(slots, Slot());
    for (std::size_t number = 0; number < names_.size(); ++number) place(number);
}

}  // namespace velmo::detail
