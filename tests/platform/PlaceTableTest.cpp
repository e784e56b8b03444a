#include "platform/PlaceTable.h"

#include <unordered_set>

#include "TestSupport.h"
#include "platform/UnitHash.h"

namespace velmo::detail {
namespace {

TEST(PlaceTable, FindsWhatItHas) {
    std::mt19937 random(4);
    for (int round = 0; round < 50; ++round) {
        const bool isPoor = round % 2;  // many have the same hash
        PlaceTable table(static_cast<std::size_t>(round));
        std::vector<unsigned> list;
        for (unsigned i = 0, range = 1 + random() % 1000; i < 1000; ++i) {
            const unsigned value = random() % range;
            const auto isSame = [&](std::size_t place) { return list[place] == value; };
            const auto known = static_cast<std::size_t>(std::ranges::find(list, value) - list.begin());
            ASSERT_EQ(table.findOrAdd(isPoor ? value % 7 : value * 0x9E3779B97F4A7C15, list.size(), isSame), known);
            if (known == list.size()) list.push_back(value);
        }
    }
}

// Each unit counts, and none behind the text; in steps of all lengths.
TEST(UnitHash, LooksAtEachUnitOnce) {
    std::unordered_set<std::uint64_t> hashes;
    std::size_t texts = 0;
    for (std::size_t size = 0; size < 70; ++size)
        for (std::size_t odd = 0; odd <= size; ++odd) {
            std::u16string text(size + 1, u'a');
            text[odd] = u'b';
            hashes.insert(hashOfUnits(View(text).substr(0, size), 7));
            ++texts;
            const std::uint64_t hash = hashOfUnits(View(text).substr(0, size), 7);
            text[size] ^= 1;
            ASSERT_EQ(hashOfUnits(View(text).substr(0, size), 7), hash);
        }
    EXPECT_EQ(hashes.size(), texts);
    EXPECT_NE(hashOfUnits(u"", 7), hashOfUnits(u"", 8));
    EXPECT_EQ(String().hash(), String::empty().hash());
    EXPECT_EQ(String(u"abc").hash(), StringHash()(View(u"abc")));
}

}  // namespace
}  // namespace velmo::detail
