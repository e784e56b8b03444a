#include "url/ParameterNames.h"

#include <set>

#include "TestSupport.h"

namespace velmo::detail {
namespace {

using Found = std::multiset<std::size_t>;

/// The numbers of all names that match one, as a loop over them finds them.
Found matchesOneByOne(const std::vector<std::pair<std::u16string, bool>>& names, std::u16string name) {
    for (char16_t& unit : name) unit = ascii::toLower(unit);
    Found found;
    for (std::size_t i = 0; i < names.size(); ++i)
        if (names[i].second ? name.starts_with(names[i].first) : name == names[i].first) found.insert(i);
    return found;
}

TEST(ParameterNames, AreThoseOfALoop) {
    std::mt19937 random(8);
    for (int round = 0; round < 60; ++round) {
        ParameterNames table;
        std::vector<std::pair<std::u16string, bool>> names;
        const View alphabet = round % 2 ? View(u"ab") : View(u"ab_\u00E4\u0100\0", 6);
        for (unsigned n = random() % 300; n > 0; --n) {
            // Many short ones, which are asked for, and some as long as they may be.
            const std::size_t length = 1 + random() % (random() % 8 ? 5 : ParameterNames::Longest);
            const std::pair<std::u16string, bool> name{test::randomText(random, alphabet, length), random() % 4 == 0};
            const auto known = std::ranges::find(names, name);
            ASSERT_EQ(table.add(name.first, name.second), static_cast<std::size_t>(known - names.begin()));
            if (known == names.end()) names.push_back(name);
        }
        for (unsigned n = 0; n < 300; ++n) {
            std::u16string asked = names.empty() || random() % 2 ? test::randomText(random, alphabet, random() % 7)
                                                                 : names[random() % names.size()].first;
            for (char16_t& unit : asked)
                if (random() % 3 == 0) unit = ascii::toUpper(unit);
            if (random() % 4 == 0) asked += test::randomText(random, u"Ab", random() % 80);
            Found found;
            EXPECT_FALSE(table.any(asked, [&](std::size_t number) { return found.insert(number), false; }));
            ASSERT_EQ(found, matchesOneByOne(names, asked)) << utf8(asked);
            EXPECT_EQ(table.any(asked, [](std::size_t) { return true; }), !found.empty());
        }
    }
}

}  // namespace
}  // namespace velmo::detail
