#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Range.h>

namespace velmo {

class String;

namespace detail {

/// UTF-16 text that is no String: a view, a literal, a std::u16string.
template <class Text>
concept Utf16Text =
    std::convertible_to<const Text&, std::u16string_view> && !std::derived_from<Text, String>;

/// What String::hash() gives for a string of these units.
VELMO_API std::size_t hashOfText(std::u16string_view units) noexcept;

}  // namespace detail

/// An immutable text of UTF-16 units in one contiguous array.
///
/// A String is one pointer wide. Copies share the array and keep its identity, which
/// isIdenticalTo() tells: an operation that has nothing to do gives back its receiver,
/// not a copy. The units are any 16-bit values, lone surrogates included; a character
/// outside the 16-bit plane is two units.
///
/// A default-made String is *absent*, which is not the same as *empty*: both have the
/// length 0, but only isAbsent() tells them apart, and they do not compare equal.
///
/// Threads: Strings may be copied and read on any thread; the count of owners is atomic.
///
///     const String page = String::fromUTF8("caf\xC3\xA9");
///     page.length();                         // 4
///     page.view().substr(0, 3);              // caf
///     page.substring({0, 80}) == page;       // true
///     String() == u"";                       // false
class VELMO_API String {
public:
    /// The absent string.
    constexpr String() noexcept = default;

    /// A copy of the units. A view whose data() is null makes the absent string; any
    /// other view of length 0 the shared empty one.
    String(std::u16string_view units);
    String(const std::u16string& units) : String(std::u16string_view(units)) {}

    /// A copy of a literal or of another null-terminated array; null is absent.
    String(const char16_t* units)
        : String(units ? std::u16string_view(units) : std::u16string_view()) {}

    String(const String& other) noexcept : rep_(other.rep_) { retain(); }
    String(String&& other) noexcept : rep_(std::exchange(other.rep_, nullptr)) {}
    String& operator=(String other) noexcept {
        std::swap(rep_, other.rep_);
        return *this;
    }
    ~String() { release(); }

    /// Decodes UTF-8. Bytes that are not UTF-8 become U+FFFD, one for each maximal
    /// part of a broken sequence; nothing fails.
    [[nodiscard]] static String fromUTF8(std::string_view bytes);

    /// The shared constant empty string.
    [[nodiscard]] static const String& empty() noexcept;

    /// Encodes as UTF-8. A lone surrogate, which UTF-8 cannot hold, becomes U+FFFD.
    [[nodiscard]] std::string utf8() const;

    /// Whether it is absent, and not only empty.
    [[nodiscard]] bool isAbsent() const noexcept { return rep_ == nullptr; }
    /// True for the absent string too.
    [[nodiscard]] bool isEmpty() const noexcept { return length() == 0; }

    /// Number of UTF-16 units; 0 if absent.
    [[nodiscard]] std::size_t length() const noexcept { return rep_ ? rep_->length : 0; }
    [[nodiscard]] std::size_t size() const noexcept { return length(); }
    /// The units, not terminated; null if absent.
    [[nodiscard]] const char16_t* characters() const noexcept VELMO_LIFETIME {
        return rep_ ? rep_->units() : nullptr;
    }
    /// The same as a view, which lives as long as this string or a copy of it.
    [[nodiscard]] std::u16string_view view() const noexcept VELMO_LIFETIME {
        return {characters(), length()};
    }
    operator std::u16string_view() const noexcept VELMO_LIFETIME { return view(); }

    /// The unit at an index below the length.
    char16_t operator[](std::size_t index) const noexcept { return rep_->units()[index]; }
    [[nodiscard]] const char16_t* begin() const noexcept VELMO_LIFETIME { return characters(); }
    [[nodiscard]] const char16_t* end() const noexcept VELMO_LIFETIME {
        return characters() + length();
    }

    /// The units of a range, which is cut at the end of the string. The whole range
    /// gives this very string; an empty one the constant empty string; none, or one of
    /// the absent string, the absent string.
    [[nodiscard]] String substring(Range range) const;

    /// Whether both are the same string and not only equal ones. Two absent strings
    /// are identical.
    [[nodiscard]] bool isIdenticalTo(const String& other) const noexcept {
        return rep_ == other.rep_;
    }

    /// A hash of the units; absent and empty have the same. It is no stable number: it differs from
    /// one run of a program to the next, so that no input can be made whose texts all share a place
    /// of a table.
    [[nodiscard]] std::size_t hash() const noexcept { return detail::hashOfText(view()); }

    friend bool operator==(const String& a, const String& b) noexcept {
        return a.rep_ == b.rep_ || (a.rep_ && b.rep_ && a.view() == b.view());
    }
    /// Order of the units; absent comes before everything else.
    friend std::strong_ordering operator<=>(const String& a, const String& b) noexcept {
        if (!a.rep_ || !b.rep_) return (a.rep_ != nullptr) <=> (b.rep_ != nullptr);
        return a.view() <=> b.view();
    }
    /// An absent string equals no view, and comes before each.
    template <detail::Utf16Text Text>
    friend bool operator==(const String& a, const Text& b) noexcept {
        return a.rep_ && a.view() == std::u16string_view(b);
    }
    template <detail::Utf16Text Text>
    friend std::strong_ordering operator<=>(const String& a, const Text& b) noexcept {
        if (!a.rep_) return std::strong_ordering::less;
        return a.view() <=> std::u16string_view(b);
    }

