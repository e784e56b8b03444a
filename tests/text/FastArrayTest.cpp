#include <velmocore/text/FastArray.h>

#include <numeric>

#include "TestSupport.h"

namespace velmo {
namespace {

using Numbers = FastArray<const int>;

std::vector<int> valuesOf(const Numbers& array) {
    std::vector<int> values;
    for (const int* number : array) values.push_back(*number);
    return values;
}
int compare(int a, int b) { return (a > b) - (a < b); }

struct FastArrays : testing::Test {
    void SetUp() override { std::iota(numbers.begin(), numbers.end(), 0); }
    Numbers arrayOf(std::initializer_list<int> values) const {
        Numbers array;
        for (const int value : values) array.addObject(&numbers[static_cast<std::size_t>(value)]);
        return array;
    }
    const int* at(std::size_t value) const { return &numbers[value]; }
    std::vector<int> numbers = std::vector<int>(5000);
};

TEST_F(FastArrays, GrowsByDoublesAndThenBySteps) {
    Numbers array;
    std::vector<std::size_t> capacities{array.capacity()};
    for (const int& number : numbers) {
        array.addObject(&number);
        if (array.capacity() != capacities.back()) capacities.push_back(array.capacity());
    }
    EXPECT_EQ(capacities, (std::vector<std::size_t>{16, 32, 64, 128, 256, 512, 1024, 2048, 3072, 4096, 5120}));
    EXPECT_EQ(valuesOf(array), numbers);
    EXPECT_EQ(array.setCount(10000), 5000u);
    EXPECT_EQ(array.setCount(3), 3u);
    EXPECT_EQ(array.capacity(), 5120u);
    EXPECT_EQ(Numbers::arrayWithCapacity(3).capacity(), 16u);
    EXPECT_EQ(Numbers::arrayWithCapacity(100, 1).capacity(), 100u);
    Numbers exact;
    exact.addObjectsFromArray(std::vector<const int*>(20, at(1)));
    EXPECT_EQ(exact.capacity(), 20u);
}

TEST_F(FastArrays, TellsEqualFromIdentical) {
    const Numbers array = arrayOf({4, 5, 4});
    const int four = 4, six = 6;
    EXPECT_TRUE(array.containsObject(&four) && array.containsObjectIdenticalTo(at(4)));
    EXPECT_FALSE(array.containsObjectIdenticalTo(&four) || array.containsObject(&six));
    EXPECT_EQ(array.indexOfObject(&four), 0u);
    EXPECT_EQ(array.indexOfObjectIdenticalTo(&four), NotFound);
}

TEST_F(FastArrays, IgnoresNullAndWrongIndexes) {
    Numbers array = arrayOf({4, 5, 6});
    array.addObject(nullptr);
    array.insertObject(nullptr, 0);
    array.replaceObjectAtIndex(0, nullptr);
    array.replaceObjectAtIndex(3, at(9));
    array.removeObjectAtIndex(3);
    array.addObjects({at(7), nullptr, at(8)});
    EXPECT_EQ(valuesOf(array), (std::vector<int>{4, 5, 6, 7}));
    EXPECT_EQ(array.objectAtIndex(4), nullptr);
    EXPECT_EQ(array.indexOfObject(nullptr), NotFound);
    EXPECT_EQ(Numbers().firstObject(), nullptr);
    EXPECT_EQ(Numbers().lastObject(), nullptr);
    const int* out[4] = {};
    array.getObjects(out, {1, 4});
    array.getObjects(out, {NotFound, 0});
    EXPECT_EQ(out[0], nullptr);
    array.getObjects(out, {1, 2});
    EXPECT_EQ(*out[1], 6);
    int sum = 0;
    array.applyFunction([&](int n) { sum += n; }, {2, 100});
    EXPECT_EQ(sum, 13);
}

TEST_F(FastArrays, InsertsAndRemoves) {
    const int twin = 5;
    Numbers array = arrayOf({4, 5, 5, 6});
    array.insertObject(&twin, 1);
    array.insertObject(at(9), 100);
    EXPECT_EQ(valuesOf(array), (std::vector<int>{4, 5, 5, 5, 6, 9}));
    EXPECT_EQ(array.indexOfObject(at(5)), 1u);
    EXPECT_EQ(array.indexOfObjectIdenticalTo(at(5)), 2u);
    Numbers copy = array;
    copy.removeObjectIdenticalTo(at(5));
    EXPECT_EQ(valuesOf(copy), (std::vector<int>{4, 5, 6, 9}));
    array.removeObject(at(5));
    EXPECT_EQ(valuesOf(array), (std::vector<int>{4, 6, 9}));
    array.removeObjectAtIndex(1);
    EXPECT_EQ(valuesOf(array), (std::vector<int>{4, 9}));
    array = std::move(copy);
    EXPECT_EQ(valuesOf(array), (std::vector<int>{4, 5, 6, 9}));
}

TEST_F(FastArrays, TakesItsOwnObjects) {
    Numbers array = arrayOf({0, 1, 2});
    for (std::size_t count = 3; count <= 48; count *= 2) {  // with and without a new block
        EXPECT_EQ(array.count(), count);
        array.addObjectsFromArray(array.view());
    }
    EXPECT_EQ(*array.objectAtIndex(95), 2);
    array.setObjects(array.view().subspan(1, 4));
    EXPECT_EQ(valuesOf(array), (std::vector<int>{1, 2, 0, 1}));
    array.setFastArray(array);
    array = *&array;
    array.addObjects({array.lastObject(), array.firstObject()});
    EXPECT_EQ(valuesOf(array), (std::vector<int>{1, 2, 0, 1, 1, 1}));
    Numbers taken = std::move(array);
    array.setArray(taken.objects());  // NOLINT: what was moved from may be used again
    array.addObject(at(7));
    EXPECT_EQ(valuesOf(array), (std::vector<int>{1, 2, 0, 1, 1, 1, 7}));
    EXPECT_EQ(taken.count(), 6u);
}

TEST_F(FastArrays, AWrongComparisonHarmsNothing) {
    std::mt19937 random(4);
    for (const std::size_t size : {0u, 2u, 16u, 17u, 500u})
        for (const std::size_t count : {10u, 1000u}) {
            Numbers array;
            for (std::size_t i = 0; i < size; ++i) array.addObject(at(i));
            array.sortUsingFunction([&](int, int) { return static_cast<int>(random() % 3) - 1; }, count);
            std::vector<int> values = valuesOf(array);
            std::sort(values.begin(), values.end());
            EXPECT_EQ(values, std::vector<int>(numbers.begin(), numbers.begin() + static_cast<std::ptrdiff_t>(size)));
        }
}

TEST_F(FastArrays, PartialSortPutsTheSmallestFirst) {
    std::mt19937 random(3);
    for (const std::size_t size : {0u, 1u, 2u, 10u, 100u, 4500u})
        for (const std::size_t count : {0u, 1u, 3u, 10u, 50u, 51u, 60u, 5000u}) {
            Numbers array;
            for (std::size_t i = 0; i < size; ++i) array.addObject(at(random() % 300));
            std::vector<int> before = valuesOf(array);
            array.sortUsingFunction(compare, count);
            std::vector<int> after = valuesOf(array);
            if (count == 0) { EXPECT_EQ(after, before); }
            std::sort(before.begin(), before.end());
            const auto head = static_cast<std::ptrdiff_t>(std::min(count, size));
            EXPECT_TRUE(std::equal(after.begin(), after.begin() + head, before.begin())) << size << ' ' << count;
            std::sort(after.begin(), after.end());
            EXPECT_EQ(after, before);
        }
}

TEST_F(FastArrays, Description) {
    const String words[] = {u"one", u"two"};
    FastArray<const String> array;
    EXPECT_EQ(array.description(), u"()");
    array.addObjects({&words[0], &words[1]});
    EXPECT_EQ(array.description(), u"(\n\tone\n\ttwo\n)");
}

}  // namespace
}  // namespace velmo
