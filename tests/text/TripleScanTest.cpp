#include "text/TripleScan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "platform/Machine.h"
#include "text/UnitScan.h"

namespace velmo {
namespace {

using detail::SieveWay;

/// All places that pass, from a base on, by calls that have room for so many blocks.
std::vector<std::size_t> placesOf(std::u16string_view text, std::size_t base, const detail::TripleSieve& sieve,
                                  unsigned groups, SieveWay way, std::size_t room) {
    std::vector<detail::SievedBlock> found(room);
    std::vector<std::size_t> places;
    for (std::size_t count = room; count == room;) {
        count = nextSieved(text, base, sieve, found, groups, way);
        for (std::size_t block = 0; block < count; ++block) {
            EXPECT_NE(found[block].places, 0u);
            for (std::size_t i = 0; i < 64; ++i)
                if (found[block].places >> i & 1) places.push_back(found[block].base + i);
        }
        if (count > 0) base = found[count - 1].base + 64;
    }
    return places;
}

TEST(TripleScan, WaysAgreeAndLetWordsPass) {
    std::mt19937 random(5);
    const unsigned limits[] = {128, 256, 65536, 'f'};
    for (unsigned round = 0; round < 400; ++round) {
        const auto randomUnit = [&] { return static_cast<char16_t>(random() % limits[round % 4]); };
        detail::TripleSieve sieve;
        std::u16string text(random() % 400, u' ');
        for (char16_t& unit : text) unit = randomUnit();
        std::vector<std::u16string> words(random() % 12);
        for (std::size_t i = 0; i < words.size(); ++i) {
            // Some stand in the text, and one at its very end.
            for (std::size_t length = 1 + random() % 6; length > 0; --length) words[i] += randomUnit();
            if (text.size() > 5 && i % 2) words[i] = text.substr(random() % (text.size() - 5), 5);
            if (text.size() > 3 && i == 4) words[i] = text.substr(text.size() - 1 - random() % 3);
            const auto group = static_cast<unsigned>(i % detail::TripleSieve::Groups);
            for (unsigned place = 0; place < detail::TripleSieve::Places; ++place) {
                if (place + 1 >= words[i].size()) sieve.addAll(group, place);
                if (place + 1 < words[i].size())
                    sieve.add(group, place, detail::TripleSieve::bitsOf(words[i][place]),
                              detail::TripleSieve::bitsOf(words[i][place + 1]));
            }
        }
        const std::size_t base = text.empty() ? 0 : random() % text.size(), room = 1 + random() % 5;
        const unsigned groups = round % 2 ? random() % 256 : detail::TripleSieve::AllGroups;
        const auto byPairs = placesOf(text, base, sieve, groups, SieveWay::OneByOne, room);
        const auto byHalves = placesOf(text, base, sieve, groups, SieveWay::HalvesOneByOne, room);
        for (std::size_t i = 0; i < words.size(); ++i) {
            const std::u16string& word = words[i];
            if (!(groups >> i % detail::TripleSieve::Groups & 1)) continue;
            for (std::size_t at = text.find(word, base); at != text.npos; at = text.find(word, at + 1))
                for (const auto* places : {&byPairs, &byHalves})
                    EXPECT_TRUE(std::ranges::binary_search(*places, at)) << at;
        }
        if (groups == 0) { EXPECT_TRUE(byPairs.empty() && byHalves.empty()); }
#if defined(__SSE2__)
        if (detail::machine::hasAvx2()) {
            EXPECT_EQ(placesOf(text, base, sieve, groups, SieveWay::Halves, room), byHalves);
        }
        if (detail::machine::hasAvx512()) {
            EXPECT_EQ(placesOf(text, base, sieve, groups, SieveWay::Pairs, room), byPairs);
        }
#endif
    }
}

}  // namespace
}  // namespace velmo
