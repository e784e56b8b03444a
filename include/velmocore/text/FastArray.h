#pragma once

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/MergeSort.h>

namespace velmo {

/// A growable array of references to objects that it does not own: whoever puts them in keeps
/// them alive. Made for the inner loops of scanners and indexes: an access is one test and one
/// load, and getObjectsPtr() gives the whole block.
///
/// Null is never stored: operations that insert ignore it. An index past the end gives null
/// or does nothing. The block doubles while it is small and then grows by steps of growBy; it
/// moves when it grows and never shrinks. Objects are equal by ==, identical by address.
/// No locks: one thread at a time, or all only reading. Functions that are handed in must not
/// change the array.
///
///     const int ranks[] = {7, 2, 5};
///     FastArray<const int> array;
///     for (const int& rank : ranks) array.addObject(&rank);
///     array.sortUsingFunction([](int a, int b) { return a - b; }, 10);    // (the ten lowest first)
///     *array.objectAtIndex(0);                                            // 2
template <class T>
class FastArray {
public:
    /// The least room of a block, and the least step by which a large one grows, in objects.
    static constexpr std::size_t LeastCapacity = 16, LeastGrowth = 1024;

    /// Capacity 16, growth 1024. No block is made before it is needed.
    FastArray() = default;
    /// Of objects, those that are null left out.
    explicit FastArray(std::span<T* const> objects) { setObjects(objects); }
    /// Smaller values are raised to 16 and 1024.
    static FastArray arrayWithCapacity(std::size_t capacity, std::size_t growBy = LeastGrowth) {
        FastArray array;
        array._growBy = std::max(growBy, LeastGrowth);
        array.setCapacity(capacity);
        return array;
    }
    static FastArray arrayWithObject(T* object) {
        return FastArray(std::span<T* const>(&object, 1));
    }

    /// The same objects in a block of its own, with growth 1024.
    FastArray(const FastArray& other) { setFastArray(other); }
    FastArray& operator=(const FastArray& other) {
        if (this != &other) setFastArray(other);
        return *this;
    }
    /// Takes the block over; the other array is empty, or has what this one had.
    FastArray(FastArray&& other) noexcept { swap(other); }
    FastArray& operator=(FastArray&& other) noexcept {
        swap(other);
        return *this;
    }
    /// Exchanges blocks and growths.
    void swap(FastArray& other) noexcept {
        std::swap(_capacity, other._capacity);
        std::swap(_growBy, other._growBy);
        std::swap(_count, other._count);
        std::swap(_objects, other._objects);
    }

    /// How many objects it has, and for how many there is room.
    std::size_t count() const noexcept { return _count; }
    std::size_t capacity() const noexcept { return _capacity; }
    /// Only shrinks; gives the resulting count.
    std::size_t setCount(std::size_t count) noexcept { return _count = std::min(_count, count); }
    /// Only grows; gives the block.
    T** setCapacity(std::size_t capacity) {
        exchangeBlock(capacity);
        return _objects.get();
    }

    /// An object; null if there is none.
    T* firstObject() const noexcept { return objectAtIndex(0); }
    T* lastObject() const noexcept { return _count ? _objects[_count - 1] : nullptr; }
    T* objectAtIndex(std::size_t index) const noexcept {
        return index < _count ? _objects[index] : nullptr;
    }

    /// Appends an object; null is passed over.
    void addObject(T* object) {
        if (!object) return;
        if (_count == _capacity || !_objects) grow();
        _objects[_count++] = object;
    }
    /// Up to the first null.
    void addObjects(std::initializer_list<T*> objects) {
        for (T* object : objects) {
            if (!object) return;
            addObject(object);
        }
    }
    /// Makes just as much room as it takes.
    void addObjectsFromArray(std::span<T* const> objects) {
        if (objects.empty()) return;
        // The objects may be this array's own: the block that they stand in is kept until then.
        const auto former = exchangeBlock(_count + objects.size());
        for (T* object : objects)
            if (object) _objects[_count++] = object;
    }
    /// An index at or past the end appends.
    void insertObject(T* object, std::size_t index) {
        addObject(object);
        if (object && index < _count) std::rotate(begin() + index, end() - 1, end());
    }
    /// Nothing happens for null and for an index past the end.
    void replaceObjectAtIndex(std::size_t index, T* object) noexcept {
        if (object && index < _count) _objects[index] = object;
    }

    /// Nothing happens for an index past the end.
    void removeObjectAtIndex(std::size_t index) noexcept {
        if (index < _count)
            _count = std::copy(begin() + index + 1, end(), begin() + index) - begin();
    }
    /// Removes all that are equal to the object.
    void removeObject(const T* object) {
        if (object) removeIf([&](const T* other) { return *other == *object; });
    }
    /// Removes that very object, wherever it stands.
    void removeObjectIdenticalTo(const T* object) noexcept {
        removeIf([&](const T* other) { return other == object; });
    }
    /// The block stays.
    void removeAllObjects() noexcept { _count = 0; }

