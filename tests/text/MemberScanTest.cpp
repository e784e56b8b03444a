#include "text/MemberScan.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "text/SmallerMachine.h"

namespace velmo {
namespace {

TEST(MemberScan, AgreesWithOneByOne) {
    std::mt19937 random(3);
    std::u16string units(400, u'\0');
    const unsigned limits[] = {65536, 140, 0x500, 0x2100};
    for (unsigned round = 0; round < 200; ++round) {
        CharacterSetRep set;
        for (std::uint8_t& bits : set.bits) bits = static_cast<std::uint8_t>(random());
        for (char16_t& unit : units) unit = static_cast<char16_t>(random() % limits[round % 4]);
        for (std::size_t count : {std::size_t{64}, std::size_t{63}, std::size_t{1}, std::size_t{0}}) {
            const char16_t* from = units.data() + random() % 300;
            const std::uint64_t expected = detail::membersOneByOne(from, count, set);
            EXPECT_EQ(detail::membersOf(from, count, set), expected) << count;
            const test::WithoutAvx512 smaller;
            EXPECT_EQ(detail::membersOf(from, count, set), expected) << count;
        }
    }
}

}  // namespace
}  // namespace velmo
