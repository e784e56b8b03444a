#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <span>
#include <string_view>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/Format.h>
#include <velmocore/text/MergeSort.h>

namespace velmo {

// What std::vector does not have of itself: search in sorted arrays, set-like joins, and a
// cover of paths. Elements are Strings, pointers or other values; they are equal by ==, and
// identical if they are the same string or the same address. Lists of elements to add end at
// the first absent string or null pointer. Indexes and ranges count elements. One thread at a time
// uses an array that is changed; any may read one.
//
//     std::vector<String> words{u"a", u"b"};
//     unionWithObjects(words, {u"b", u"c"});
//     words;    // a, b, c
//     joinWithObjectsFromArray(words, std::vector<String>{u"c"});
//     words;    // c

namespace detail {

template <class T>
const void* identityOf(const T& element) noexcept {
    if constexpr (std::is_same_v<T, String>)
        return element.characters();
    else if constexpr (std::is_pointer_v<T>)
        return element;
    else
        return &element;
}

template <class T>
bool isNull(const T& element) noexcept {
    if constexpr (std::is_same_v<T, String>)
        return element.isAbsent();
    else if constexpr (std::is_pointer_v<T>)
        return element == nullptr;
    else
        return false;
}

struct Equal {
    template <class T>
    static const T& keyOf(const T& element) noexcept {
        return element;
    }
};
struct Identical {
    template <class T>
    static const void* keyOf(const T& element) noexcept {
        return identityOf(element);
    }
};

/// The keys of an array's elements, looked up in constant time.
template <class Sameness, class T>
class KeySet {
public:
    explicit KeySet(std::span<const T> elements) {
        keys_.reserve(elements.size());
        for (const T& element : elements) insert(element);
    }
    bool insert(const T& element) { return keys_.insert(Sameness::keyOf(element)).second; }
    bool contains(const T& element) const { return keys_.contains(Sameness::keyOf(element)); }

private:
    std::unordered_set<std::remove_cvref_t<decltype(Sameness::keyOf(std::declval<const T&>()))>>
        keys_;
};

/// Keeps the elements that the other array has, or those that it has not.
template <class Sameness, class T>
void keep(std::vector<T>& array, std::span<const T> other, bool those) {
    const KeySet<Sameness, T> keys(other);
    std::erase_if(array, [&](const T& element) { return keys.contains(element) != those; });
}

template <class Sameness, class T>
void unite(std::vector<T>& array, std::span<const T> objects) {
    KeySet<Sameness, T> present{std::span<const T>(array)};
    for (const T& object : objects) {
        if (isNull(object)) return;
        if (present.insert(object)) array.push_back(object);
    }
}

}  // namespace detail

/// Whether an element is that very object, and not only equal to it.
template <class T>
bool containsObjectIdenticalTo(std::span<const T> array, const T& object) {
    return std::any_of(array.begin(), array.end(), [&](const T& element) {
        return detail::identityOf(element) == detail::identityOf(object);
    });
}
template <class T>
bool containsObjectIdenticalTo(const std::vector<T>& array, const T& object) {
    return containsObjectIdenticalTo(std::span<const T>(array), object);
}

/// The index of an element for which the comparison (below 0, 0 or above 0) is 0, else of the
/// first that is greater, which may be the end. The array must be sorted by the comparison.
template <class Array, class T, class Compare>
std::size_t indexOfObject(const Array& array, Range range, const T& object, Compare&& compare) {
    const std::size_t size = std::size(array);
    const std::size_t from = std::min(range.location, size);
    const std::size_t count = std::min(range.length, size - from);
    const auto first = std::data(array) + from;
    const auto place = std::lower_bound(
        first, first + count, object, [&](const auto& a, const T& b) { return compare(a, b) < 0; });
    return static_cast<std::size_t>(place - std::data(array));
}
template <class Array, class T, class Compare>
std::size_t indexOfObject(const Array& array, const T& object, Compare&& compare) {
    return indexOfObject(array, Range{0, std::size(array)}, object, compare);
}

/// Calls the function with each element of the range, which is cut at the end.
template <class Array, class Function>
void applyFunction(const Array& array, Range range, Function&& function) {
    const std::size_t size = std::size(array), from = std::min(range.location, size);
    const std::size_t count = std::min(range.length, size - from);
    std::for_each_n(std::data(array) + from, count, function);
}
template <class Array, class Function>
void applyFunction(const Array& array, Function&& function) {
    applyFunction(array, Range{0, std::size(array)}, function);
}

/// A copy without that element; all of it for an index past the end.
template <class T>
std::vector<T> subarrayWithoutObjectAtIndex(std::vector<T> array, std::size_t index) {
    if (index < array.size()) array.erase(array.begin() + static_cast<std::ptrdiff_t>(index));
    return array;
}

/// Removes the elements from the count on; never grows. Gives the resulting count.
template <class T>
std::size_t setCount(std::vector<T>& array, std::size_t count) {
    if (count < array.size())
        array.erase(array.begin() + static_cast<std::ptrdiff_t>(count), array.end());
    return array.size();
}

/// Keeps only what the other array contains too.
template <class T>
void joinWithObjectsFromArray(std::vector<T>& array, const std::vector<T>& other) {
    detail::keep<detail::Equal>(array, std::span<const T>(other), true);
}
template <class T>
void joinWithIdenticalObjectsFromArray(std::vector<T>& array, const std::vector<T>& other) {
    detail::keep<detail::Identical>(array, std::span<const T>(other), true);
}
/// Drops what the other array contains.
template <class T>
void removeObjectsFromArray(std::vector<T>& array, const std::vector<T>& other) {
    detail::keep<detail::Equal>(array, std::span<const T>(other), false);
}
template <class T>
void removeIdenticalObjectsFromArray(std::vector<T>& array, const std::vector<T>& other) {
    detail::keep<detail::Identical>(array, std::span<const T>(other), false);
}

/// Appends objects, which may be the array's own.
template <class T>
void addObjects(std::vector<T>& array, std::type_identity_t<std::span<const T>> objects) {
    const auto end = std::find_if(objects.begin(), objects.end(), detail::isNull<T>);
    const std::vector<T> source(objects.begin(), end);
    array.insert(array.end(), source.begin(), source.end());
}
template <class T>
void appendObjects(std::vector<T>& array, std::initializer_list<std::type_identity_t<T>> objects) {
    addObjects(array, std::span<const T>(objects.begin(), objects.size()));
}
/// Appends what is not there yet.
template <class T>
void unionWithObjects(std::vector<T>& array, std::type_identity_t<std::span<const T>> objects) {
    detail::unite<detail::Equal>(array, objects);
}
template <class T>
void unionWithObjects(std::vector<T>& array,
                      std::initializer_list<std::type_identity_t<T>> objects) {
    unionWithObjects(array, std::span<const T>(objects.begin(), objects.size()));
}
template <class T>
void unionWithIdenticalObjects(std::vector<T>& array,
                               std::type_identity_t<std::span<const T>> objects) {
    detail::unite<detail::Identical>(array, objects);
}
template <class T>
void unionWithIdenticalObjects(std::vector<T>& array,
                               std::initializer_list<std::type_identity_t<T>> objects) {
    unionWithIdenticalObjects(array, std::span<const T>(objects.begin(), objects.size()));
}

/// Appends a format with its arguments; see replaceStringWithFormat(). An empty or absent format
/// does nothing.
VELMO_API void appendFormat(std::vector<String>& array, std::u16string_view format,
                            std::initializer_list<FormatArgument> arguments = {});

/// Sorts by a comparison whose result is below 0, 0 or above 0. A wrong comparison gives some
/// order, but harms nothing.
template <class T, class Compare>
void quickSortUsingFunction(std::vector<T>& array, Compare&& compare) {
    quickSortUsingFunction(array, Range{0, array.size()}, compare);
}
/// Sorts the range; nothing if it does not lie inside.
template <class T, class Compare>
void quickSortUsingFunction(std::vector<T>& array, Range range, Compare&& compare) {
    if (range.location > array.size() || range.length > array.size() - range.location) return;
    T* const first = array.data() + range.location;
    detail::mergeSort(first, first + range.length, compare);
}

/// Moves an element to in front of the one at the index "to", as counted before. False if an
/// index is past the end; equal indexes are true.
template <class T>
bool moveObjectAtIndex(std::vector<T>& array, std::size_t from, std::size_t to) {
    if (from == to) return true;
    if (from >= array.size() || to >= array.size()) return false;
    const auto at = [&](std::size_t index) {
        return array.begin() + static_cast<std::ptrdiff_t>(index);
    };
    if (from < to)
        std::rotate(at(from), at(from + 1), at(to));
    else
        std::rotate(at(to), at(from), at(from + 1));
    return true;
}

/// Sorts the paths by their units, and removes each that lies in the one kept before it. So a
/// path is left in if another one, as "/a b", comes between it and its folder "/a".
VELMO_API void minimumCoverOfPaths(std::vector<String>& paths);

}  // namespace velmo