    /// Whether there is an equal object, or that very one; null is never there.
    bool containsObject(const T* object) const { return indexOfObject(object) != NotFound; }
    bool containsObjectIdenticalTo(const T* object) const noexcept {
        return indexOfObjectIdenticalTo(object) != NotFound;
    }
    /// The first index, or NotFound.
    std::size_t indexOfObject(const T* object) const {
        if (!object) return NotFound;
        return indexOf(std::find_if(begin(), end(), [&](const T* o) { return *o == *object; }));
    }
    std::size_t indexOfObjectIdenticalTo(const T* object) const noexcept {
        return indexOf(std::find(begin(), end(), object));
    }

    /// Replaces all objects by these, those that are null left out.
    void setObjects(std::span<T* const> objects) {
        _count = 0;
        addObjectsFromArray(objects);
    }
    void setArray(std::span<T* const> array) { setObjects(array); }
    void setFastArray(const FastArray& other) { setObjects(other.view()); }

    /// The block itself, valid until the next insertion; null if nothing was ever inserted.
    T* const* getObjectsPtr() const noexcept { return _objects.get(); }
    /// The objects where they stand, valid as long as the block.
    std::span<T* const> view() const noexcept { return {_objects.get(), _count}; }
    /// Copies the objects to a place with room for count() of them.
    void getObjects(T** out) const { std::copy(begin(), end(), out); }
    /// Copies nothing if the range is empty or does not lie inside.
    void getObjects(T** out, Range range) const {
        if (range.location <= _count && range.length <= _count - range.location)
            std::copy_n(begin() + range.location, range.length, out);
    }
    /// A copy of all.
    std::vector<T*> allObjects() const { return {begin(), end()}; }
    std::vector<T*> objects() const { return allObjects(); }

    /// Calls the function with each object in turn.
    template <class Function>
    void applyFunction(Function&& function) const {
        for (T* object : view()) function(*object);
    }
    /// The range is cut at the end.
    template <class Function>
    void applyFunction(Function&& function, Range range) const {
        if (range.location >= _count) return;
        for (T* object :
             view().subspan(range.location, std::min(range.length, _count - range.location)))
            function(*object);
    }

    /// Sorts by a comparison whose result is below 0, 0 or above 0. A wrong comparison gives
    /// some order, but harms nothing.
    template <class Compare>
    void sortUsingFunction(Compare&& compare) {
        sortHead(_count, compare);
    }
    /// Puts the smallest ones in order at the front and leaves the others in no order.
    template <class Compare>
    void sortUsingFunction(Compare&& compare, std::size_t count) {
        if (_count < 2) return;
        if (count >= _count || (count >= 51 && _count / 80 < count))
            return sortUsingFunction(compare);
        if (count == 0) return;
        sortHead(count, compare);
        const auto isBelow = [&](T* a, T* b) { return compare(*a, *b) < 0; };
        T** const head = begin() + count;
        for (T** next = head; next != end(); ++next) {
            T** place = head;
            while (place != begin() && isBelow(*next, place[-1])) --place;
            if (place == head) continue;
            T* const object = *next;
            *next = head[-1];
            std::move_backward(place, head - 1, head);
            *place = object;
        }
    }

    T** begin() noexcept { return _objects.get(); }
    T** end() noexcept { return begin() + _count; }
    T* const* begin() const noexcept { return _objects.get(); }
    T* const* end() const noexcept { return begin() + _count; }

    /// "()", or a line for each element, as the function describes it.
    template <class Describe>
    String description(Describe&& describe) const {
        if (_count == 0) return u"()";
        std::u16string text = u"(\n";
        for (T* object : view()) {
            text += u'\t';
            text += std::u16string_view(describe(*object));
            text += u'\n';
        }
        return text += u')';
    }
    String description() const requires std::convertible_to<const T&, std::u16string_view> {
        return description([](const T& text) { return std::u16string_view(text); });
    }

private:
    /// Makes room for so many; the block that held the objects until now is given back, if it
    /// was another one.
    std::unique_ptr<T* []> exchangeBlock(std::size_t capacity) {
        capacity = std::max({capacity, _capacity, LeastCapacity});
        if (capacity == _capacity && _objects) return nullptr;
        auto objects = std::make_unique<T*[]>(capacity);
        std::copy_n(_objects.get(), _count, objects.get());
        _capacity = capacity;
        return std::exchange(_objects, std::move(objects));
    } template <class Compare>
    void sortHead(std::size_t count, Compare& compare) {
        detail::mergeSort(begin(), begin() + count, [&](T* a, T* b) { return compare(*a, *b); });
    }
    void grow() { setCapacity(_count <= _growBy ? 2 * _count : _count + _growBy); }
    template <class Predicate>
    void removeIf(Predicate predicate) {
        _count = static_cast<std::size_t>(std::remove_if(begin(), end(), predicate) - begin());
    }
    std::size_t indexOf(T* const* place) const noexcept {
        return place == end() ? NotFound : static_cast<std::size_t>(place - begin());
    }

    std::size_t _capacity = LeastCapacity;
    std::size_t _growBy = LeastGrowth;
    std::size_t _count = 0;
    std::unique_ptr<T*[]> _objects;
};

}  // namespace velmo