    /// One after the other. An absent string adds nothing; two absent ones give an absent one.
    friend String operator+(const String& a, const String& b) { return joined(a.view(), b.view()); }
    template <detail::Utf16Text Text>
    friend String operator+(const String& a, const Text& b) {
        return joined(a.view(), std::u16string_view(b));
    }
    template <detail::Utf16Text Text>
    friend String operator+(const Text& a, const String& b) {
        return joined(std::u16string_view(a), b.view());
    }

private:
    friend class StringBuilder;

    /// Stands in front of the units, in the same allocation.
    struct Rep {
        std::size_t owners;  // changed atomically only
        std::size_t length;

        char16_t* units() noexcept { return reinterpret_cast<char16_t*>(this + 1); }
    };

    explicit String(Rep* rep) noexcept : rep_(rep) {}
    void retain() const noexcept {
        if (rep_) __atomic_fetch_add(&rep_->owners, 1, __ATOMIC_RELAXED);
    }
    void release() noexcept {
        if (rep_ && __atomic_fetch_sub(&rep_->owners, 1, __ATOMIC_ACQ_REL) == 1) destroy(rep_);
    }
    static void destroy(Rep* rep) noexcept;
    [[nodiscard]] static String joined(std::u16string_view first, std::u16string_view second);

    Rep* rep_ = nullptr;
};

/// Writes the string as UTF-8; an absent one writes nothing.
VELMO_API std::ostream& operator<<(std::ostream& stream, const String& string);
/// The same as a std::string, for formatting; see Format.h.
[[nodiscard]] inline std::string printed(const String& string) { return string.utf8(); }

/// Encodes UTF-16 units as UTF-8; a lone surrogate becomes U+FFFD.
[[nodiscard]] VELMO_API std::string utf8(std::u16string_view units);

/// Collects units in the very array of the string that finish() gives, so that a
/// result is built without a second copy.
///
///     const std::u16string_view text = u"a\tb";
///     StringBuilder out(text.size());
///     for (char16_t unit : text)
///         if (unit != u'\t') out.append(unit);
///     out.finish();    // ab
///
/// Running out of memory is std::bad_alloc. Not to be shared between threads.
class VELMO_API StringBuilder {
public:
    /// Makes room for that many units; more come as they are needed.
    explicit StringBuilder(std::size_t capacity = 0) {
        if (capacity) grow(capacity);
    }
    StringBuilder(const StringBuilder&) = delete;
    StringBuilder& operator=(const StringBuilder&) = delete;
    ~StringBuilder();

    /// How many units have been written so far, and where they stand: good until more are.
    [[nodiscard]] std::size_t length() const noexcept { return length_; }
    [[nodiscard]] bool isEmpty() const noexcept { return length_ == 0; }
    [[nodiscard]] char16_t* data() noexcept VELMO_LIFETIME { return units_; }
    [[nodiscard]] char16_t* end() noexcept VELMO_LIFETIME { return units_ + length_; }
    /// What has been written so far; good until more is.
    [[nodiscard]] std::u16string_view view() const noexcept VELMO_LIFETIME {
        return {units_, length_};
    }
    /// The last unit; there must be one.
    [[nodiscard]] char16_t back() const noexcept { return units_[length_ - 1]; }

    /// Makes sure of room for count more units and gives the place to write them to;
    /// commit() then takes over as many of them as were written.
    char16_t* prepare(std::size_t count) VELMO_LIFETIME {
        if (capacity_ - length_ < count) grow(count);
        return units_ + length_;
    }
    void commit(std::size_t count) noexcept { length_ += count; }

    /// Appends one unit.
    void append(char16_t unit) {
        *prepare(1) = unit;
        ++length_;
    }
    /// The units may be a part of the builder's own view().
    void append(std::u16string_view units) {
        if (capacity_ - length_ < units.size()) units = makeRoomFor(units);
        if (units.empty()) return;
        std::char_traits<char16_t>::copy(units_ + length_, units.data(), units.size());
        length_ += units.size();
    }
    /// Drops what comes after the given length, which must not be above length().
    void truncate(std::size_t length) noexcept { length_ = length; }

    /// The string; the builder is empty again. Nothing written gives the constant
    /// empty string.
    [[nodiscard]] String finish();
    /// The same with that many units kept behind those of the string, where prepare() has given
    /// room for them: what was written there stays as long as the string, and is no part of it. It
    /// is a string of its own even if nothing else was written.
    [[nodiscard]] String finishWithTail(std::size_t count);

private:
    void grow(std::size_t count);
    std::u16string_view makeRoomFor(std::u16string_view units);

    char16_t* units_ = nullptr;
    std::size_t length_ = 0;
    std::size_t capacity_ = 0;
};

}  // namespace velmo

/// String::hash(), for the containers of the standard library.
template <>
struct std::hash<velmo::String> {
    std::size_t operator()(const velmo::String& string) const noexcept { return string.hash(); }
};

namespace velmo {

/// A hash for unordered containers that are searched by views as well, without making a
/// string. Ordered ones take std::less<>.
///
///     std::unordered_map<String, int, StringHash, std::equal_to<>> counts;
///     counts.contains(std::u16string_view(u"tea"));    // false
struct StringHash {
    using is_transparent = void;
    std::size_t operator()(std::u16string_view units) const noexcept {
        return detail::hashOfText(units);
    }
};

}  // namespace velmo
