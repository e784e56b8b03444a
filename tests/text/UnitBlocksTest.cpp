#include "text/UnitBlocks.h"

#include <velmocore/text/ConversionTables.h>

#include "TestSupport.h"
#include "text/SmallerMachine.h"

namespace velmo {
namespace {

TEST(UnitBlocks, BytesAreUnitsInUpperCase) {
    for (unsigned unit = 0; unit < 65536; ++unit) {
        const auto own = static_cast<char16_t>(unit), upper = upperCharsTable()[own];
        ASSERT_EQ(detail::byteOfUnit(own, Case::Insensitive), upper < 128 ? upper : detail::OtherByte) << unit;
        ASSERT_EQ(detail::byteOfUnit(own, Case::Sensitive), unit < 128 ? unit : detail::OtherByte) << unit;
    }
}

struct Blocks {
    std::vector<std::uint64_t> members;
    std::vector<std::uint8_t> bytes;
    friend bool operator==(const Blocks&, const Blocks&) = default;
};

TEST(UnitBlocks, AreTheSameManyAtOnce) {
    std::mt19937 random(3);
    const unsigned limits[] = {128, 160, 0x180, 65536};
    for (unsigned round = 0; round < 2000; ++round) {
        std::u16string text(1 + random() % 400, u' ');
        for (char16_t& unit : text) unit = static_cast<char16_t>(random() % limits[random() % 4 & round]);
        CharacterSetRep set = alphaNumCharacterSetRep();
        if (round % 3 == 0) set.add(static_cast<char16_t>(random() % 128));
        std::vector<std::size_t> bases(random() % 4);
        for (std::size_t& base : bases) base = random() % text.size();
        const Case letterCase = round % 2 ? Case::Insensitive : Case::Sensitive;
        const auto blocksBy = [&](auto put) {
            Blocks blocks{std::vector<std::uint64_t>(bases.size()),
                          std::vector<std::uint8_t>(bases.size() * detail::UnitsInBlock)};
            put(text, bases, set, letterCase, detail::UnitBlocks{blocks.members.data(), blocks.bytes.data()});
            return blocks;
        };
        const Blocks expected = blocksBy(detail::putUnitBlocksOneByOne);
        ASSERT_EQ(blocksBy(detail::putUnitBlocks), expected) << utf8(text);
        const test::WithoutAvx512 smaller;
        ASSERT_EQ(blocksBy(detail::putUnitBlocks), expected) << utf8(text);
    }
}

}  // namespace
}  // namespace velmo
