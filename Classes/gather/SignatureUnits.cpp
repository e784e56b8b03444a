// Comparisons fold units through one of several tables, or none. Two units that one of them folds
// to the same must be one in a signature, which does not know the comparison that will be asked
// for. So the classes are what the tables join, taken together: a coarser fold than any of them.
#include "gather/SignatureUnits.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include <velmocore/text/Checksums.h>
#include <velmocore/text/ConversionTables.h>

namespace velmo::detail {
namespace {

struct UnitRange {
    unsigned first, last;
};

// Blocks of Unicode rather than scripts: what is too much here costs a little room and no hit.
// They are part of the format.
constexpr UnitRange UnspacedBlocks[] = {
    {0x0E00, 0x0EFF},  // Thai, Lao
    {0x1000, 0x109F},  // Burmese
    {0x1780, 0x17FF},  // Khmer
    {0x2E80, 0x312F},  // radicals, Kana, Bopomofo
    {0x31A0, 0x31FF},  // Bopomofo, strokes, Kana
    {0x3400, 0x9FFF},  // Han
    {0xA9E0, 0xA9FF},  // Burmese
    {0xAA60, 0xAA7F},  // Burmese
    {0xF900, 0xFAFF},  // Han
    {0xFF66, 0xFF9F},  // Kana of half width
};

/// Sets that grow together; each is named by its least member.
class Classes {
public:
    Classes() : parents_(65536) { std::iota(parents_.begin(), parents_.end(), 0u); }

    unsigned of(unsigned unit) {
        while (parents_[unit] != unit) unit = parents_[unit] = parents_[parents_[unit]];
        return unit;
    }
    void join(unsigned one, unsigned other) {
        const auto [least, most] = std::minmax({of(one), of(other)});
        parents_[most] = least;
    }

private:
    std::vector<unsigned> parents_;
};

Classes joinedByTables() {
    Classes classes;
    for (const ConversionTable* table :
         {&upperCharsTable(), &umlautsCharsTable(), &upperUmlautsCharsTable()})
        for (unsigned unit = 0; unit < 65536; ++unit)
            classes.join(unit, (*table)[static_cast<char16_t>(unit)]);
    return classes;
}

std::unique_ptr<SignatureUnits> makeSignatureUnits() {
    auto units = std::make_unique<SignatureUnits>();
    Classes classes = joinedByTables();
    for (unsigned unit = 0; unit < 65536; ++unit)
        units->classes[unit] = static_cast<char16_t>(classes.of(unit));
    // A class of which one unit belongs to no word belongs to none.
    for (unsigned unit = 0; unit < 65536; ++unit)
        if (!alphaNumCharacterSetRep().contains(static_cast<char16_t>(unit)))
            units->classes[classes.of(unit)] = 0;
    for (unsigned unit = 0; unit < 65536; ++unit)
        units->classes[unit] = units->classes[classes.of(unit)];
    for (const auto [first, last] : UnspacedBlocks)
        for (unsigned unit = first; unit <= last; ++unit) units->unspaced.add(units->classes[unit]);
    units->unspaced.remove(0);
    units->fingerprint = CRC32UniChars({units->classes, 65536});
    return units;
}

}  // namespace

const SignatureUnits& signatureUnits() {
    static const auto& units = *makeSignatureUnits().release();
    return units;
}

}  // namespace velmo::detail
