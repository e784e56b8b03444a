#include <velmocore/text/Arrays.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(Arrays, JoinsByEqualityAndByIdentity) {
    const String a = u"a", b = u"b", c = u"c", otherA = u"a";
    const Strings left{a, b, a, c}, right{otherA, c};
    const auto changed = [&](auto operation) {
        Strings array = left;
        operation(array, right);
        return array;
    };
    EXPECT_EQ(changed(joinWithObjectsFromArray<String>), (Strings{a, a, c}));
    EXPECT_EQ(changed(joinWithIdenticalObjectsFromArray<String>), (Strings{c}));
    EXPECT_EQ(changed(removeObjectsFromArray<String>), (Strings{b}));
    EXPECT_EQ(changed(removeIdenticalObjectsFromArray<String>), (Strings{a, b, a}));
    EXPECT_TRUE(containsObjectIdenticalTo(left, a) && !containsObjectIdenticalTo(left, otherA));

    Strings array{a};
    unionWithObjects(array, {otherA, b, b, String(), c});
    EXPECT_EQ(array, (Strings{a, b}));
    unionWithIdenticalObjects(array, {a, otherA, otherA});
    EXPECT_EQ(array, (Strings{a, b, a}));
    appendObjects(array, {c, String(), c});
    addObjects(array, std::span<const String>(right));
    EXPECT_EQ(array, (Strings{a, b, a, c, a, c}));
    appendFormat(array, u"%d of %@", {3, u"x"});
    appendFormat(array, u"");
    EXPECT_EQ(array.back(), u"3 of x");
    Strings twice = right;
    addObjects(twice, twice);
    unionWithObjects(twice, left);
    unionWithIdenticalObjects(twice, twice);
    EXPECT_EQ(twice, (Strings{a, c, a, c, b}));
    EXPECT_EQ(setCount(array, 100), 7u);
    EXPECT_EQ(setCount(array, 2), 2u);
    EXPECT_EQ(subarrayWithoutObjectAtIndex(array, 0), (Strings{b}));
    EXPECT_EQ(subarrayWithoutObjectAtIndex(array, 2), array);
}

TEST(Arrays, SearchAndSortByAComparison) {
    const auto compare = [](int a, int b) { return a - b; };
    std::vector<int> array{9, 3, 7, 1, 5};
    quickSortUsingFunction(array, {1, 3}, compare);
    EXPECT_EQ(array, (std::vector<int>{9, 1, 3, 7, 5}));
    quickSortUsingFunction(array, {4, 2}, compare);
    quickSortUsingFunction(array, {NotFound, 2}, compare);
    EXPECT_EQ(array, (std::vector<int>{9, 1, 3, 7, 5}));
    quickSortUsingFunction(array, compare);
    EXPECT_EQ(array, (std::vector<int>{1, 3, 5, 7, 9}));
    EXPECT_EQ(indexOfObject(array, 7, compare), 3u);
    EXPECT_EQ(indexOfObject(array, 4, compare), 2u);
    EXPECT_EQ(indexOfObject(array, 10, compare), 5u);
    EXPECT_EQ(indexOfObject(array, Range{3, 100}, 1, compare), 3u);
    std::vector<int> many, sorted;
    for (int i = 0; i < 1000; ++i) many.push_back(i * 7919 % 1000), sorted.push_back(i);
    quickSortUsingFunction(many, compare);
    EXPECT_EQ(many, sorted);
    int sum = 0;
    applyFunction(array, {3, 100}, [&](int n) { sum += n; });
    applyFunction(array, {100, 1}, [&](int n) { sum += n; });
    EXPECT_EQ(sum, 16);
}

TEST(Arrays, MovesElements) {
    const std::tuple<std::size_t, std::size_t, bool, View> cases[] = {
        {0, 2, true, u"bac"}, {2, 0, true, u"cab"},  {0, 1, true, u"abc"},  {1, 0, true, u"bac"},
        {1, 1, true, u"abc"}, {0, 3, false, u"abc"}, {3, 0, false, u"abc"}, {9, 9, true, u"abc"}};
    for (const auto& [from, to, result, expected] : cases) {
        std::vector<char16_t> array{u'a', u'b', u'c'};
        EXPECT_EQ(moveObjectAtIndex(array, from, to), result);
        EXPECT_EQ(View(array.data(), 3), expected) << from << ' ' << to;
    }
}

TEST(Arrays, MinimumCoverOfPaths) {
    const String same = u"/x";
    const std::pair<Strings, Strings> cases[] = {{{u"/a/b", u"/a", u"/c"}, {u"/a", u"/c"}},
                                                 {{u"/a/b/c", u"/a/b", u"/ab"}, {u"/a/b", u"/ab"}},
                                                 {{u"/a", u"/a"}, {u"/a"}},
                                                 {{same, same}, {same, same}},  // the very same string lies in none
                                                 {{u"/a/x", u"/a b", u"/a"}, {u"/a", u"/a b", u"/a/x"}},
                                                 {{u"/b"}, {u"/b"}}};
    for (const auto& [given, expected] : cases) {
        Strings paths = given;
        minimumCoverOfPaths(paths);
        EXPECT_EQ(paths, expected) << given[0];
    }
}

}  // namespace
}  // namespace velmo
